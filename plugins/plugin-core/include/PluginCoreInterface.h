/*
 * PluginCore: font auto-activation for creative applications.
 *
 * A thin host plug-in loads the library, forwards the host's events to these functions, and shows what they
 * hand back. examples/thin-host/thin_host.c is a whole one.
 *
 * Conventions
 * - Text is UTF-8 and ends with a zero. Paths are full paths. What is passed in stays the caller's: nothing
 *   of it is kept or freed.
 * - Every function but two returns a code of the list below. Nothing is thrown, nothing aborts. A null
 *   pointer where a text or a result is expected is answered with PLUGINCORE_INVALID_PARAM.
 * - "out" is written on success alone, unless the function says otherwise. A function that cannot go on for
 *   lack of memory returns PLUGINCORE_OUT_OF_MEMORY, whatever else it lists.
 * - Text results go into buffers of the caller. There are three kinds, named with each function:
 *     "document buffer"  `size` goes in as the buffer's bytes. The text and its zero are copied when the
 *                        text's length is smaller than that, and `size` stays. Else nothing is copied, the
 *                        length goes to `size`, and PLUGINCORE_INDEX_OUT_OF_RANGE is returned. A retry needs
 *                        one byte more than that length.
 *     "menu buffer"      `size` goes in as the buffer's bytes less the one for the zero, and always comes out
 *                        as the text's length. A length equal to `size` fits.
 *     "settings buffer"  `size` goes in as the buffer's bytes and stays. What does not fit is cut.
 * - A document is known by its path. One that has no path yet is known by its identifier, a UUID of 36
 *   characters, until SetPathForDocument gives it one. Where a function takes a path alone, an identifier is
 *   taken for the path of another document.
 * - [in turn]: on any thread, one call at a time: none begins on one thread while another one is under way on
 *   another. A host whose events come on several threads holds a lock of its own around each call; one whose
 *   events all come on its main thread needs none.
 * - [in turn, dialogs]: the same, and the call may show a modal dialog and lasts until that ends: what needs the
 *   font manager does, where its agent has to be started anew and does not come. On Windows a dialog takes the
 *   thread's messages from its queue and hands them on to the host's windows: call on the thread of those
 *   windows there. On Linux it is a window of another process, and the thread waits for it: the host draws
 *   nothing meanwhile and gets no events. When the host calls back into the library from behind a dialog of a
 *   call that activates or closes fonts, HandleOpenExistingDocument, HandleCloseDocument and ActivateChosenFonts
 *   answer PLUGINCORE_UNKNOWN_ERROR.
 * - Callbacks (SetRebuildWorkgroupsMenuCallback, CreateMenusFromJSONBuffer, the functions of a panel event
 *   service) return. No exception and no longjmp may leave them: the library is built with another compiler
 *   than most hosts, whose exceptions pass its frames without clean-up. One in C++ catches all:
 *
 *       void OnWorkgroupsChanged(void) noexcept {
 *           try { RebuildMenu(); } catch (...) { ReportProblem(); }
 *       }
 *
 *   A host that gets this wrong loses the memory of that call. No lock is held while a callback runs, and what
 *   the call had begun counts as over from the next one that is made from no deeper in the stack, such as that
 *   of an idle loop; until then it may count as called recursively.
 * - Time: dialogs apart, one call waits for the font manager for less than 5 seconds in all.
 *
 * Hosts. The library serves a process whose name holds one of the words After, Illustrator, InCopy, InDesign,
 * Photoshop and Sketch, in this spelling; on Linux also those of LibreOffice (soffice), GIMP (gimp), Inkscape
 * (inkscape), Scribus (scribus) and Evince (evince), and processes that bear one of these names. In any other one
 * InitializePluginCoreInterface answers PLUGINCORE_NOT_STARTED, and the functions answer as for a plug-in that is
 * switched off; a host that goes on to ask PluginIsEnabled may be told that it is on.
 *
 * Loading. Not from DllMain, nor from what runs within it: the library loads others and starts threads. On
 * Windows the library needs VantorixCoreFoundation.dll beside it. A plug-in in another folder than the host's
 * program loads it by its full path with LoadLibraryEx and LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR |
 * LOAD_LIBRARY_SEARCH_DEFAULT_DIRS. Once loaded it stays, whoever unloads it.
 */
#ifndef PLUGIN_CORE_INTERFACE_H
#define PLUGIN_CORE_INTERFACE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* Stands before each declaration; empty, unless the build that includes this has to say dllimport or the
 * like. */
#ifndef PLUGINCORE_API
#define PLUGINCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define PLUGINCORE_INTERFACE_VERSION 8u

/* Results. Those with eight digits are error codes of the font manager's family; ActivateChosenFonts passes
 * on others of that family, too. */
#define PLUGINCORE_SUCCESS 0u
#define PLUGINCORE_FONTS_ACTIVATED 1u             /* success, and the document should be redrawn */
#define PLUGINCORE_NO_PREFERENCES 2u              /* no memory for what keeps them */
#define PLUGINCORE_NO_FONT_MANAGER 1000u          /* the font manager is known to be gone */
#define PLUGINCORE_NOT_STARTED 0xFFFFFFFFu        /* not a host to serve, no font manager, or started */
#define PLUGINCORE_INVALID_PARAM 0x04000000u      /* a null pointer, or not what was asked for */
#define PLUGINCORE_NULL_POINTER 0x05000000u       /* a null panel event service */
#define PLUGINCORE_OUT_OF_MEMORY 0x06000000u      /* out of memory */
#define PLUGINCORE_NOT_FOUND 0x07000000u          /* no such document or font */
#define PLUGINCORE_NOT_IMPLEMENTED 0x08000000u    /* a wrong interface version */
#define PLUGINCORE_INDEX_OUT_OF_RANGE 0x0C000000u /* the text buffer is too small */
#define PLUGINCORE_NOT_INITIALIZED 0x11000000u    /* the plug-in is off or nobody is logged in */
#define PLUGINCORE_UNKNOWN_ERROR 0x15000000u      /* the plug-in or the font manager cannot be used */

/* ---- Life cycle */

/*
 * Starts the core. To be called once, when the host plug-in loads. The user may be asked for a workgroup and
 * told why fonts will not be activated. [in turn, dialogs]
 *
 * pluginIdentifier       in: who calls. Either the path of the plug-in's file, whose version resource names
 *                        the host application ("InternalName"), the plug-in's version ("PrivateBuild") and
 *                        the least version of the host ("HostAppMinimumVersion"); or, for a plug-in without a
 *                        file of its own, an identifier: "com.vantorix.AutoActivationPlugin." and AI27 to
 *                        AI30 (Illustrator 2023 to 2026), AE230, AE240, AE250, AE260 (After Effects 2023 to
 *                        2026), or the name of another host application as HostApplications.h has it
 *                        (Photoshop2025; on Linux LibreOffice, GIMP and so on). With any other identifier
 *                        everything works: preferences are kept apart from those of every known host, and
 *                        the log is named for the identifier.
 * versionPrefixRequired  in: what the host application's file version must begin with; empty for any. Programs
 *                        of Linux have none: what requires one there is never served.
 *                        Together with the least version it also decides whether messages may show: they do
 *                        when one of the two is there.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS        the host is served, and the font manager's library was found. The font manager
 *                             itself is started when it is needed; PluginIsEnabled tells whether it is there.
 *   PLUGINCORE_NOT_STARTED    the process is not a host that is served, or has the wrong version, the font
 *                             manager's library is missing or has an incompatible version, or this is not the first call.
 *   PLUGINCORE_NO_PREFERENCES no memory for what keeps the preferences. (Without the plug-in framework itself
 *                             the library starts, and stays off.)
 *   PLUGINCORE_INVALID_PARAM  a null pointer, or no UTF-8.
 */
PLUGINCORE_API uint32_t InitializePluginCoreInterface(const char* pluginIdentifier,
                                                      const char* versionPrefixRequired);

/*
 * Closes every tracked document and lets go of the font manager. To be called once, when the host quits.
 * [in turn, dialogs]
 *
 * Returns: PLUGINCORE_SUCCESS.
 */
PLUGINCORE_API uint32_t TerminatePluginCoreInterface(void);

/*
 * Agrees on the version of this interface. [in turn, dialogs]
 *
 * version           out: PLUGINCORE_INTERFACE_VERSION, whatever is returned.
 * requestedVersion  in: what the host plug-in was built for; 0 for any.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_NOT_IMPLEMENTED  another version than this one; the user was told.
 *   PLUGINCORE_INVALID_PARAM    a null pointer.
 */
PLUGINCORE_API uint32_t GetAPIVersion(uint32_t* version, uint32_t requestedVersion);

/*
 * Whether the plug-in can offer its functions now. To be asked before they are offered: it also notices that
 * the font manager is back or that the user has logged in. [in turn, dialogs]
 *
 * allowDialogs  in: whether the user is to be told why not.
 * isEnabled     out: written in any case.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS        it can.
 *   PLUGINCORE_UNKNOWN_ERROR  it cannot: switched off, no font manager, nobody logged in, or no workgroup.
 *   PLUGINCORE_INVALID_PARAM  a null pointer.
 */
PLUGINCORE_API uint32_t PluginIsEnabled(bool allowDialogs, bool* isEnabled);

/*
 * Reacts to what the font manager reported, a logout or a change of the workgroups for example. To be called
 * from the host's idle loop. Messages may show. [in turn, dialogs]
 *
 * Returns: PLUGINCORE_SUCCESS.
 */
PLUGINCORE_API uint32_t IdleEvent(void);

/*
 * Whether the user has yet to log in to the font manager. [in turn, dialogs]
 *
 * showLogin  out: true also while there is no font manager.
 */
PLUGINCORE_API void ShouldShowLogin(bool* showLogin);

/*
 * Tells the user that nobody is logged in, and counts the user as logged out until PluginIsEnabled finds
 * otherwise. [in turn, dialogs]
 *
 * Returns: PLUGINCORE_SUCCESS.
 */
PLUGINCORE_API uint32_t ShowNotLoggedInMessageBox(void);

/*
 * Has the host told when the list of workgroups changed, so that it asks for GetMenus again. [in turn]
 *
 * callback  in: called without arguments from within another function of this library, on its thread;
 *           replaces the one before; null for none.
 */
PLUGINCORE_API void SetRebuildWorkgroupsMenuCallback(void (*callback)(void));

/* ---- Panels */

/*
 * The port on which panels are listened to. [in turn]
 *
 * port  out: 0 for none, which is always so in this version.
 *
 * Returns: PLUGINCORE_SUCCESS, or PLUGINCORE_INVALID_PARAM for a null pointer.
 */
PLUGINCORE_API uint32_t GetSocketPort(uint32_t* port);

/*
 * Registers with the host's panel event service: requests of panels are listened to and answered from now on.
 * [in turn, dialogs]
 *
 * plugPlug  in: a PlugPlugService (PlugPlug.h), which must live until the process ends.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS          also when it was done before.
 *   PLUGINCORE_NULL_POINTER     a null pointer, or a service that lacks one of its functions.
 *   PLUGINCORE_NOT_INITIALIZED  the service refused.
 */
PLUGINCORE_API uint32_t RegisterPlugPlug(void* plugPlug);

/*
 * The same for a service that takes a while to be ready: to be called from the idle loop until it succeeds.
 * Most calls only wait for the next attempt; after twelve there is none. [in turn, dialogs]
 *
 * plugPlug  in: as for RegisterPlugPlug.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_NULL_POINTER     a null pointer.
 *   PLUGINCORE_NOT_INITIALIZED  not registered yet.
 */
PLUGINCORE_API uint32_t TryRegisterPlugPlug(void* plugPlug);

/*
 * Tells the panels what has changed in the font manager since the last call. To be called from the idle loop.
 * [in turn, dialogs]
 *
 * closeListeningSocket  in: true when the host quits.
 *
 * Returns: PLUGINCORE_SUCCESS, or the code of the first message that could not be sent. The rest of that
 * panel's messages wait for the next call.
 */
PLUGINCORE_API uint32_t ProcessPanelMessages(bool closeListeningSocket);

/* ---- Documents */

/*
 * The user made a new document, which has no path yet. [in turn]
 *
 * idBuffer, idBufferSize  out: its identifier, in a document buffer; 37 bytes suffice.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_INVALID_PARAM  a null pointer, or a buffer that is too small; then the document is tracked all
 *                             the same.
 */
PLUGINCORE_API uint32_t HandleCreateNewDocument(char* idBuffer, size_t* idBufferSize);

/*
 * A document was opened: has its fonts found and activated. [in turn, dialogs]
 *
 * path               in
 * fontsJSON          in: the fonts that the document uses: an array of font objects, or an object with such
 *                    an array under "DocumentFonts". A font object has the members of a font record
 *                    (FontRecordKeys.h), "PostScriptName" at least. Null or empty: the names are searched for
 *                    in the file, for up to 2 seconds; what takes longer counts as no fonts, and so does
 *                    what does not parse. While "SupportEmbeddedObjects" is off, fonts of placed documents
 *                    ("SubDocumentsWithFont") are left out, and stand in neither buffer.
 * bufferA, sizeA     out: the fonts that were matched, a JSON array in a document buffer. Each has the
 *                    members of the font asked for and of the font's record, "ActivationStatus" as it is now,
 *                    and the record from before under "MatchedFont".
 * bufferB, sizeB     out: the fonts without a match, the same way. What could replace one stands under
 *                    "PossibleReplacements" as for InvokeResolveDialog.
 * numFontsActivated  out: how many became active; written in any case but that of a null pointer.
 *
 * While the font manager cannot be asked, or the plug-in is off, the answer is PLUGINCORE_SUCCESS: the document
 * opens as it would without the plug-in. The buffers are left alone then, but for a document that is open
 * already, whose lists stay as they were, and empty lists where the font manager is lost in the call. Put a
 * zero into them first.
 *
 * Returns:
 *   PLUGINCORE_FONTS_ACTIVATED     the document should be redrawn.
 *   PLUGINCORE_SUCCESS             no font became active.
 *   PLUGINCORE_INDEX_OUT_OF_RANGE  a buffer was too small. The fonts are active all the same: redraw if
 *                                  `numFontsActivated` is not 0, since a retry finds them active and answers
 *                                  PLUGINCORE_SUCCESS.
 *   PLUGINCORE_INVALID_PARAM       a null pointer other than fontsJSON.
 *   PLUGINCORE_UNKNOWN_ERROR       called from behind a dialog of another call.
 */
PLUGINCORE_API uint32_t HandleOpenExistingDocument(const char* path, const char* fontsJSON, char* bufferA,
                                                   size_t* sizeA, char* bufferB, size_t* sizeB,
                                                   int* numFontsActivated);

/*
 * A document was saved: hands its font usage to the font manager. A document that is not tracked is from now
 * on; one that was made gets its path by SetPathForDocument first. [in turn, dialogs]
 *
 * path  in
 * hint  in: the host's text about the document's font usage; null or empty for that of
 *       UpdateDocumentFontUsage.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_UNKNOWN_ERROR  the font manager did not take it. It is tried once more when the document
 *                             closes.
 *   PLUGINCORE_INVALID_PARAM  a null path.
 */
PLUGINCORE_API uint32_t HandleSaveDocument(const char* path, const char* hint);

/*
 * A document was closed: lets its fonts go. [in turn, dialogs]
 *
 * path  in: or the identifier of a document that never got a path.
 * hint  in: as for HandleSaveDocument, for when something is left to hand over.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_UNKNOWN_ERROR  the document is not tracked, or called from behind a dialog of another call.
 *   PLUGINCORE_INVALID_PARAM  a null path.
 */
PLUGINCORE_API uint32_t HandleCloseDocument(const char* path, const char* hint);

/*
 * A document got a path, or another one. [in turn]
 *
 * path        in: another document that had it loses it, and is known by its identifier from then on.
 * documentId  in: its identifier.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_NOT_FOUND      no document has the identifier.
 *   PLUGINCORE_INVALID_PARAM  a null pointer.
 */
PLUGINCORE_API uint32_t SetPathForDocument(const char* path, const char* documentId);

/*
 * The identifier of a document. [in turn]
 *
 * path                    in
 * idBuffer, idBufferSize  out: in a document buffer; 37 bytes suffice.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_NOT_FOUND           no document has the path.
 *   PLUGINCORE_INDEX_OUT_OF_RANGE  the buffer is too small.
 *   PLUGINCORE_INVALID_PARAM       a null pointer.
 */
PLUGINCORE_API uint32_t GetIDForDocument(const char* path, char* idBuffer, size_t* idBufferSize);

/*
 * Notes the host's text about the font usage of a document, to be handed over with the next save.
 * [in turn]
 *
 * document   in: an identifier, or a path.
 * fontUsage  in
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_NOT_FOUND      the document is not tracked.
 *   PLUGINCORE_INVALID_PARAM  a null pointer.
 */
PLUGINCORE_API uint32_t UpdateDocumentFontUsage(const char* document, const char* fontUsage);

/*
 * Activates fonts that the user chose, for a document. [in turn, dialogs]
 *
 * path       in: of a tracked document. For another one nothing is activated.
 * fontsJSON  in: an array of font objects with "DatabaseID"; null or empty for none.
 * outCount   out: how many of them the font manager matched; 0 unless the document is tracked.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS          done; also for a document that is not tracked when all fonts say that they
 *                               are active.
 *   PLUGINCORE_NOT_FOUND        the document is not tracked, or the font manager was lost in the call, and
 *                               some of the fonts are not active.
 *   PLUGINCORE_NO_FONT_MANAGER  the font manager was lost before.
 *   PLUGINCORE_INVALID_PARAM    no array, or a null path or outCount.
 *   PLUGINCORE_UNKNOWN_ERROR    called from behind a dialog of another call.
 *   another code                the font manager's.
 */
PLUGINCORE_API uint32_t ActivateChosenFonts(const char* path, const char* fontsJSON, uint32_t* outCount);

/*
 * Lets the user choose replacements for fonts that a document lacks. Nothing is activated: hand the records
 * under "MatchedFont" to ActivateChosenFonts. Blocks while the dialog shows. [in turn, dialogs]
 *
 * onlyIfResolvable            in: true shows the dialog only when a font has something to choose from; false
 *                             shows it in any case, if the font manager permits it. Where it does not, every
 *                             font counts as skipped.
 * fontsJSON                   in: an array of font objects, as bufferB of HandleOpenExistingDocument holds
 *                             them. "PossibleReplacements" is an object of font objects by PostScript name.
 * resultBuffer, resultSize    out: the fonts for which a replacement was chosen, an array of the objects
 *                             given in a document buffer, each with the chosen font object under
 *                             "MatchedFont".
 * skippedBuffer, skippedSize  out: all other fonts, the same way; every font when the dialog was cancelled.
 *                             The host shows its own dialog for these. Written only when the result was.
 *
 * Twice the length of fontsJSON in compact form and 32 bytes per font suffice for each buffer. A retry after
 * PLUGINCORE_INDEX_OUT_OF_RANGE asks the user again.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS             also when the dialog was cancelled.
 *   PLUGINCORE_NOT_FOUND           with onlyIfResolvable: no font has anything to choose from.
 *   PLUGINCORE_INDEX_OUT_OF_RANGE  a buffer is too small.
 *   PLUGINCORE_INVALID_PARAM       no array of fonts, an empty text, or a null pointer.
 *   PLUGINCORE_UNKNOWN_ERROR       no plug-in framework, or the dialog shows already.
 */
PLUGINCORE_API uint32_t InvokeResolveDialog(bool onlyIfResolvable, const char* fontsJSON, char* resultBuffer,
                                            size_t* resultSize, char* skippedBuffer, size_t* skippedSize);

/*
 * Warns the user of fonts whose use is restricted. Blocks while the dialog shows. [in turn, dialogs]
 *
 * onlyNew    in: says of the fonts that they are new in the document.
 * fontsJSON  in: an array of font objects with "PostScriptName"; without any, nothing shows.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS        whatever the user answered.
 *   PLUGINCORE_INVALID_PARAM  no array, or a null pointer.
 *   PLUGINCORE_UNKNOWN_ERROR  no plug-in framework, or the dialog shows already.
 */
PLUGINCORE_API uint32_t InvokeRestrictedFontsDialog(bool onlyNew, const char* fontsJSON);

/* ---- Menus. Two descriptions of a menu are used: the library's own, which GetMenus gives, and the host's,
 * which CreateMenusFromJSONBuffer and HandleMenuSelection take. "label" is the number of an item in the
 * first, and its text in the second, where "id" is what the host knows it by. */

/*
 * Describes the plug-in menu as compact JSON. [in turn, dialogs]
 *
 * document      in: path or identifier of the document in front; null or empty for none.
 * buffer, size  out: the text, in a menu buffer. It is one item, "1", which holds the others. An item is an
 *               object: "label" (its number as text; "0" with an empty title is a separator), "title" (in the
 *               user's language), "checked", "enabled", and "child" (an array of items) for a submenu.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_INDEX_OUT_OF_RANGE  it does not fit; nothing is copied.
 *   PLUGINCORE_INVALID_PARAM       a null pointer other than document.
 */
PLUGINCORE_API uint32_t GetMenus(const char* document, char* buffer, size_t* size);

/*
 * Makes one menu item of the host's.
 *
 * id       in: what HandleMenuSelection takes; valid for the length of the call, as is
 * label    in: the item's text.
 * context  in: as given to CreateMenusFromJSONBuffer.
 *
 * Returns: PLUGINCORE_SUCCESS to go on; anything else ends the work.
 */
typedef uint32_t (*PluginCoreMenuItemCallback)(const char* id, const char* label, void* context);

/*
 * Reads the host's own description of its menu and has each item made, one before those below it.
 * [in turn]
 *
 * menusJSON   in: a JSON object. Items are objects with "id" (a text or a number) and "label" (a text), in
 *             arrays at any depth. Several arrays of one object come in the alphabetical order of their
 *             names.
 * createItem  in: called for each item.
 * context     in: handed through; may be null.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_INVALID_PARAM  no JSON object, or a null pointer.
 *   another code              that of createItem which ended it.
 */
PLUGINCORE_API uint32_t CreateMenusFromJSONBuffer(const char* menusJSON,
                                                  PluginCoreMenuItemCallback createItem, void* context);

/*
 * Carries out what the user chose. Dialogs may show, also to tell what came of a command. What is not in the
 * menu, and a workgroup that the user does not have, change nothing. [in turn, dialogs]
 *
 * document    in: as for GetMenus.
 * menusJSON   in: the host's menu, as for CreateMenusFromJSONBuffer; null or empty for what GetMenus
 *             described last.
 * selectedID  in: the "id" of an item of the host's menu, whose "label" is the text of a command, in English
 *             or in the user's language, or the name of a workgroup; without menusJSON the "label" of an item
 *             of GetMenus. Null chooses nothing.
 * extra       in: the fonts that the document uses now, as fontsJSON of HandleOpenExistingDocument; may be
 *             null.
 *
 * Returns: PLUGINCORE_SUCCESS.
 */
PLUGINCORE_API uint32_t HandleMenuSelection(const char* document, const char* menusJSON,
                                            const char* selectedID, const char* extra);

/*
 * Shows the menu as a dialog and carries out what the user chooses. Blocks meanwhile. [in turn, dialogs]
 *
 * document  in: as for GetMenus.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS        also when nothing was chosen.
 *   PLUGINCORE_INVALID_PARAM  no plug-in framework.
 *   PLUGINCORE_UNKNOWN_ERROR  the dialog shows already.
 */
PLUGINCORE_API uint32_t InvokeCommandDialog(const char* document);

/* ---- Settings */

/*
 * All preferences, as one compact JSON object whose values are quoted decimal numbers; those that hold a text
 * read as "0". [in turn]
 *
 * buffer, bufferSize  out: the text, in a settings buffer; 2048 bytes suffice.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_INDEX_OUT_OF_RANGE  the buffer is too small; it holds the beginning.
 *   PLUGINCORE_NOT_INITIALIZED     the plug-in is off or nobody is logged in.
 *   PLUGINCORE_INVALID_PARAM       a null pointer.
 */
PLUGINCORE_API uint32_t GetSettings(char* buffer, size_t* bufferSize);

/*
 * Stores one preference. [in turn, dialogs]
 *
 * key    in: one of those that GetSettings writes.
 * value  in: a decimal number of 32 bits with sign, but not -2147483647; for "CurrentWorkgroup" also a
 *        workgroup's name; for "LastCFOFolder" and "LastUsername" any text.
 *
 * Returns:
 *   PLUGINCORE_SUCCESS
 *   PLUGINCORE_INVALID_PARAM    an unknown key, not a number, no such workgroup, a null pointer; and always
 *                               for the two keys with a text, which are stored all the same.
 *   PLUGINCORE_UNKNOWN_ERROR    it could not be stored.
 *   PLUGINCORE_NOT_INITIALIZED  the plug-in is off or nobody is logged in.
 */
PLUGINCORE_API uint32_t SetPreference(const char* key, const char* value);

/*
 * Every function by its name, X(name), for a host that looks them up in the loaded library; for example
 *
 *     #define DECLARE(name) static __typeof__(&name) p##name;
 *     PLUGINCORE_FUNCTIONS(DECLARE)
 */
#define PLUGINCORE_FUNCTIONS(X)         \
    X(InitializePluginCoreInterface)    \
    X(TerminatePluginCoreInterface)     \
    X(GetAPIVersion)                    \
    X(PluginIsEnabled)                  \
    X(IdleEvent)                        \
    X(ShouldShowLogin)                  \
    X(ShowNotLoggedInMessageBox)        \
    X(SetRebuildWorkgroupsMenuCallback) \
    X(GetSocketPort)                    \
    X(RegisterPlugPlug)                 \
    X(TryRegisterPlugPlug)              \
    X(ProcessPanelMessages)             \
    X(HandleCreateNewDocument)          \
    X(HandleOpenExistingDocument)       \
    X(HandleSaveDocument)               \
    X(HandleCloseDocument)              \
    X(SetPathForDocument)               \
    X(GetIDForDocument)                 \
    X(UpdateDocumentFontUsage)          \
    X(ActivateChosenFonts)              \
    X(InvokeResolveDialog)              \
    X(InvokeRestrictedFontsDialog)      \
    X(GetMenus)                         \
    X(CreateMenusFromJSONBuffer)        \
    X(HandleMenuSelection)              \
    X(InvokeCommandDialog)              \
    X(GetSettings)                      \
    X(SetPreference)

#ifdef __cplusplus
}
#endif

#endif
