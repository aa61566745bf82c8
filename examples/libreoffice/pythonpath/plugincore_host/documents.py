"""The application's documents, as the core hears of them."""

import os
from urllib.parse import unquote, urlsplit

from com.sun.star.uno import Exception as UnoException

from .document_fonts import fonts_of
from .refresh import known_fonts, make_known


SYSTEM_FONT = 3  # ActivationStatus of a font record


class Document:
    def __init__(self, path, identifier=None):
        self.path = path  # empty for one that was never saved
        self.identifier = identifier  # None while the core has no record of it
        self.is_looked_up = False  # the font manager was asked for its fonts
        self.matched = []
        self.missing = []


class Documents:
    """Told of each event of a document, on whatever thread that comes."""

    def __init__(self, context, core, log):
        self._context = context
        self._core = core
        self._log = log
        self._open = {}  # by the number that the application gives a document
        self._seen = set()  # name and file of fonts that the application knows, or refused
        self._is_refreshing = False
        self._handlers = {"OnLoadFinished": self._opened, "OnCreate": self._created, "OnNew": self._created,
                          "OnSaveDone": self._saved, "OnSaveAsDone": self._saved_as, "OnUnload": self._closed}

    def on_event(self, name, model):
        handler = self._handlers.get(name)
        # The document that makes fonts known is none of the user's.
        if handler and not self._is_refreshing and hasattr(model, "RuntimeUID"):
            handler(model)

    def find(self, model):
        """None for what is no document, or none that the core knows."""
        return self._open.get(getattr(model, "RuntimeUID", None))

    def _opened(self, model):
        """The model is whole, and nothing of it is laid out yet: fonts that come now are there in time."""
        path = _path_of(model)
        if path and model.RuntimeUID not in self._open:
            document = self._open[model.RuntimeUID] = Document(path)
            self._activate(document, fonts_of(model))

    def _created(self, model):
        if model.RuntimeUID not in self._open:
            self._open[model.RuntimeUID] = Document("", self._core.create_document())

    def _saved(self, model):
        document = self.find(model)
        if document and document.path:
            fonts = fonts_of(model)
            self._activate(document, fonts)  # it may use others by now
            self._core.save_document(document.path, fonts)

    def _saved_as(self, model):
        former = self.find(model)  # None for one that came from no file
        path = _path_of(model)
        if not path:
            return
        if former and (path == former.path or self._move(former, path)):
            self._saved(model)
            return
        self._open[model.RuntimeUID] = Document(path)
        try:
            self._saved(model)
        finally:
            self._release(former)

    def _closed(self, model):
        self._release(self._open.pop(model.RuntimeUID, None))

    def _move(self, document, path):
        """False where the core's record has to stay with another document, or there is none."""
        others = [other for other in self._open.values() if other is not document]
        if any(other.path == path or other.identifier == document.identifier for other in others):
            return False
        if not document.identifier or not self._core.set_path(path, document.identifier):
            return False
        document.path = path
        return True

    def _release(self, document):
        """What is no longer among the open documents."""
        # A file that is open twice is one document of the core's.
        if document and document.identifier and \
                all(other.identifier != document.identifier for other in self._open.values()):
            self._core.close_document(document.path or document.identifier)

    def _activate(self, document, fonts):
        self._core.is_enabled()
        try:
            matched, missing = self._core.open_document(document.path, fonts)
        finally:
            document.identifier = self._core.identifier_of(document.path)
        if matched or missing or not fonts:  # else the font manager could not be asked
            document.is_looked_up = True
            document.matched, document.missing = matched, missing
        self._tell_application(matched, fonts)

    def _tell_application(self, matched, fonts):
        families = {font["PostScriptName"]: font["Family"] for font in fonts}
        unseen = {}
        for font in matched:
            # By the family as the document has it, which may be one of several names of the font's.
            name = families.get(font["PostScriptName"], font.get("Family", "")), font.get("Style", "")
            path = font.get("Path", "")
            if font.get("ActivationStatus") != SYSTEM_FONT and (name, path) not in self._seen and \
                    os.path.isfile(path):
                unseen[name] = path
        if unseen:
            self._seen.update(unseen.items())
            known = known_fonts(self._context)
            self._make_known({name: path for name, path in unseen.items() if name not in known})

    def _make_known(self, fonts):
        if not fonts:
            return
        self._is_refreshing = True
        try:
            make_known(self._context, [(family, path) for (family, _), path in fonts.items()])
        except (UnoException, OSError) as error:
            self._log(f"LibreOffice cannot be told of fonts that were activated: {error}")
        finally:
            self._is_refreshing = False
        unknown = sorted(" ".join(name) for name in fonts.keys() - known_fonts(self._context))
        if unknown:
            self._log("LibreOffice shows these fonts only where they are active before it starts: " + ", ".join(unknown))


def _path_of(model):
    """Of a document in a file, else empty. UTF-8 in any locale, unlike what the application makes of it."""
    url = urlsplit(model.getURL())
    return unquote(url.path) if url.scheme == "file" else ""
