// What agent and clients say to one another.
//
// Messages are MessagePack objects in frames: the payload's size in bytes as four bytes, little endian, then
// the payload. A client sends {"id", "method", "args"}; the agent answers each in turn with {"id", "code",
// "result"}, where "result" holds {"message"} for a code other than 0. Between the two it may send
// {"working": true} to say that it is alive. A connection that subscribed also gets {"notification", "data"}.
// {"goodbye": true} is the last thing an agent says before it ends.
//
// Answers get lost when either side dies or a client gives up. A request is not begun once its client has
// closed the connection. The IDs of a host's requests rise, over all its connections. Fonts that a request
// activated are the host's only once it took the answer: such an answer has {"provisional": true} and is
// acknowledged with {"taken": ID}; the greeting of the host's next connection names the last answer that it
// took, in "taken". What later requests activated is undone by that greeting, or by the end of the
// connection. To a client that says nothing of answers taken, fonts belong at once. A request that is sent
// again has a new ID and {"repeats": its ID before}, and is answered as it was, or would have been, the first
// time.
#pragma once

#include <cstdint>

#include "FontRecordKeys.h"

namespace pellwick {

/// Goes up with every change that an older client or agent would not understand.
constexpr int kProtocolVersion = 1;
/// The layout of the agent's database, which GetAreSchemaVersionsInSync asks about.
constexpr int kSchemaVersion = 4;

/// Every method: X(constant, name).
#define PELLWICK_METHODS(X)                              \
    X(kHello, "Hello")                                   \
    X(kSubscribe, "Subscribe")                           \
    X(kGetStatus, "GetStatus")                           \
    X(kStop, "Stop")                                     \
    X(kAddFile, "AddFile")                               \
    X(kRemoveFonts, "RemoveFonts")                       \
    X(kListFonts, "ListFonts")                           \
    X(kCheckFiles, "CheckFiles")                         \
    X(kCheckRecords, "CheckRecords")                     \
    X(kActivateForUser, "ActivateForUser")               \
    X(kDeactivateForUser, "DeactivateForUser")           \
    X(kLogIn, "LogIn")                                   \
    X(kLogOut, "LogOut")                                 \
    X(kSetStandalone, "SetStandalone")                   \
    X(kSetGoogleWebFonts, "SetGoogleWebFonts")           \
    X(kListWorkgroups, "ListWorkgroups")                 \
    X(kCreateWorkgroup, "CreateWorkgroup")               \
    X(kRenameWorkgroup, "RenameWorkgroup")               \
    X(kDeleteWorkgroup, "DeleteWorkgroup")               \
    X(kUseWorkgroup, "UseWorkgroup")                     \
    X(kListSets, "ListSets")                             \
    X(kFindSet, "FindSet")                               \
    X(kCreateSet, "CreateSet")                           \
    X(kDeleteSet, "DeleteSet")                           \
    X(kAddFontsToSets, "AddFontsToSets")                 \
    X(kListSmartLists, "ListSmartLists")                 \
    X(kFindSmartList, "FindSmartList")                   \
    X(kGetSmartList, "GetSmartList")                     \
    X(kCreateSmartList, "CreateSmartList")               \
    X(kRenameSmartList, "RenameSmartList")               \
    X(kDeleteSmartList, "DeleteSmartList")               \
    X(kSetSmartListQuery, "SetSmartListQuery")           \
    X(kTrySmartListQuery, "TrySmartListQuery")           \
    X(kActivateFonts, "ActivateFonts")                   \
    X(kActivateDocumentFonts, "ActivateDocumentFonts")   \
    X(kDeactivateFonts, "DeactivateFonts")               \
    X(kGetFontConflicts, "GetFontConflicts")             \
    X(kEnableDesignActivation, "EnableDesignActivation") \
    X(kPreviewActivateFonts, "PreviewActivateFonts")     \
    X(kRenderPreviews, "RenderPreviews")                 \
    X(kGetFont, "GetFont")                               \
    X(kGetFonts, "GetFonts")                             \
    X(kFindByPostScriptName, "FindByPostScriptName")     \
    X(kFindByFamilyName, "FindByFamilyName")             \
    X(kFindSameFamily, "FindSameFamily")                 \
    X(kFindByAnyName, "FindByAnyName")                   \
    X(kGetClientStates, "GetClientStates")               \
    X(kSaveDocumentFonts, "SaveDocumentFonts")           \
    X(kGetFontUsage, "GetFontUsage")                     \
    X(kWriteFontUsage, "WriteFontUsage")                 \
    X(kClearDocument, "ClearDocument")

namespace method {
#define PELLWICK_METHOD_CONSTANT(constant, name) inline constexpr char constant[] = name;
PELLWICK_METHODS(PELLWICK_METHOD_CONSTANT)
#undef PELLWICK_METHOD_CONSTANT
}  // namespace method

/// The workgroup ID that stands for all workgroups together, and its name.
constexpr int32_t kAllWorkgroupsID = kWorkgroupID_All;
inline constexpr char kAllWorkgroupsName[] = "All Fonts";

/// The full name of a font of a list, in its record: as the font has it, else family and style.
inline constexpr char kFullNameMember[] = "FullName";

/// In a request for a list: whether to ask the system which fonts it offers to programs. In a font's record:
/// whether it is offered.
inline constexpr char kVisibleMember[] = "visible";

/// In a request for a document's fonts: for how many missing ones replacements are wanted.
inline constexpr char kReplacementsMember[] = "replacements";

/// The font's ID in the record of its images, beside their paths.
inline constexpr char kPreviewFontMember[] = "font";

// Members of a set's record, beside the workgroup's ID and name.
inline constexpr char kSetIDMember[] = "id";
inline constexpr char kSetNameMember[] = "name";
inline constexpr char kFontCountMember[] = "fontCount";

}  // namespace pellwick
