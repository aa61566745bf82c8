/*
 * PluginCore: font auto-activation for creative applications.
 *
 * A thin host plug-in loads the library, forwards the host's events to these functions, and shows what they
 * hand back.
 *
 * On Windows the library needs CoreFoundation.dll beside it. A plug-in in another folder than the host's
 * program loads it by its full path with LoadLibraryEx and LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR |
 * LOAD_LIBRARY_SEARCH_DEFAULT_DIRS.
 *
 * Conventions
 * - Strings are UTF-8, zero-terminated. Paths are full paths. Nothing that is passed in is kept or freed.
 * - Every function but two returns a code: 0 is success, others are listed below and with each function.
 * Nothing is thrown, nothing aborts. A null pointer where a text or a result is expected is answered with a
 * code.
 * - Text results go into buffers of the caller. A buffer comes with a pointer to its size in bytes. Unless a
 * function says otherwise, the text and its terminating zero are copied only when the text's length is
 * smaller than the size; else nothing is copied, the length goes to the size and
 * PLUGINCORE_INDEX_OUT_OF_RANGE is returned. A retry needs that length plus one.
 * - Outputs are untouched on failure unless stated.
 * - Main thread: the thread on which InitializePluginCoreInterface was called. All functions are to be called
 * there; none is safe on two threads at once. A call may show a modal dialog; when the host's event loop then
 * calls back into this library while it works on a document, the inner call answers PLUGINCORE_UNKNOWN_ERROR.
 * - Time: apart from dialogs, a call waits for the font manager no longer than its documented limits; see
 *   docs/font-manager.md.
 */
#ifndef PLUGIN_CORE_INTERFACE_H
#define PLUGIN_CORE_INTERFACE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* For who has to mark the functions, say as imported from a DLL; nothing is needed as a rule. */
#ifndef PLUGINCORE_API
#define PLUGINCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define PLUGINCORE_INTERFACE_VERSION 8u

/* Result codes. */
#define PLUGINCORE_SUCCESS 0u
#define PLUGINCORE_INVALID_PARAM 0x04000000u      /* a null pointer, or not what was asked for */
#define PLUGINCORE_NULL_POINTER 0x05000000u       /* a null host handle */
#define PLUGINCORE_OUT_OF_MEMORY 0x06000000u      /* out of memory, or a document command failed */
#define PLUGINCORE_NOT_FOUND 0x07000000u          /* no such document or font */
#define PLUGINCORE_NOT_IMPLEMENTED 0x08000000u    /* a wrong interface version, or not in this version */
#define PLUGINCORE_INDEX_OUT_OF_RANGE 0x0C000000u /* the text buffer is too small */
#define PLUGINCORE_NOT_INITIALIZED 0x11000000u    /* the plug-in is not functional */
#define PLUGINCORE_UNKNOWN_ERROR 0x15000000u      /* the plug-in or the font manager cannot be used */

/* ---- Life cycle */

/*
 * Starts the core; to be called once when the host plug-in loads. A later call with texts that can be taken
 * returns all bits set. The user may be asked for a workgroup; plug-in services are off until one was chosen
 * or PluginIsEnabled is called. pluginIdentifier: the plug-in's bundle identifier ("com.vantorix.…"), or the
 * path of its file. versionPrefixRequired: what the host application's file version must begin with; may be
 * empty. 0; all bits set when the host is not a compatible one or the font manager cannot be reached; 2
 * without the plug-in framework; PLUGINCORE_INVALID_PARAM for a null or ill-formed text.
 */
PLUGINCORE_API uint32_t InitializePluginCoreInterface(const char* pluginIdentifier,
                                                      const char* versionPrefixRequired);

/* Closes every tracked document and lets go of the font manager; once, when the host quits. Always 0. */
PLUGINCORE_API uint32_t TerminatePluginCoreInterface(void);

/*
 * Writes the interface version, 8, to *version. requestedVersion: what the host plug-in was built for, 0 for
 * any. 0, or PLUGINCORE_NOT_IMPLEMENTED for another version; PLUGINCORE_INVALID_PARAM for a null pointer.
 */
PLUGINCORE_API uint32_t GetAPIVersion(uint32_t* version, uint32_t requestedVersion);

/*
 * Whether the plug-in can offer its functions now; written to *isEnabled in any case. allowDialogs: tell the
 * user why not. 0 when it can, else PLUGINCORE_UNKNOWN_ERROR; PLUGINCORE_INVALID_PARAM for a null pointer.
 */
PLUGINCORE_API uint32_t PluginIsEnabled(bool allowDialogs, bool* isEnabled);

/* To be called from the host's idle loop: reacts to what the font manager reported, a logout or a change of
 * the workgroups for example. Messages may show. Always 0. */
PLUGINCORE_API uint32_t IdleEvent(void);

/* Writes whether the user has yet to log in to the font manager to *showLogin. */
PLUGINCORE_API void ShouldShowLogin(bool* showLogin);

/* Tells the user that nobody is logged in, and counts the user as logged out until PluginIsEnabled finds
 * otherwise. Always 0. */
PLUGINCORE_API uint32_t ShowNotLoggedInMessageBox(void);

/* callback: called without arguments, on the main thread, when the workgroups menu is out of date; null for
 * none. */
PLUGINCORE_API void SetRebuildWorkgroupsMenuCallback(void (*callback)(void));

/* ---- Panels. The handle is a PlugPlugService (PlugPlug.h) that outlives the library's use. */

/* Writes the port on which panels are listened to, 0 for none, to *port. 0; PLUGINCORE_INVALID_PARAM for
 * null. */
PLUGINCORE_API uint32_t GetSocketPort(uint32_t* port);

/* Registers with the host's panel event service: requests of panels are listened to and answered from now on.
 * 0, also when that was done before; PLUGINCORE_NULL_POINTER for null and for a service that lacks one of its
 * functions, PLUGINCORE_NOT_INITIALIZED when the service refuses. */
PLUGINCORE_API uint32_t RegisterPlugPlug(void* plugPlug);

/* The same from the idle loop, to be called until it succeeds; most calls only wait for the next attempt, and
 * after twelve there is none. PLUGINCORE_NULL_POINTER for a null handle, PLUGINCORE_NOT_INITIALIZED while
 * registration fails. */
PLUGINCORE_API uint32_t TryRegisterPlugPlug(void* plugPlug);

/* To be called from the idle loop: tells the panels what has changed in the font manager since the last call.
 * 0, or the code of what could not be sent, which waits for the next call. closeListeningSocket: true when
 * the host quits. */
PLUGINCORE_API uint32_t ProcessPanelMessages(bool closeListeningSocket);

/* ---- Document events. A document is known by its path, or before it has one by its identifier (a UUID). */

/*
 * The user made a new document. Its identifier goes to idBuffer (37 bytes do).
 * 0, or PLUGINCORE_INVALID_PARAM for a null pointer or a buffer too small; in the latter case the document is
 * tracked all the same.
 */
PLUGINCORE_API uint32_t HandleCreateNewDocument(char* idBuffer, size_t* idBufferSize);

/*
 * A document was opened: has its fonts found and activated.
 * fontsJSON: the fonts that the document uses, an array of font objects or an object with such an array under
 *   "DocumentFonts"; a font object has the members of a font record (FontRecordKeys.h), "PostScriptName" at
 * least. Null or empty: the names are read out of the document's file. Text that does not parse counts as no
 * fonts. bufferA, sizeA: receives the matched fonts, a JSON array. Each has the members of the font asked for
 * and of the font's record, "ActivationStatus" as it is now, and the record from before under "MatchedFont".
 * bufferB, sizeB: receives the fonts without a match, a JSON array. Fonts that come near stand under
 * "PossibleReplacements", by their PostScript names; see InvokeResolveDialog.
 * numFontsActivated: receives the number of fonts that were made active.
 * 1 when fonts became active (the document should be redrawn), 0 when none did, PLUGINCORE_INDEX_OUT_OF_RANGE
 * when a buffer was too small (the fonts are active all the same), PLUGINCORE_INVALID_PARAM for a null
 * pointer.
 */
PLUGINCORE_API uint32_t HandleOpenExistingDocument(const char* path, const char* fontsJSON, char* bufferA,
                                                   size_t* sizeA, char* bufferB, size_t* sizeB,
                                                   int* numFontsActivated);

/*
 * A document was saved: hands its font usage to the font manager. hint: the host's font-usage text; null or
 * empty takes the text of UpdateDocumentFontUsage. 0, PLUGINCORE_UNKNOWN_ERROR when the font manager did not
 * take it (it is tried again at close), PLUGINCORE_INVALID_PARAM for a null path.
 */
PLUGINCORE_API uint32_t HandleSaveDocument(const char* path, const char* hint);

/*
 * A document was closed: lets its fonts go. hint as for HandleSaveDocument, used when there is something to
 * hand over yet. 0, PLUGINCORE_UNKNOWN_ERROR for a document that is not tracked, PLUGINCORE_INVALID_PARAM for
 * a null path.
 */
PLUGINCORE_API uint32_t HandleCloseDocument(const char* path, const char* hint);

/* A document got a path, or another one. 0, PLUGINCORE_NOT_FOUND when no document has the identifier,
 * PLUGINCORE_INVALID_PARAM for a null pointer. */
PLUGINCORE_API uint32_t SetPathForDocument(const char* path, const char* documentId);

/* The identifier of the document with that path goes to idBuffer. 0, PLUGINCORE_NOT_FOUND when there is none,
 * PLUGINCORE_INDEX_OUT_OF_RANGE, PLUGINCORE_INVALID_PARAM for a null pointer. */
PLUGINCORE_API uint32_t GetIDForDocument(const char* path, char* idBuffer, size_t* idBufferSize);

/* document: an identifier, else a path. fontUsage: the host's text, handed over with the next save. 0,
 * PLUGINCORE_NOT_FOUND when the document is not tracked, PLUGINCORE_INVALID_PARAM for a null pointer. */
PLUGINCORE_API uint32_t UpdateDocumentFontUsage(const char* document, const char* fontUsage);

/*
 * Activates fonts that the user chose, for a tracked document. fontsJSON: a JSON array of font objects with
 * "DatabaseID". *outCount receives the number of fonts that the font manager matched, 0 to begin with.
 * 0, PLUGINCORE_NOT_FOUND when fonts are missing, PLUGINCORE_INVALID_PARAM for text that is no array and for
 * a null path or outCount, else the font manager's code. Null or empty fontsJSON: no fonts.
 */
PLUGINCORE_API uint32_t ActivateChosenFonts(const char* path, const char* fontsJSON, uint32_t* outCount);

/*
 * Lets the user choose replacements for fonts that a document lacks. Nothing is activated: hand the records
 * under "MatchedFont" to ActivateChosenFonts.
 * onlyIfResolvable: true shows the dialog only when at least one font has something to choose from; false
 *   shows it in any case, provided that the font manager permits it (else every font counts as skipped).
 * fontsJSON: a JSON array of font objects, as bufferB of HandleOpenExistingDocument holds them. What a font
 *   can be replaced with stands under "PossibleReplacements": an object of font objects by their PostScript
 *   names.
 * resultBuffer, resultSize: receives the fonts for which a replacement was chosen, a JSON array of the
 *   objects given, each with the chosen font object under "MatchedFont".
 * skippedBuffer, skippedSize: receives all other fonts, a JSON array of the objects given; every font when
 *   the dialog was cancelled. Each is in one of the two. For the skipped ones the host has to show its own
 *   dialog. Written only when the result was.
 * Twice the length of fontsJSON, in compact form, and 32 bytes per font suffice for each buffer; a retry
 * after PLUGINCORE_INDEX_OUT_OF_RANGE asks the user again.
 * 0, also when the dialog was cancelled; PLUGINCORE_NOT_FOUND with onlyIfResolvable when no font has anything
 * to choose from; PLUGINCORE_INVALID_PARAM for text that is no array of fonts, an empty one, or a null
 * pointer; PLUGINCORE_UNKNOWN_ERROR without the plug-in framework or while the dialog shows already;
 * PLUGINCORE_INDEX_OUT_OF_RANGE when a buffer was too small. Main thread; blocks while the dialog shows.
 */
PLUGINCORE_API uint32_t InvokeResolveDialog(bool onlyIfResolvable, const char* fontsJSON, char* resultBuffer,
                                            size_t* resultSize, char* skippedBuffer, size_t* skippedSize);

/*
 * Warns the user of fonts whose use is restricted. onlyNew: says of the fonts that they are new in the
 * document. fontsJSON: a JSON array of font objects with "PostScriptName"; with none in it nothing is shown.
 * 0, whatever the user answered; PLUGINCORE_INVALID_PARAM for text that is no array or a null pointer;
 * PLUGINCORE_UNKNOWN_ERROR without the plug-in framework or while the warning shows already. Main thread;
 * blocks while the dialog shows.
 */
PLUGINCORE_API uint32_t InvokeRestrictedFontsDialog(bool onlyNew, const char* fontsJSON);

/* ---- Menus */

/*
 * Describes the plug-in menu as compact JSON. document: the path or identifier of the document in front; null
 * or empty when none is open. An item is an object: "label" (its number as text; "0" with an empty title is a
 * separator), "title" (in the user's language), "checked", "enabled", and where it has a submenu "child", an
 * array of items; the text is the item of the whole menu, "1".
 * buffer: takes the text with its terminating zero. *size: the buffer's size without the room for that zero;
 * becomes the text's length. A length equal to *size fits.
 * 0; PLUGINCORE_INDEX_OUT_OF_RANGE when it does not fit (nothing is copied); PLUGINCORE_INVALID_PARAM for a
 * null pointer.
 */
PLUGINCORE_API uint32_t GetMenus(const char* document, char* buffer, size_t* size);

/* Called once per menu item. id: what HandleMenuSelection takes; label: the item's text. Both are valid for
 * the length of the call. A code other than 0 ends the work. */
typedef uint32_t (*PluginCoreMenuItemCallback)(const char* id, const char* label, void* context);

/*
 * Reads the host's own description of its menu and calls createItem for each item, an item before those below
 * it. menusJSON: a JSON object; items are objects with "id" (a text or a number) and "label" (a text) in
 * arrays at any depth below it. Several arrays of one object come in the alphabetical order of their names.
 * context is handed through.
 * 0; the code of createItem that ended it; PLUGINCORE_INVALID_PARAM for what is no JSON object or a null
 * pointer.
 */
PLUGINCORE_API uint32_t CreateMenusFromJSONBuffer(const char* menusJSON,
                                                  PluginCoreMenuItemCallback createItem, void* context);

/*
 * Carries out what the user chose: the item with the "id" selectedID of the host's menu, as for
 * CreateMenusFromJSONBuffer. Its label is the text of a command, in English or in the user's language, or the
 * name of a workgroup. menusJSON null or empty: the menu that GetMenus described last, by its labels.
 * document: as for GetMenus. extra: the fonts that the document uses now, as fontsJSON of
 * HandleOpenExistingDocument; may be null. Dialogs may show, also to tell what came of a command. What is not
 * in the menu, a null selectedID, and a workgroup that the user does not have change nothing. Always 0.
 */
PLUGINCORE_API uint32_t HandleMenuSelection(const char* document, const char* menusJSON,
                                            const char* selectedID, const char* extra);

/*
 * Shows the menu as a dialog and carries out what the user chooses. document: as for GetMenus.
 * 0, also when nothing was chosen; PLUGINCORE_INVALID_PARAM without the plug-in framework;
 * PLUGINCORE_UNKNOWN_ERROR while it shows already.
 */
PLUGINCORE_API uint32_t InvokeCommandDialog(const char* document);

/* ---- Settings */

/*
 * Writes all preferences as one JSON object, every value a quoted decimal number, to buffer.
 * *bufferSize: size in bytes; not written to. 2048 bytes do. 0; PLUGINCORE_INDEX_OUT_OF_RANGE when it is too
 * small (the text written so far stays, cut); PLUGINCORE_NOT_INITIALIZED when the plug-in is not functional;
 * PLUGINCORE_INVALID_PARAM for a null pointer.
 */
PLUGINCORE_API uint32_t GetSettings(char* buffer, size_t* bufferSize);

/*
 * Stores one preference. value: a decimal number, or the text of "LastCFOFolder" and "LastUsername" (which
 * are stored and answered with PLUGINCORE_INVALID_PARAM). "CurrentWorkgroup" also takes a workgroup's name.
 * 0; PLUGINCORE_INVALID_PARAM for an unknown key, a value that is no number, or a null pointer;
 * PLUGINCORE_UNKNOWN_ERROR when a number could not be stored; PLUGINCORE_NOT_INITIALIZED when the plug-in is
 * not functional.
 */
PLUGINCORE_API uint32_t SetPreference(const char* key, const char* value);

#ifdef __cplusplus
}
#endif

#endif
