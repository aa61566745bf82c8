"""A thin host plug-in for LibreOffice: forwards what happens to documents to PluginCore.

Whatever fails here is one line on standard error. Nothing of it reaches the application.
"""

import functools
import sys
import threading
import traceback

import unohelper
from com.sun.star.awt import XCallback
from com.sun.star.awt.MessageBoxButtons import BUTTONS_OK
from com.sun.star.awt.MessageBoxType import INFOBOX
from com.sun.star.document import XDocumentEventListener
from com.sun.star.task import XJob, XJobExecutor

from plugincore_host.core import Core, CoreError
from plugincore_host.documents import Documents
from plugincore_host.font_list import font_list, texts

IDENTIFIER = "com.vantorix.AutoActivationPlugin.LibreOffice"
IDLE_INTERVAL = 1.0  # seconds


def log(text):
    if sys.stderr is not None:
        print(f"Document Fonts: {text}", file=sys.stderr, flush=True)


def guarded(method):
    """For what the application calls: an exception ends here."""
    @functools.wraps(method)
    def call(*arguments):
        try:
            return method(*arguments)
        except CoreError as error:
            log(error)
        except Exception:
            log(traceback.format_exc())
        return None
    return call


class Host(unohelper.Base, XDocumentEventListener, XCallback):
    """The core and what it hears, from the application's start to its end."""

    def __init__(self, context):
        self._context = context
        self._core = Core(IDENTIFIER)
        self.documents = Documents(context, self._core, log)
        self._has_ended = threading.Event()
        self._is_idle_due = False  # the main thread has yet to come to it
        context.getValueByName("/singletons/com.sun.star.frame.theGlobalEventBroadcaster") \
            .addDocumentEventListener(self)
        threading.Thread(target=self._beat, daemon=True).start()

    @guarded
    def documentEventOccured(self, event):
        if event.EventName == "OnCloseApp":
            self._end()
        else:
            self.documents.on_event(event.EventName, event.Source)

    @guarded
    def notify(self, _):
        try:
            if not self._has_ended.is_set():
                self._core.idle()
        finally:
            self._is_idle_due = False

    @guarded
    def disposing(self, _):
        self._end()

    def _end(self):
        if not self._has_ended.is_set():
            self._has_ended.set()
            self._core.end()

    def font_list(self, model, words):
        return font_list(model, self.documents.find(model), self._core.is_enabled(), words)

    def _beat(self):
        while not self._has_ended.wait(IDLE_INTERVAL):
            if not self._is_idle_due:
                self._ask_for_idle_time()

    @guarded
    def _ask_for_idle_time(self):
        """The application has no idle loop for others, but a queue of work for its main thread."""
        queue = self._context.ServiceManager.createInstanceWithContext("com.sun.star.awt.AsyncCallback",
                                                                       self._context)
        self._is_idle_due = True
        try:
            queue.addCallback(self, None)
        except Exception:
            self._is_idle_due = False
            raise


host = None  # once the application has started it


class Component(unohelper.Base, XJob, XJobExecutor):
    def __init__(self, context):
        self._context = context

    @guarded
    def execute(self, _):
        global host
        if host is None:
            host = Host(self._context)

    @guarded
    def trigger(self, _):
        """The menu entry."""
        desktop = self._context.getValueByName("/singletons/com.sun.star.frame.theDesktop")
        window = desktop.getCurrentFrame().getContainerWindow()
        words = texts(self._context)
        text = host.font_list(desktop.getCurrentComponent(), words) if host else words["no core"]
        box = window.getToolkit().createMessageBox(window, INFOBOX, BUTTONS_OK, words["title"], text)
        try:
            box.execute()
        finally:
            box.dispose()


g_ImplementationHelper = unohelper.ImplementationHelper()
g_ImplementationHelper.addImplementation(Component, IDENTIFIER, (IDENTIFIER,))
