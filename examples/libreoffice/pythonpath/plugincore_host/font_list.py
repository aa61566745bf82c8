"""What the menu entry shows of a document's fonts, in the application's language."""

from com.sun.star.beans import PropertyValue

ENGLISH = {
    "title": "Document Fonts",
    "active": "active",
    "inactive": "not activated",
    "missing": "missing",
    "no core": "The font manager cannot be reached. Standard error says why.",
    "off": "The plug-in is switched off, or the font manager cannot be reached.",
    "no document": "No document is open in this window.",
    "no file": "The document's fonts are looked up once it is saved in a file.",
    "not looked up": "The font manager could not be asked for the document's fonts. It is asked again when the "
                     "document is saved.",
    "no fonts": "The document uses no fonts.",
}
GERMAN = {
    "title": "Schriften des Dokuments",
    "active": "aktiv",
    "inactive": "nicht aktiviert",
    "missing": "fehlt",
    "no core": "Die Schriftverwaltung ist nicht erreichbar. Die Standardfehlerausgabe sagt, warum.",
    "off": "Das Plug-in ist ausgeschaltet, oder die Schriftverwaltung ist nicht erreichbar.",
    "no document": "In diesem Fenster ist kein Dokument geöffnet.",
    "no file": "Die Schriften des Dokuments werden gesucht, sobald es in einer Datei gespeichert ist.",
    "not looked up": "Die Schriftverwaltung war für die Schriften des Dokuments nicht erreichbar. Sie wird wieder "
                     "gefragt, wenn das Dokument gespeichert wird.",
    "no fonts": "Das Dokument verwendet keine Schriften.",
}


def texts(context):
    """In the language of the application's menus."""
    provider = context.ServiceManager.createInstanceWithContext("com.sun.star.configuration.ConfigurationProvider",
                                                                context)
    languages = provider.createInstanceWithArguments(
        "com.sun.star.configuration.ConfigurationAccess",
        (PropertyValue(Name="nodepath", Value="/org.openoffice.Setup/L10N"),))
    return GERMAN if languages.getByName("ooLocale").split("-")[0] == "de" else ENGLISH


def font_list(model, document, is_enabled, words):
    """A font a line, or why there are none. `document`: the record of the model, where it has one."""
    if not hasattr(model, "RuntimeUID"):  # the start centre, say
        return words["no document"]
    if not is_enabled:
        return words["off"]
    if not document or not document.path:
        return words["no file"]
    if not document.is_looked_up:
        return words["not looked up"]
    lines = [(font, words["active" if _is_active(font) else "inactive"]) for font in document.matched]
    lines += [(font, words["missing"]) for font in document.missing]
    return "\n".join(f"{font['PostScriptName']} – {state}" for font, state in lines) or words["no fonts"]


def _is_active(font):
    """As FontActivationStateCountsAsActive of FontRecordKeys.h has it."""
    state = font.get("ActivationStatus", 0)
    return 1 <= state <= 6 or 9 <= state <= 11
