/*
 * The font manager's plug-in interface: the 86 functions that the library "TarnwickPluginInterfaceX64"
 * exports and that the core binds by name at run time.
 *
 * Conventions
 * - Every function returns a 32-bit error code, 0 for success. GIPCClient::kServiceUnavailable (0x0300100E)
 *   and GAgentIF::kShutdown (0x0200200D) say that the agent is gone, or silent for 2 seconds. The next facade
 *   leads to whatever agent is there by then; GetIsCoreAgentProcessRunning tells whether there is one. The
 *   caller may also start one, drop the facade with ResetPluginFacadeInstance, and repeat the call: one that
 *   is repeated with the same arguments has the effect and the answer of one, whether or not the agent had
 *   carried it out. CoreErrorCodes::kNotImplemented (0x08000000) is the answer of a function that this font
 *   manager has no use for. Nothing is thrown. No call takes longer than 4.4 seconds, nor do those together
 *   that follow one in which the agent was silent.
 * - Functions that work on the font manager's data take the facade first. The facade is owned by the library:
 *   fetch it with GetPluginFacadeInstance before every call and never keep it.
 * - "out" is a pointer that is written on success alone, unless a function says otherwise. CoreFoundation
 *   objects follow the usual rules: what comes out through a pointer named outNew... is owned by the caller
 *   and released by it. "in/out, appended to" is a mutable array of the caller's. Plain C strings are UTF-8.
 * - Fonts in arrays are font records (FontRecordKeys.h) of which kGS_DatabaseIDKey alone must be there, or
 *   where a function says so, IDs: CFNumbers that hold database IDs.
 * - A null pointer that is not said to be possible is answered with CoreErrorCodes::kNullPointer.
 * - Any thread may call; calls of one process are carried out one after the other. The notification callback
 *   runs on the library's own thread.
 */
#ifndef TARNWICK_PLUGIN_INTERFACE_H
#define TARNWICK_PLUGIN_INTERFACE_H

#include <CoreFoundation/CoreFoundation.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "FontRecordKeys.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The connection to the agent, for this process. */
typedef struct OpaquePluginFacade* PluginFacadeRef;
/* The calling thread's share of the library: what BeginLogging and Log write through. */
typedef struct OpaquePluginThreadInstance* PluginThreadInstanceRef;

/* Modes of an activation request. */
#define kGS_ActivateLocally "ActivateLocally"
#define kGS_ActivateGlobally "ActivateGlobally"

/* Members of a smart list's dictionary. The IDs are arrays of CFNumbers. */
#define kGS_SmartListIDKey "smartListID"
#define kGS_SmartListNameKey "smartListName"
#define kGS_WorkgroupIDsKey "workgroupIDs"
#define kGS_SetIDsKey "setIDs"
#define kGS_SmartSetIDsKey "smartSetIDs"
#define kGS_ListDefinitionKey "listDefinition" /* string: all of the above as a JSON object, in UTF-8 */

/* Member of the records that GetSmartListFonts gives, beside those of any font record: the full name, for
 * people to read. */
#define kGS_DisplayNameKey "displayName"

/* Members of what GetPanelSmartListTree gives, beside those and those of a workgroup's record. */
#define kGS_WorkgroupsKey "workgroups"
#define kGS_SetsKey "sets"
#define kGS_SetIDKey "setID"
#define kGS_SetNameKey "setName"
#define kGS_SmartListsKey "smartLists"

/* Members of a font's dictionary in what RenderFontNamePreviewPNGs gives: full paths, UTF-8. */
#define kGS_PNGFilenameKey "pngFilename"
#define kGS_2xPNGFilenameKey "2xPNGFilename"

/*
 * Kinds of notification, with what pCallbackData points to for the length of the callback.
 * Types 0 to 3 are states, the rest follow the notification names from the third on.
 */
enum PluginNotificationType {
    kPluginCallback_WentOnline = 0,                      /* null */
    kPluginCallback_WentOffline = 1,                     /* null */
    kPluginCallback_LoggedIn = 2,                        /* CFDictionaryRef: "serverType" */
    kPluginCallback_LoggedOut = 3,                       /* null */
    kPluginCallback_PanelDataChanged = 4,                /* null */
    kPluginCallback_WorkgroupsChanged = 5,               /* null */
    kPluginCallback_AgentShutdown = 6,                   /* null */
    kPluginCallback_FontActivated = 7,                   /* uint32_t: database ID */
    kPluginCallback_FontDeactivated = 8,                 /* uint32_t: database ID */
    kPluginCallback_FontMissing = 9,                     /* uint32_t: database ID */
    kPluginCallback_DesignActivationNonCompliant = 10,   /* uint32_t: database ID */
    kPluginCallback_UserPermissionsChanged = 11,         /* null */
    kPluginCallback_TaskStarted = 12,                    /* CFDictionaryRef */
    kPluginCallback_TaskProgress = 13,                   /* CFDictionaryRef */
    kPluginCallback_TaskFinished = 14,                   /* CFDictionaryRef */
    kPluginCallback_TaskError = 15,                      /* CFDictionaryRef */
    kPluginCallback_BulkReplicationProgress = 16,        /* CFDictionaryRef */
    kPluginCallback_BulkReplicationStopped = 17,         /* null */
    kPluginCallback_IncrementalReplicationProgress = 18, /* CFDictionaryRef */
    kPluginCallback_IncrementalReplicationStopped = 19,  /* null */
    kPluginCallback_GoogleReplicationProgress = 20,      /* CFDictionaryRef */
    kPluginCallback_GoogleReplicationStopped = 21,       /* null */
    kPluginCallback_FontServerReplicationProgress = 22,  /* CFDictionaryRef */
    kPluginCallback_FontServerReplicationStopped = 23,   /* null */
    kPluginCallback_GoogleWebFontsEnabled = 24,          /* bool */
    kPluginCallback_PreviewPNGsRendered = 25,            /* CFDictionaryRef, see below */
    kPluginCallback_SmartListsChanged = 26,              /* null */
    kPluginCallback_OfflineDownloadFinished = 27,        /* null */
    kPluginCallback_Enabled = 28                         /* bool */
};

/* Called on the library's own thread; must only record. */
typedef void (*PluginNotificationCallback)(int32_t callbackType, const void* pCallbackData);

/* How replication stands (GetCurrentReplicationMode). */
enum PluginReplicationMode {
    kReplicationMode_None = 0,
    kReplicationMode_Bulk = 1,
    kReplicationMode_Incremental = 2
};

/* What GetPermission and MotherMayI are asked about. */
enum PluginPermission {
    kPermission_ActivateFonts = 1,
    kPermission_ExportFonts = 2,
    kPermission_CreateSets = 3,
    kPermission_CreateSmartLists = 4,
    kPermission_ShowPostscriptReplacements = 5
};

/*
 * The functions in binding order: X(symbol, parameter list).
 *
 * "Column" functions give the number under which panels know a column of font records. A number is never
 * given another meaning, so that panels may keep it.
 */
/* clang-format off */
#define TARNWICK_PLUGIN_FUNCTIONS(X) \
    /* Activates fonts by their IDs for a document of this process.
     *
     *   fonts               in: font records; null with kGS_ActivateGlobally: all that this process holds for
     *                       documents.
     *   documentIdentifier  in: what the document is told apart by; may be null.
     *   mode                in: kGS_ActivateLocally or null: until this process lets them go, or ends.
     *                       kGS_ActivateGlobally: beyond that, until the font manager ends or the user
     *                       deactivates them.
     *   matchedFonts        in/out, appended to: the record of each font that is known, with the activation
     *                       state from before; may be null.
     *
     * Returns, beside success:
     *   GIPCClient::kReplyTimeout  there was no time for all of them. `matchedFonts` has those that were
     *                              activated, for the caller to let go of.
     */ \
    X(ActivateFonts, (PluginFacadeRef facade, CFArrayRef fonts, CFStringRef documentIdentifier, \
                     CFStringRef mode, CFMutableArrayRef matchedFonts)) \
    /* Finds the fonts that a document asks for, and activates them for this process.
     *
     *   documentPath    in: may be null.
     *   requestedFonts  in: font records; kGS_PostScriptNameKey, else kGS_FamilyKey and style, says which
     *                   font is meant. A bare CFString is a PostScript name.
     *   matchedFonts    in/out, appended to: the record of each font that was matched, with the activation
     *                   state from before; may be null.
     *   unmatchedFonts  in/out, appended to: what was asked for in vain, with the records of fonts that come
     *                   near under kGS_PossibleReplacementsKey; may be null.
     *   reportedFonts   in/out, appended to: per matched font what was asked for, completed by the font's
     *                   record, with the activation state from after and the record from before under
     *                   kGS_MatchedFontKey; may be null.
     *
     * Returns, beside success:
     *   GIPCClient::kReplyTimeout  as for ActivateFonts; the other two arrays are left alone.
     */ \
    X(ActivateDocumentFontsByPath, (PluginFacadeRef facade, CFStringRef documentPath, \
                                   CFArrayRef requestedFonts, CFMutableArrayRef matchedFonts, \
                                   CFMutableArrayRef unmatchedFonts, CFMutableArrayRef reportedFonts)) \
    /* Puts each of the fonts into each of the sets; what is in one already stays. All of it or nothing. Needs
     * kPermission_CreateSets.
     *
     *   fontIDs  in: IDs, of any workgroup.
     *   setIDs   in: CFNumbers, as CreateTopLevelSet gives them.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound            one of the fonts is unknown.
     *   GZephyrinSetManager::kSetNotFound    one of the sets is.
     *   GZephyrinServerFacade::kNotLoggedIn  nobody is logged in.
     */ \
    X(AddFontsToSets, (PluginFacadeRef facade, CFArrayRef fontIDs, CFArrayRef setIDs)) \
    /* From now on Log writes to that file; also for threads that began none themselves.
     *
     *   thread       in
     *   logFileName  in: a path, or a file name for the folder for logs.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kInvalidParam  an empty name.
     *   GFile::kOpenFailed             the file cannot be written.
     */ \
    X(BeginLogging, (PluginThreadInstanceRef thread, const char* logFileName)) \
    /* Whether ExportFonts may copy these fonts: the user is permitted to, and each has its file here.
     *
     *   fonts         in: font records, or IDs.
     *   outCanExport  out
     */ \
    X(CanExportFonts, (PluginFacadeRef facade, CFArrayRef fonts, bool* outCanExport)) \
    /* Makes an empty set in a workgroup, with which it goes. Needs kPermission_CreateSets.
     *
     *   name         in: not blank, and not that of another set of the workgroup.
     *   workgroupID  in
     *   outSetID     out: above 0, and never given twice.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kItemAlreadyExists                               the workgroup has a set of that
     *                                                                    name: choose another.
     *   CoreErrorCodes::kMissingParam                                    a blank name.
     *   CoreErrorCodes::kInvalidParam                                    a name that is too long or holds
     *                                                                    what cannot be seen.
     *   GZephyrinSetManager::kWorkGroupIDDoesNotExist                    an unknown workgroup.
     *   GZephyrinSetManager::kCannotCreateSharedSetsInAllFontsWorkgroup  the ID of all workgroups together.
     *   GZephyrinSetManager::kCannotAddSetsToSystemWorkgroup             that of the system's fonts.
     *   GZephyrinServerFacade::kNotLoggedIn                              nobody is logged in.
     */ \
    X(CreateTopLevelSet, (PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, int32_t* outSetID)) \
    /* Lets go of fonts that were activated for this process. Fonts that the user activated stay active.
     *
     *   fonts             in: font records.
     *   context           in: 0.
     *   deactivatedFonts  in/out, appended to: the record of each font that became inactive; may be null.
     *
     * Returns, beside success:
     *   GIPCClient::kReplyTimeout  there was no time for all of them; `deactivatedFonts` has those that were
     *                              let go.
     */ \
    X(DeactivateFonts, (PluginFacadeRef facade, CFArrayRef fonts, uint64_t context, \
                       CFMutableArrayRef deactivatedFonts)) \
    /* Ends what InitThreadInstance began.
     *
     *   thread  in: not to be used any more; may be null.
     */ \
    X(DestroyThreadInstance, (PluginThreadInstanceRef thread)) \
    /* Activates a font for the user to design with, until it is called with `enable` false or this process
     * ends. DeactivateFonts and the end of documents do not touch it.
     *
     *   fontID            in
     *   wholeFamily       in: the other fonts of its family as well; those without a file are passed over.
     *   enable            in
     *   conflictingFonts  in/out, appended to: what GetFontConflicts would have answered before; may be null.
     *                     Conflicts keep no font from becoming active.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound            an unknown font.
     *   GZephyrinAssetManager::kFontMissing  its file is gone.
     *   GZephyrinServerFacade::kNotLoggedIn  nobody is logged in.
     */ \
    X(EnableDesignActivation, (PluginFacadeRef facade, uint32_t fontID, bool wholeFamily, bool enable, \
                              CFMutableArrayRef conflictingFonts)) \
    /* Copies the file of each font, each file once, under the name with which it was added, as far as every
     * system takes it. A file that is there is never replaced: one of the same content counts as the copy,
     * beside another the copy gets a number. A copy bears its name only when it is complete. Texts of licences
     * and a list of the fonts may go with them. The calling thread copies.
     *
     *   fonts              in: font records, or IDs.
     *   destinationFolder  in: a path; made when missing.
     *   exportedPaths      in/out, appended to: the path of each copy, whatever is returned; may be null.
     *
     * Returns, beside success:
     *   GZephyrinExportFonts::kFontUnavailableToExport  a font is unknown or has no file. The others were
     *                                                   copied.
     *   GZephyrinExportFonts::kCouldNotCreateFolder     the folder cannot be made.
     *   another code                                    a copy could not be written; the others were.
     */ \
    X(ExportFonts, (PluginFacadeRef facade, CFArrayRef fonts, CFStringRef destinationFolder, \
                   CFMutableArrayRef exportedPaths)) \
    /* The other fonts of a font's family, of any workgroup.
     *
     *   fontID  in
     *   fonts   in/out, appended to: font records.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound  an unknown font.
     */ \
    X(FindFontsInSameFamilyForActivation, (PluginFacadeRef facade, uint32_t fontID, \
                                          CFMutableArrayRef fonts)) \
    /* Column: the font's activation state. */ \
    X(GetActivationStateColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* The workgroups of the user.
     *
     *   workgroups  in/out, appended to: workgroup records (FontRecordKeys.h) in the order in which they were
     *               made, last the one that stands for all together.
     */ \
    X(GetAllWorkgroupsForUser, (PluginFacadeRef facade, CFMutableArrayRef workgroups)) \
    /* Whether this library and the agent were made for the same database.
     *
     *   outInSync  out
     */ \
    X(GetAreSchemaVersionsInSync, (PluginFacadeRef facade, bool* outInSync)) \
    /* Has a function told what happens, until UnregisterForNotifications or the end of the process, over
     * restarts of the agent.
     *
     *   callback  in: called on the library's own thread, one call at a time. One that is registered already
     *             stays so.
     */ \
    X(RegisterForNotifications, (PluginFacadeRef facade, PluginNotificationCallback callback)) \
    /* Ends that. No call is under way when it returns, unless it is made from within the callback.
     *
     *   callback  in
     */ \
    X(UnregisterForNotifications, (PluginFacadeRef facade, PluginNotificationCallback callback)) \
    /* Column: whether it may be activated across workgroups. */ \
    X(GetCanActivateAcrossWorkgroupsColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Whether fonts are still active on behalf of this process.
     *
     *   fontIDs  in: IDs.
     *   states   in/out: receives a CFBoolean per ID.
     */ \
    X(GetClientFontActivationStates, (PluginFacadeRef facade, CFArrayRef fontIDs, \
                                     CFMutableDictionaryRef states)) \
    /* The name of the workgroup that fonts are added to when none is named.
     *
     *   outNewName  out
     */ \
    X(GetDefaultLibraryName, (PluginFacadeRef facade, CFStringRef* outNewName)) \
    /* Column: whether it may be exported. */ \
    X(GetExportFontsColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's family group's ID. */ \
    X(GetFamilyGroupIDColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's family group's name. */ \
    X(GetFamilyGroupNameColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's family. */ \
    X(GetFamilyNameColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's file size. */ \
    X(GetFileSizeColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's face within its file. */ \
    X(GetFontFaceIDColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* The record of a font.
     *
     *   fontID      in
     *   outNewFont  out
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound  an unknown font.
     */ \
    X(GetFontInfoByID, (PluginFacadeRef facade, uint32_t fontID, CFDictionaryRef* outNewFont)) \
    /* The activation state of a font.
     *
     *   fontID              in
     *   outActivationState  out: a FontActivationState.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound  an unknown font.
     */ \
    X(GetFontIsActivated, (PluginFacadeRef facade, uint32_t fontID, int32_t* outActivationState)) \
    /* Column: the font's location. */ \
    X(GetFontLocationColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's fingerprint checksum. */ \
    X(GetGlyphscanChecksumColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's kind. */ \
    X(GetFontTypeColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* The folder in which the agent keeps font files.
     *
     *   outNewPath  out
     */ \
    X(GetFontVaultPath, (PluginFacadeRef facade, CFStringRef* outNewPath)) \
    /* Column: the font's version. */ \
    X(GetFontVersionColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* The fonts of that PostScript name, those with a file first.
     *
     *   name         in: in another letter case where none has it in this one.
     *   workgroupID  in: where to look; kWorkgroupID_All: everywhere.
     *   fonts        in/out, appended to: font records, 100 at most.
     */ \
    X(GetFontsByPostscriptName, (PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, \
                                CFMutableArrayRef fonts)) \
    /* The fonts of that family, those with a file first.
     *
     *   name         in: as for GetFontsByPostscriptName.
     *   workgroupID  in: as for GetFontsByPostscriptName.
     *   fonts        in/out, appended to: font records, 1,000 at most.
     */ \
    X(GetFontsByFamilyName, (PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, \
                            CFMutableArrayRef fonts)) \
    /* Column: the font's foundry. */ \
    X(GetFoundryNameColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Whether there is an agent that answers.
     *
     *   outIsRunning  out
     */ \
    X(GetIsCoreAgentProcessRunning, (PluginFacadeRef facade, bool* outIsRunning)) \
    /* Column: whether the font's file is on this machine. */ \
    X(GetIsFontLocalColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Whether the user is logged in.
     *
     *   outIsLoggedIn  out
     */ \
    X(GetIsLoggedIn, (PluginFacadeRef facade, bool* outIsLoggedIn)) \
    /* Whether the agent works without a server.
     *
     *   outIsStandalone  out
     */ \
    X(GetRunningStandalone, (PluginFacadeRef facade, bool* outIsStandalone)) \
    /* Column: whether the font's file is of the Marquell kind. */ \
    X(GetIsMarquellFileColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's older fingerprint checksum. */ \
    X(GetLegacyGlyphscanChecksumColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's path. */ \
    X(GetLocalPathColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* As MotherMayI, for one workgroup.
     *
     *   permission    in: a PluginPermission.
     *   workgroupID   in: this font manager grants the same in all of them.
     *   outIsGranted  out
     */ \
    X(GetPermission, (PluginFacadeRef facade, int32_t permission, int32_t workgroupID, bool* outIsGranted)) \
    /* The facade for the next call. Made when there is none; that alone connects to no agent.
     *
     *   outFacade  out: the library's own; not to be kept.
     */ \
    X(GetPluginFacadeInstance, (PluginFacadeRef* outFacade)) \
    /* Drops the facade, so that the next one leads to the agent that is there then. What was activated for
     * this process stays.
     */ \
    X(ResetPluginFacadeInstance, (void)) \
    /* Column: the font's PostScript name. */ \
    X(GetPostscriptNameColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's full name. */ \
    X(GetDisplayNameColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's foundry as it stands in the file. */ \
    X(GetScannedFoundryColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* The workgroup of the system's own fonts.
     *
     *   outWorkgroupID  out
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound  there is none.
     */ \
    X(GetSystemWorkgroupID, (PluginFacadeRef facade, int32_t* outWorkgroupID)) \
    /* Column: the font's workgroup's ID. */ \
    X(GetWorkgroupIDColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's workgroup's name. */ \
    X(GetWorkgroupNameColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* Column: the font's workgroup's type. */ \
    X(GetWorkgroupTypeColumnID, (PluginFacadeRef facade, int32_t* outColumnID)) \
    /* To be called first: tells the agent who calls.
     *
     *   hostAppName    in: the host application's name.
     *   pluginVersion  in: of the plug-in.
     */ \
    X(InitAppInstance, (PluginFacadeRef facade, const char* hostAppName, const char* pluginVersion)) \
    /* Begins the calling thread's share of the library.
     *
     *   outThread  out: the caller's, to be ended by DestroyThreadInstance.
     */ \
    X(InitThreadInstance, (PluginThreadInstanceRef* outThread)) \
    /* Whether an ID stands for all workgroups together.
     *
     *   workgroupID  in
     *   outIsAll     out
     */ \
    X(IsAllWorkgroups, (PluginFacadeRef facade, int32_t workgroupID, bool* outIsAll)) \
    /* Appends a text to the log of BeginLogging.
     *
     *   thread  in
     *   text    in: as it is, with its own line ends.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotInitialized  no thread has begun a log.
     */ \
    X(Log, (PluginThreadInstanceRef thread, const char* text)) \
    /* Whether the user may do something.
     *
     *   permission      in: a PluginPermission; for other numbers the answer is no.
     *   outIsPermitted  out
     */ \
    X(MotherMayI, (PluginFacadeRef facade, int32_t permission, bool* outIsPermitted)) \
    /* Makes a folder and those above it; one that is there will do.
     *
     *   path  in
     *
     * Returns, beside success:
     *   CoreErrorCodes::kInvalidParam                an empty path.
     *   GZephyrinExportFonts::kCouldNotCreateFolder  it cannot be made.
     */ \
    X(OSCreateDirectory, (const char* path)) \
    /* Whether there is a folder.
     *
     *   path       in
     *   outExists  out: false for a file.
     */ \
    X(OSDoesDirectoryExist, (const char* path, bool* outExists)) \
    /* Activates fonts so that this process can show them, until it is called with `activate` false or the
     * process ends; whatever else holds them is not touched. Unknown fonts and those without a file are
     * passed over.
     *
     *   fonts     in: font records, or IDs.
     *   activate  in
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound  none is left of those to activate.
     */ \
    X(PreviewActivateFonts, (PluginFacadeRef facade, CFArrayRef fonts, bool activate)) \
    /* The Google fonts in the library.
     *
     *   fonts  in/out, appended to: font records; none while CanAccessGoogleFonts says no.
     */ \
    X(GetGoogleFonts, (PluginFacadeRef facade, CFMutableArrayRef fonts)) \
    /* Whether records are being fetched from a server.
     *
     *   outIsRunning  out
     */ \
    X(GetIsReplicationRunning, (PluginFacadeRef facade, bool* outIsRunning)) \
    /* How records are being fetched.
     *
     *   outMode  out: a PluginReplicationMode.
     */ \
    X(GetCurrentReplicationMode, (PluginFacadeRef facade, int32_t* outMode)) \
    /* Whether the user wants Google web fonts.
     *
     *   outIsEnabled  out
     */ \
    X(GetIsGoogleWebFontsEnabled, (PluginFacadeRef facade, bool* outIsEnabled)) \
    /* Changes that, and tells everybody by kPluginCallback_GoogleWebFontsEnabled.
     *
     *   isEnabled  in
     */ \
    X(SetGoogleWebFontsEnabled, (PluginFacadeRef facade, bool isEnabled)) \
    /* The folder below which the images of RenderFontNamePreviewPNGs stand. It is made with the first of
     * them.
     *
     *   outNewPath  out
     */ \
    X(GetRenderedPNGsDirectory, (PluginFacadeRef facade, CFStringRef* outNewPath)) \
    /* Makes images of fonts' full names, each in its own face, black on a transparent ground, 32 pixels high
     * and up to 640 wide, and the same in double size. Those that were made before are not made again.
     * kPluginCallback_PreviewPNGsRendered brings the same for some fonts at a time. Returns when all is done,
     * a few milliseconds per image that has to be made.
     *
     *   highPriorityFontIDs  in: IDs, made first; may be null.
     *   fontIDs              in: IDs.
     *   fontPNGs             in/out: receives by ID a dictionary with kGS_PNGFilenameKey and
     *                        kGS_2xPNGFilenameKey. A font that is unknown or cannot be shown is left out. May
     *                        be null.
     */ \
    X(RenderFontNamePreviewPNGs, (PluginFacadeRef facade, CFArrayRef highPriorityFontIDs, \
                                 CFArrayRef fontIDs, CFMutableDictionaryRef fontPNGs)) \
    /* Gives a list another name. Needs kPermission_CreateSmartLists.
     *
     *   smartListID  in
     *   name         in: as for CreateSmartList.
     *
     * Returns, beside success:
     *   GZephyrinSetManager::kSetNotFound    an unknown list.
     *   CoreErrorCodes::kItemAlreadyExists   another list has the name.
     *   CoreErrorCodes::kMissingParam        a blank name.
     *   CoreErrorCodes::kInvalidParam        a name that is too long or holds what cannot be seen.
     *   GZephyrinServerFacade::kNotLoggedIn  nobody is logged in.
     */ \
    X(RenameSmartList, (PluginFacadeRef facade, int32_t smartListID, CFStringRef name)) \
    /* Deletes a list. Its ID may stay in the queries of others, where it matches nothing. Needs
     * kPermission_CreateSmartLists.
     *
     *   smartListID  in
     *
     * Returns, beside success:
     *   GZephyrinSetManager::kSetNotFound    an unknown list.
     *   GZephyrinServerFacade::kNotLoggedIn  nobody is logged in.
     */ \
    X(DeleteSmartList, (PluginFacadeRef facade, int32_t smartListID)) \
    /* Tries a query without saving it: from now on GetSmartListFonts gives this process the fonts of that
     * query for the list, until SetSmartListQuery for the list, another trial, or the end of the connection.
     * It takes no time itself, and no one else sees anything of it.
     *
     *   smartListID   in: 0 for a list that is not made yet.
     *   workgroupIDs  in: as for CreateSmartList, as are
     *   setIDs        in
     *   smartSetIDs   in
     *
     * Returns, beside success:
     *   GZephyrinSetManager::kSetNotFound  an unknown list.
     */ \
    X(QueryForSmartListFonts, (PluginFacadeRef facade, int32_t smartListID, CFArrayRef workgroupIDs, \
                              CFArrayRef setIDs, CFArrayRef smartSetIDs)) \
    /* One list.
     *
     *   smartListID      in
     *   outNewSmartList  out: a dictionary with the ID, the name, the IDs of the query in ascending order,
     *                    and kGS_ListDefinitionKey.
     *
     * Returns, beside success:
     *   GZephyrinSetManager::kSetNotFound  an unknown list.
     */ \
    X(GetSmartList, (PluginFacadeRef facade, int32_t smartListID, CFDictionaryRef* outNewSmartList)) \
    /* What smart lists can be made of.
     *
     *   outNewTree  out: a dictionary of kGS_WorkgroupsKey, an array of workgroup records without the one for
     *               all, each with kGS_SetsKey, an array of dictionaries with kGS_SetIDKey and
     *               kGS_SetNameKey; and of kGS_SmartListsKey, as GetAllSmartLists gives them.
     */ \
    X(GetPanelSmartListTree, (PluginFacadeRef facade, CFDictionaryRef* outNewTree)) \
    /* All lists, by name.
     *
     *   smartLists  in/out, appended to: dictionaries with kGS_SmartListIDKey and kGS_SmartListNameKey.
     */ \
    X(GetAllSmartLists, (PluginFacadeRef facade, CFMutableArrayRef smartLists)) \
    /* Makes a smart list: a name and a query. Its fonts are those that are, when they are asked for, in any
     * of the workgroups, sets or other lists of the query; with all three empty, all fonts. Lists may name
     * one another in a circle. Needs kPermission_CreateSmartLists.
     *
     *   name            in: not blank, and not that of another list.
     *   workgroupIDs    in: CFNumbers; kWorkgroupID_All stands for all fonts. Null is an empty array, here
     *                   and in
     *   setIDs          in: CFNumbers
     *   smartSetIDs     in: CFNumbers, of other lists.
     *   outSmartListID  out: above 0, and never given twice.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kItemAlreadyExists   another list has the name.
     *   CoreErrorCodes::kMissingParam        a blank name.
     *   CoreErrorCodes::kInvalidParam        an element that is not an ID, or a name that is too long or holds what cannot
     *                                        be seen.
     *   GZephyrinServerFacade::kNotLoggedIn  nobody is logged in.
     */ \
    X(CreateSmartList, (PluginFacadeRef facade, CFStringRef name, CFArrayRef workgroupIDs, \
                       CFArrayRef setIDs, CFArrayRef smartSetIDs, int32_t* outSmartListID)) \
    /* Gives a list another query. Needs kPermission_CreateSmartLists.
     *
     *   smartListID   in
     *   workgroupIDs  in: as for CreateSmartList, as are
     *   setIDs        in
     *   smartSetIDs   in
     *
     * Returns, beside success:
     *   GZephyrinSetManager::kSetNotFound    an unknown list.
     *   CoreErrorCodes::kInvalidParam        what is not an ID.
     *   GZephyrinServerFacade::kNotLoggedIn  nobody is logged in.
     */ \
    X(SetSmartListQuery, (PluginFacadeRef facade, int32_t smartListID, CFArrayRef workgroupIDs, \
                         CFArrayRef setIDs, CFArrayRef smartSetIDs)) \
    /* The fonts of a list.
     *
     *   smartListID  in
     *   fonts        in/out, appended to: font records with kGS_DisplayNameKey, by their IDs.
     *
     * Returns, beside success:
     *   GZephyrinSetManager::kSetNotFound  an unknown list.
     */ \
    X(GetSmartListFonts, (PluginFacadeRef facade, int32_t smartListID, CFMutableArrayRef fonts)) \
    /* Ends connections and threads; the host quits. The library may be used again after it. */ \
    X(CleanUpOnShutdown, (void)) \
    /* The active fonts that have the PostScript name of one of the fonts and come in another file: a host may
     * take the one for the other.
     *
     *   fontIDs           in: IDs.
     *   conflictingFonts  in/out, appended to: font records, each once.
     */ \
    X(GetFontConflicts, (PluginFacadeRef facade, CFArrayRef fontIDs, CFMutableArrayRef conflictingFonts)) \
    /* Counts clicks in a panel. This font manager does not: it answers CoreErrorCodes::kNotImplemented.
     *
     *   fontID  in
     */ \
    X(TrackFontPanelClick, (PluginFacadeRef facade, uint32_t fontID)) \
    /* Whether there are Google fonts for this user.
     *
     *   outCanAccess  out
     */ \
    X(CanAccessGoogleFonts, (PluginFacadeRef facade, bool* outCanAccess)) \
    /* Records which fonts a document uses: those that are active for it on behalf of this process.
     *
     *   documentPath  in
     *   replace       in: whether that takes the place of what was recorded. If not, fonts are added to it,
     *                 and an empty text leaves the one before.
     *   fontUsage     in: the host's text; may be null.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kMissingParam  an empty path.
     */ \
    X(SaveDocumentFonts, (PluginFacadeRef facade, CFStringRef documentPath, bool replace, \
                         CFStringRef fontUsage)) \
    /* What SaveDocumentFonts or WriteFontUsage recorded.
     *
     *   documentPath     in
     *   outNewFontUsage  out
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound      nothing is recorded.
     *   CoreErrorCodes::kMissingParam  an empty path.
     */ \
    X(GetFontUsage, (PluginFacadeRef facade, CFStringRef documentPath, CFStringRef* outNewFontUsage)) \
    /* The first XMP packet (ISO 16684-1) in a document's file, with its markers. Of files above 64 MiB the
     * first and the last 32 are searched. The calling thread reads.
     *
     *   documentPath  in
     *   outNewXMP     out
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound   there is none in UTF-8 of up to 4 MiB.
     *   GFileSystem::kFileNotFound  the file cannot be read.
     */ \
    X(GetAdobeXMPData, (PluginFacadeRef facade, CFStringRef documentPath, CFStringRef* outNewXMP)) \
    /* The fingerprint of a font: what tells it from others of its name.
     *
     *   fontID     in
     *   outNewXML  out: an XML property list that is a dictionary; null when the font has none.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kNotFound  an unknown font.
     */ \
    X(GetGlyphscanXMPData, (PluginFacadeRef facade, uint32_t fontID, CFStringRef* outNewXML)) \
    /* Records a text about a document's fonts in place of the one before.
     *
     *   documentPath  in
     *   fontUsage     in: may be null.
     *
     * Returns, beside success:
     *   CoreErrorCodes::kMissingParam  an empty path.
     */ \
    X(WriteFontUsage, (PluginFacadeRef facade, CFStringRef documentPath, CFStringRef fontUsage)) \
    /* Forgets what is recorded about a document.
     *
     *   documentPath  in
     *
     * Returns, beside success:
     *   CoreErrorCodes::kMissingParam  an empty path.
     */ \
    X(ClearDocumentSlug, (PluginFacadeRef facade, CFStringRef documentPath))
/* clang-format on */

/* The type of each function: PluginFunction_ActivateFonts and so on. */
#define TARNWICK_PLUGIN_FUNCTION_TYPE(symbol, parameters) \
    typedef uint32_t(*PluginFunction_##symbol) parameters;
TARNWICK_PLUGIN_FUNCTIONS(TARNWICK_PLUGIN_FUNCTION_TYPE)
#undef TARNWICK_PLUGIN_FUNCTION_TYPE

#ifdef __cplusplus
}
#endif

#endif
