"""PluginCore, loaded by ctypes: the calls that this host makes of PluginCoreInterface.h."""

import ctypes
import json
import os
import subprocess
import threading

INTERFACE_VERSION = 8
SUCCESS = 0
FONTS_ACTIVATED = 1
INDEX_OUT_OF_RANGE = 0x0C000000

LIBRARY = "libPluginCore.so"
IDENTIFIER_SIZE = 37
FIRST_LIST_SIZE = 1 << 18


class CoreError(Exception):
    """The core cannot be used; the text says why."""


def _library_paths():
    named = os.environ.get("PLUGINCORE_LIBRARY")
    if named:
        return [named]
    paths = [LIBRARY]  # wherever the system looks for libraries
    try:
        folder = subprocess.run(["pkg-config", "--variable=libdir", "plugincore"], capture_output=True,
                                text=True, timeout=5, check=True).stdout.strip()
        paths.insert(0, os.path.join(folder, LIBRARY))
    except (OSError, subprocess.SubprocessError):
        pass  # no pkg-config, or not installed in a prefix that it knows
    return paths


def _load():
    failures = []
    for path in _library_paths():
        try:
            return ctypes.CDLL(path)
        except OSError as error:
            failures.append(str(error))
    raise CoreError("PluginCore cannot be loaded: " + "; ".join(failures) +
                    ". PLUGINCORE_LIBRARY names its file.")


class Core:
    """The core from its start to its end. Calls may come on any thread; the core gets one at a time."""

    def __init__(self, plugin_identifier):
        self._turn = threading.RLock()
        self._library = _load()
        code = self._call("InitializePluginCoreInterface", plugin_identifier.encode(), b"")
        version = ctypes.c_uint32()
        if self._call("GetAPIVersion", ctypes.byref(version), ctypes.c_uint32(INTERFACE_VERSION)) != SUCCESS:
            raise CoreError(f"PluginCore has version {version.value} of its interface, not {INTERFACE_VERSION}")
        if code != SUCCESS:
            raise CoreError(f"PluginCore did not start (0x{code:08X}): this process is no host that it serves, "
                            "or there is no font manager; \"Pellwick launch-info\" tells where that is")

    def end(self):
        self._call("TerminatePluginCoreInterface")

    def idle(self):
        self._call("IdleEvent")

    def is_enabled(self):
        """Also has the core notice that the font manager is back."""
        enabled = ctypes.c_bool()
        self._call("PluginIsEnabled", ctypes.c_bool(False), ctypes.byref(enabled))
        return enabled.value

    def create_document(self):
        """The identifier of a document without a path."""
        return self._identifier("HandleCreateNewDocument")

    def identifier_of(self, path):
        return self._identifier("GetIDForDocument", path.encode())

    def set_path(self, path, identifier):
        return self._call("SetPathForDocument", path.encode(), identifier.encode()) == SUCCESS

    def open_document(self, path, fonts):
        """The fonts that were matched and those that were not, as lists of font records."""
        size = FIRST_LIST_SIZE
        while True:
            matched, unmatched = ctypes.create_string_buffer(size), ctypes.create_string_buffer(size)
            sizes = ctypes.c_size_t(size), ctypes.c_size_t(size)
            activated = ctypes.c_int()
            code = self._call("HandleOpenExistingDocument", path.encode(), json.dumps(fonts).encode(),
                              matched, ctypes.byref(sizes[0]), unmatched, ctypes.byref(sizes[1]),
                              ctypes.byref(activated))
            if code != INDEX_OUT_OF_RANGE:
                break
            size = max(each.value for each in sizes) + 1
        if code not in (SUCCESS, FONTS_ACTIVATED):
            raise CoreError(f"the fonts of {path} cannot be activated (0x{code:08X})")
        return json.loads(matched.value or b"[]"), json.loads(unmatched.value or b"[]")

    def save_document(self, path, fonts):
        return self._call("HandleSaveDocument", path.encode(), json.dumps(fonts).encode()) == SUCCESS

    def close_document(self, path_or_identifier):
        self._call("HandleCloseDocument", path_or_identifier.encode(), b"")

    def _identifier(self, function, *arguments):
        buffer = ctypes.create_string_buffer(IDENTIFIER_SIZE)
        code = self._call(function, *arguments, buffer, ctypes.byref(ctypes.c_size_t(IDENTIFIER_SIZE)))
        return buffer.value.decode() if code == SUCCESS else None

    def _call(self, function, *arguments):
        function = getattr(self._library, function)
        function.restype = ctypes.c_uint32
        with self._turn:
            return function(*arguments)
