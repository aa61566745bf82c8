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
 * - Outputs are pointers; they are untouched on failure unless a function says otherwise. CoreFoundation
 * objects follow the usual rules: what comes out through a pointer named outNew... is owned by the caller and
 * released by it; mutable arrays and dictionaries given by the caller are appended to. Strings are UTF-8
 * where they are plain C, without limit of length unless a buffer size in bytes is given.
 * - Fonts in arrays are font records (FontRecordKeys.h) of which kGS_DatabaseIDKey alone must be there,
 * unless a function says "names", or "IDs": CFNumbers that hold database IDs.
 * - Any thread may call; calls of one process are carried out one after the other. The notification callback
 * runs on the library's own thread.
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
 * The function table, in binding order: X(symbol, parameter list).
 *
 * ActivateFonts: activates `fonts` for the document and appends a font record per font that was matched to
 * `matchedFonts`; its activation state is the one from before the request. `mode` is kGS_ActivateLocally or
 * kGS_ActivateGlobally (null: locally).
 *
 * ActivateDocumentFontsByPath: finds and activates `requestedFonts` (font records; kGS_PostScriptNameKey,
 * else kGS_FamilyKey and style) for the document. `matchedFonts` as above. `unmatchedFonts` receives the
 * requested record of each font that is not in the store, with the records of fonts that could replace it, if
 * there are any, under kGS_PossibleReplacementsKey. `reportedFonts` receives, per matched font, the
 * requested record completed by the font's own, with the activation state from after the request and the
 * record from before it under kGS_MatchedFontKey. Any of the three may be null. Fonts without number are
 * taken as far as there is time for them: GIPCClient::kReplyTimeout when there was not enough. What was
 * activated until then is in `matchedFonts`, for the caller to let go of, and nothing in the others.
 * ActivateFonts and DeactivateFonts answer so as well.
 *
 * AddFontsToSets: puts each of the fonts `fontIDs` (CFNumbers, database IDs) into each of the sets `setIDs`
 * (CFNumbers, as CreateTopLevelSet gives them); a font that is in a set already stays in it. All of it or
 * nothing: CoreErrorCodes::kNotFound when one of the fonts is unknown, GZephyrinSetManager::kSetNotFound when
 * one of the sets is. The fonts may be in any workgroup.
 *
 * CreateSmartList: makes a smart list, which is a name and a query. Its fonts are those that are, when they
 * are asked for, in any of the workgroups, sets or other smart lists of the query (arrays of CFNumbers; null
 * is an empty one); with nothing in the three arrays, all fonts. Lists may name one another in a circle. The
 * ID of what is deleted may stay in a query, where it matches nothing; kWorkgroupID_All among the workgroups
 * stands for all fonts. `outSmartListID` receives the number of the list, which is above 0 and never given
 * twice. CoreErrorCodes::kItemAlreadyExists when another list has the name, kMissingParam for a blank one,
 * kInvalidParam for what is no ID and for a name that is too long or holds what cannot be seen. Who may make
 * and change smart lists says kPermission_CreateSmartLists; GZephyrinServerFacade::kNotLoggedIn while nobody
 * is logged in. SetSmartListQuery gives a list another query, RenameSmartList another name, and
 * DeleteSmartList deletes it; GZephyrinSetManager::kSetNotFound for an unknown list, there and everywhere.
 *
 * CreateTopLevelSet: makes an empty set in a workgroup. `name` is not blank. `outSetID` receives the number
 * of the set, which is above 0 and never given twice. CoreErrorCodes::kItemAlreadyExists when the workgroup
 * has a set of that name: choose another; CoreErrorCodes::kMissingParam for a blank name, kInvalidParam for
 * one that is too long or holds what cannot be seen;
 * GZephyrinSetManager::kWorkGroupIDDoesNotExist for an unknown workgroup,
 * kCannotCreateSharedSetsInAllFontsWorkgroup for the ID of all workgroups together (IsAllWorkgroups),
 * kCannotAddSetsToSystemWorkgroup for that of the system's fonts. A set goes with its workgroup. Who may make
 * sets and add to them says kPermission_CreateSets; GZephyrinServerFacade::kNotLoggedIn while nobody is
 * logged in.
 *
 * DeactivateFonts: lets go of fonts that were activated for this process, and appends the records of those
 * that became inactive to `deactivatedFonts` (may be null). Fonts that the user activated stay active.
 * `context` is 0.
 *
 * EnableDesignActivation: activates a font for the user to design with, and with `wholeFamily` the other
 * fonts of its family, until it is called with `enable` false or this process ends; DeactivateFonts and the
 * end of documents do not touch it. `conflictingFonts` (may be null) receives what GetFontConflicts would
 * have answered before: conflicts do not keep a font from becoming active. CoreErrorCodes::kNotFound for an
 * unknown font, GZephyrinAssetManager::kFontMissing when its file is gone; fonts of the family whose files
 * are gone are passed over.
 *
 * ExportFonts: copies the file of each font, each file once, into `destinationFolder` (UTF-8 path; made when
 * missing) under the name with which it was added. A file that is there is never replaced: one of the same
 * content counts as the copy, beside another the copy gets a number. A copy has its name when it is complete,
 * and not before. `exportedPaths` (may be null) receives the path of each copy, also when the code is not 0:
 * a font that cannot be copied does not keep the others from it, and the code says of one why it could not
 * be, GZephyrinExportFonts::kFontUnavailableToExport when it is unknown or its file is missing. It is the
 * calling thread that copies.
 *
 * GetAllWorkgroupsForUser: appends a workgroup record (FontRecordKeys.h) per workgroup, in the order in which
 * they were made, and last the one that stands for all workgroups together.
 *
 * GetClientFontActivationStates: for each of `fontIDs`, whether the font is still active on behalf of this
 * process: sets CFBooleans by CFNumber database ID.
 *
 * GetFontConflicts: appends the record of each active font that has the PostScript name of one of `fontIDs`
 * (CFNumbers) and comes in another file: a host may take the one for the other. Each once.
 *
 * GetFontsByPostscriptName, GetFontsByFamilyName: append font records, best match first.
 *
 * GetAdobeXMPData: the first XMP packet (ISO 16684-1) in the document's file, with its markers. Of files
 * above 64 MiB the first and the last 32 are searched. CoreErrorCodes::kNotFound when there is none in UTF-8
 * of up to 4 MiB; GFileSystem::kFileNotFound when the file cannot be read. It is the calling thread that
 * reads.
 *
 * GetAllSmartLists: appends a dictionary with kGS_SmartListIDKey and kGS_SmartListNameKey per smart list, by
 * name.
 *
 * GetSmartList: one list's dictionary, with the IDs of its query in ascending order and
 * kGS_ListDefinitionKey.
 *
 * GetGoogleFonts: appends the records of the Google fonts in the library, which has none as long as
 * CanAccessGoogleFonts says no.
 *
 * GetPanelSmartListTree: what smart lists can be made of. A dictionary of kGS_WorkgroupsKey, an array of
 * workgroup records without the one for all workgroups, each with kGS_SetsKey, an array of dictionaries with
 * kGS_SetIDKey and kGS_SetNameKey; and of kGS_SmartListsKey, the lists as GetAllSmartLists gives them.
 *
 * GetSmartListFonts: appends the record of each font of the list, with kGS_DisplayNameKey, in the order of
 * their IDs.
 *
 * PreviewActivateFonts: activates fonts so that this process can show them, until it is called with
 * `activate` false or the process ends; whatever else holds them is not touched. Unknown fonts, and those
 * whose files are gone, are passed over; CoreErrorCodes::kNotFound when that leaves none of those to
 * activate.
 *
 * QueryForSmartListFonts: tries a query without saving it. From then on GetSmartListFonts gives this process
 * the fonts of that query for the list; until SetSmartListQuery for the list, another trial, the end of the
 * connection or of the agent. It takes no time itself, nothing is announced, and no one else sees anything of
 * it. The list 0 stands for one that is not made yet.
 *
 * GetRenderedPNGsDirectory: the folder below which the images of RenderFontNamePreviewPNGs stand. It need not
 * exist before the first of them.
 *
 * RenderFontNamePreviewPNGs: makes images of the fonts' full names, each in its own face, black on a
 * transparent ground, 32 pixels high and up to 640 wide, and the same in double size. Images that were made
 * before are not made again. First come `highPriorityFontIDs` (may be null), then the rest of `fontIDs`.
 * `fontPNGs` (may be null) receives, by CFNumber database ID, a dictionary with kGS_PNGFilenameKey and
 * kGS_2xPNGFilenameKey per font. kPluginCallback_PreviewPNGsRendered brings the same for some fonts at a
 * time, as they are done, to whoever is registered. A font that is unknown or cannot be shown is left out.
 * Returns when all is done, a few milliseconds per image that has to be made.
 *
 * SaveDocumentFonts: records which fonts a document uses. `fontUsage` is the host's text, may be null.
 *
 * Column identifiers are the numbers under which GetFontInfoByID's record columns are known to panels.
 *
 * GetGlyphscanXMPData: the fingerprint of a font as an XML property list: a dictionary of what tells it from
 * others of its name; null when it has none.
 */
/* clang-format off */
#define TARNWICK_PLUGIN_FUNCTIONS(X)                                                                        \
    X(ActivateFonts, (PluginFacadeRef facade, CFArrayRef fonts, CFStringRef documentIdentifier,             \
                      CFStringRef mode, CFMutableArrayRef matchedFonts))                                    \
    X(ActivateDocumentFontsByPath,                                                                          \
      (PluginFacadeRef facade, CFStringRef documentPath, CFArrayRef requestedFonts,                         \
       CFMutableArrayRef matchedFonts, CFMutableArrayRef unmatchedFonts, CFMutableArrayRef reportedFonts))  \
    X(AddFontsToSets, (PluginFacadeRef facade, CFArrayRef fontIDs, CFArrayRef setIDs))                      \
    X(BeginLogging, (PluginThreadInstanceRef thread, const char* logFileName))                              \
    X(CanExportFonts, (PluginFacadeRef facade, CFArrayRef fonts, bool* outCanExport))                       \
    X(CreateTopLevelSet,                                                                                    \
      (PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, int32_t * outSetID))                  \
    X(DeactivateFonts,                                                                                      \
      (PluginFacadeRef facade, CFArrayRef fonts, uint64_t context, CFMutableArrayRef deactivatedFonts))     \
    X(DestroyThreadInstance, (PluginThreadInstanceRef thread))                                              \
    X(EnableDesignActivation, (PluginFacadeRef facade, uint32_t fontID, bool wholeFamily, bool enable,      \
                               CFMutableArrayRef conflictingFonts))                                         \
    X(ExportFonts, (PluginFacadeRef facade, CFArrayRef fonts, CFStringRef destinationFolder,                \
                    CFMutableArrayRef exportedPaths))                                                       \
    X(FindFontsInSameFamilyForActivation,                                                                   \
      (PluginFacadeRef facade, uint32_t fontID, CFMutableArrayRef fonts))                                   \
    X(GetActivationStateColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                          \
    X(GetAllWorkgroupsForUser, (PluginFacadeRef facade, CFMutableArrayRef workgroups))                      \
    X(GetAreSchemaVersionsInSync, (PluginFacadeRef facade, bool* outInSync))                                \
    X(RegisterForNotifications, (PluginFacadeRef facade, PluginNotificationCallback callback))              \
    X(UnregisterForNotifications, (PluginFacadeRef facade, PluginNotificationCallback callback))            \
    X(GetCanActivateAcrossWorkgroupsColumnID, (PluginFacadeRef facade, int32_t * outColumnID))              \
    X(GetClientFontActivationStates,                                                                        \
      (PluginFacadeRef facade, CFArrayRef fontIDs, CFMutableDictionaryRef states))                          \
    X(GetDefaultLibraryName, (PluginFacadeRef facade, CFStringRef * outNewName))                            \
    X(GetExportFontsColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                              \
    X(GetFamilyGroupIDColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                            \
    X(GetFamilyGroupNameColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                          \
    X(GetFamilyNameColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                               \
    X(GetFileSizeColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                                 \
    X(GetFontFaceIDColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                               \
    X(GetFontInfoByID, (PluginFacadeRef facade, uint32_t fontID, CFDictionaryRef * outNewFont))             \
    X(GetFontIsActivated, (PluginFacadeRef facade, uint32_t fontID, int32_t * outActivationState))          \
    X(GetFontLocationColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                             \
    X(GetGlyphscanChecksumColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                        \
    X(GetFontTypeColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                                 \
    X(GetFontVaultPath, (PluginFacadeRef facade, CFStringRef * outNewPath))                                 \
    X(GetFontVersionColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                              \
    X(GetFontsByPostscriptName,                                                                             \
      (PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, CFMutableArrayRef fonts))             \
    X(GetFontsByFamilyName,                                                                                 \
      (PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, CFMutableArrayRef fonts))             \
    X(GetFoundryNameColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                              \
    X(GetIsCoreAgentProcessRunning, (PluginFacadeRef facade, bool* outIsRunning))                           \
    X(GetIsFontLocalColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                              \
    X(GetIsLoggedIn, (PluginFacadeRef facade, bool* outIsLoggedIn))                                         \
    X(GetRunningStandalone, (PluginFacadeRef facade, bool* outIsStandalone))                                \
    X(GetIsMarquellFileColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                           \
    X(GetLegacyGlyphscanChecksumColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                  \
    X(GetLocalPathColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                                \
    X(GetPermission, (PluginFacadeRef facade, int32_t permission, int32_t workgroupID, bool* outIsGranted)) \
    X(GetPluginFacadeInstance, (PluginFacadeRef * outFacade))                                               \
    X(ResetPluginFacadeInstance, (void))                                                                    \
    X(GetPostscriptNameColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                           \
    X(GetDisplayNameColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                              \
    X(GetScannedFoundryColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                           \
    X(GetSystemWorkgroupID, (PluginFacadeRef facade, int32_t * outWorkgroupID))                             \
    X(GetWorkgroupIDColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                              \
    X(GetWorkgroupNameColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                            \
    X(GetWorkgroupTypeColumnID, (PluginFacadeRef facade, int32_t * outColumnID))                            \
    X(InitAppInstance, (PluginFacadeRef facade, const char* hostAppName, const char* pluginVersion))        \
    X(InitThreadInstance, (PluginThreadInstanceRef * outThread))                                            \
    X(IsAllWorkgroups, (PluginFacadeRef facade, int32_t workgroupID, bool* outIsAll))                       \
    X(Log, (PluginThreadInstanceRef thread, const char* text))                                              \
    X(MotherMayI, (PluginFacadeRef facade, int32_t permission, bool* outIsPermitted))                       \
    X(OSCreateDirectory, (const char* path))                                                                \
    X(OSDoesDirectoryExist, (const char* path, bool* outExists))                                            \
    X(PreviewActivateFonts, (PluginFacadeRef facade, CFArrayRef fonts, bool activate))                      \
    X(GetGoogleFonts, (PluginFacadeRef facade, CFMutableArrayRef fonts))                                    \
    X(GetIsReplicationRunning, (PluginFacadeRef facade, bool* outIsRunning))                                \
    X(GetCurrentReplicationMode, (PluginFacadeRef facade, int32_t * outMode))                               \
    X(GetIsGoogleWebFontsEnabled, (PluginFacadeRef facade, bool* outIsEnabled))                             \
    X(SetGoogleWebFontsEnabled, (PluginFacadeRef facade, bool isEnabled))                                   \
    X(GetRenderedPNGsDirectory, (PluginFacadeRef facade, CFStringRef * outNewPath))                         \
    X(RenderFontNamePreviewPNGs, (PluginFacadeRef facade, CFArrayRef highPriorityFontIDs,                   \
                                  CFArrayRef fontIDs, CFMutableDictionaryRef fontPNGs))                     \
    X(RenameSmartList, (PluginFacadeRef facade, int32_t smartListID, CFStringRef name))                     \
    X(DeleteSmartList, (PluginFacadeRef facade, int32_t smartListID))                                       \
    X(QueryForSmartListFonts, (PluginFacadeRef facade, int32_t smartListID, CFArrayRef workgroupIDs,        \
                               CFArrayRef setIDs, CFArrayRef smartSetIDs))                                  \
    X(GetSmartList, (PluginFacadeRef facade, int32_t smartListID, CFDictionaryRef * outNewSmartList))       \
    X(GetPanelSmartListTree, (PluginFacadeRef facade, CFDictionaryRef * outNewTree))                        \
    X(GetAllSmartLists, (PluginFacadeRef facade, CFMutableArrayRef smartLists))                             \
    X(CreateSmartList, (PluginFacadeRef facade, CFStringRef name, CFArrayRef workgroupIDs,                  \
                        CFArrayRef setIDs, CFArrayRef smartSetIDs, int32_t * outSmartListID))               \
    X(SetSmartListQuery, (PluginFacadeRef facade, int32_t smartListID, CFArrayRef workgroupIDs,             \
                          CFArrayRef setIDs, CFArrayRef smartSetIDs))                                       \
    X(GetSmartListFonts, (PluginFacadeRef facade, int32_t smartListID, CFMutableArrayRef fonts))            \
    X(CleanUpOnShutdown, (void))                                                                            \
    X(GetFontConflicts, (PluginFacadeRef facade, CFArrayRef fontIDs, CFMutableArrayRef conflictingFonts))   \
    X(TrackFontPanelClick, (PluginFacadeRef facade, uint32_t fontID))                                       \
    X(CanAccessGoogleFonts, (PluginFacadeRef facade, bool* outCanAccess))                                   \
    X(SaveDocumentFonts,                                                                                    \
      (PluginFacadeRef facade, CFStringRef documentPath, bool replace, CFStringRef fontUsage))              \
    X(GetFontUsage, (PluginFacadeRef facade, CFStringRef documentPath, CFStringRef * outNewFontUsage))      \
    X(GetAdobeXMPData, (PluginFacadeRef facade, CFStringRef documentPath, CFStringRef * outNewXMP))         \
    X(GetGlyphscanXMPData, (PluginFacadeRef facade, uint32_t fontID, CFStringRef * outNewXML))               \
    X(WriteFontUsage, (PluginFacadeRef facade, CFStringRef documentPath, CFStringRef fontUsage))            \
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
