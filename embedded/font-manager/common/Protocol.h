// The messages between the agent and its clients.
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

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "FontRecordKeys.h"
#include "TarnwickPluginInterface.h"

namespace pellwick {

/// Goes up with every change of what is there already. A method that an older agent does not have it refuses.
constexpr int kProtocolVersion = 1;
/// The layout of the agent's database, which GetAreSchemaVersionsInSync asks about.
constexpr int kSchemaVersion = 7;

/// What messages and what is in them call their members. Records of fonts, workgroups and smart lists also
/// hold those of FontRecordKeys.h and TarnwickPluginInterface.h.
namespace member {
// Of messages themselves, as they are described above; kID is also that of a set's record.
inline constexpr char kID[] = "id";
inline constexpr char kMethod[] = "method";
inline constexpr char kArguments[] = "args";
inline constexpr char kRepeats[] = "repeats";
inline constexpr char kSystem[] = "system";  ///< the system's fonts alone, or none of them
inline constexpr char kSystemFonts[] = "systemFonts";
inline constexpr char kTaken[] = "taken";
inline constexpr char kCode[] = "code";
inline constexpr char kResult[] = "result";
inline constexpr char kMessage[] = "message";
inline constexpr char kProvisional[] = "provisional";
inline constexpr char kWorking[] = "working";
inline constexpr char kGoodbye[] = "goodbye";
inline constexpr char kNotification[] = "notification";
inline constexpr char kData[] = "data";
// Of arguments and results.
inline constexpr char kActivate[] = "activate";
inline constexpr char kActiveFiles[] = "activeFiles";
inline constexpr char kAdded[] = "added";
inline constexpr char kAfter[] = "after";  ///< the ID behind which a page begins
inline constexpr char kAlreadyKnown[] = "alreadyKnown";
inline constexpr char kChecked[] = "checked";
inline constexpr char kChoices[] =
    "choices";  ///< objects of a document's path, the name of a font that is missing there, and what was chosen for it
inline constexpr char kIsChosen[] = "isChosen";  ///< what a document that asks for the name is given
inline constexpr char kIsPreferred[] = "isPreferred";
inline constexpr char kConflicts[] = "conflicts";
inline constexpr char kCopies[] = "copies";  ///< files that the system has as well
inline constexpr char kCurrent[] = "current";
inline constexpr char kDataFolder[] = "dataFolder";
inline constexpr char kDeactivated[] = "deactivated";
inline constexpr char kDefaultWorkgroup[] = "defaultWorkgroup";
inline constexpr char kDocument[] = "document";
inline constexpr char kDryRun[] = "dryRun";        ///< only says what would be done
inline constexpr char kEmbedding[] = "embedding";  ///< FontLicence::embedding; none where a font does not say
inline constexpr char kEnable[] = "enable";
inline constexpr char kFailed[] = "failed";
inline constexpr char kFiles[] = "files";
inline constexpr char kFont[] = "font";  ///< the ID of one, also beside the paths of its images
inline constexpr char kFontCount[] = "fontCount";
inline constexpr char kFonts[] = "fonts";
inline constexpr char kFullName[] = "FullName";  ///< as the font has it, else family and style
inline constexpr char kGoogleWebFonts[] = "googleWebFonts";
inline constexpr char kHosts[] = "hosts";
inline constexpr char kIsActive[] = "isActive";
inline constexpr char kLeft[] = "left";  ///< IDs for another request: an answer holds only so many
inline constexpr char kLicence[] = "licence";
inline constexpr char kLicenceURL[] = "licenceURL";
inline constexpr char kLinkFolder[] = "linkFolder";
inline constexpr char kLoggedIn[] = "loggedIn";
inline constexpr char kMatched[] = "matched";
inline constexpr char kMissingFiles[] = "missingFiles";
inline constexpr char kName[] = "name";
inline constexpr char kNewName[] = "newName";
inline constexpr char kOn[] = "on";
inline constexpr char kPath[] = "path";
inline constexpr char kPreviewFolder[] = "previewFolder";
inline constexpr char kPreviews[] = "previews";
inline constexpr char kProblems[] = "problems";
inline constexpr char kProcess[] = "process";
inline constexpr char kProtocol[] = "protocol";
inline constexpr char kRemoved[] = "removed";
inline constexpr char kReplace[] = "replace";
inline constexpr char kReplacements[] = "replacements";  ///< in a request: for how many fonts
inline constexpr char kReported[] = "reported";
inline constexpr char kSchemaVersion[] = "schemaVersion";
inline constexpr char kServerType[] = "serverType";  ///< of the notification of a log-in
inline constexpr char kSet[] = "set";
inline constexpr char kSets[] = "sets";
inline constexpr char kSmartList[] = "smartList";
inline constexpr char kStandalone[] = "standalone";
inline constexpr char kStates[] = "states";
inline constexpr char kStillActive[] = "stillActive";
inline constexpr char kUnmatched[] = "unmatched";  ///< positions in the request
inline constexpr char kUsage[] = "usage";
inline constexpr char kUserName[] = "userName";
inline constexpr char kVault[] = "vault";
inline constexpr char kVisible[] = "visible";  ///< offered by the system to programs
inline constexpr char kWholeFamily[] = "wholeFamily";
inline constexpr char kWorkgroup[] = "workgroup";
inline constexpr char kWorkgroupID[] = "workgroupID";
inline constexpr char kWorkgroups[] = "workgroups";
}  // namespace member

// clang-format off
#define PELLWICK_FONT_RECORD                                                                                 \
    kGS_DatabaseIDKey, kGS_PostScriptNameKey, kGS_FamilyKey, kGS_StyleKey, kGS_FoundryKey, kGS_FontKindKey,                \
    kGS_VersionKey, kGS_ChecksumKey, kGS_OutlineFileNameKey, kGS_OutlineFileSizeKey, kGS_PathKey,            \
    kGS_ActivationStateKey, kGS_WorkgroupIDKey, kGS_WorkgroupNameKey, kGS_WorkgroupTypeKey, kGS_LocationKey
#define PELLWICK_SET_RECORD kID, kName, kGS_WorkgroupIDKey, kGS_WorkgroupNameKey, kFontCount
#define PELLWICK_SMART_LIST_QUERY kGS_WorkgroupIDsKey, kGS_SetIDsKey, kGS_SmartSetIDsKey
#define PELLWICK_SMART_LIST_RECORD kGS_SmartListIDKey, kGS_SmartListNameKey, PELLWICK_SMART_LIST_QUERY

/// Every method: X(name, (members of its arguments), (members of its result)). Callers get a constant for the
/// name, and the agent the declaration of its handler, which is defined in agent/…Commands.cpp.
#define PELLWICK_METHODS(X)                                                                                  \
    X(Hello, (kProtocol, kTaken), ())                                                                        \
    X(Subscribe, (), ())                                                                                     \
    X(GetStatus, (), (kProcess, kFonts, kSystemFonts, kMissingFiles, kActiveFiles, kHosts, kLoggedIn, kUserName, kStandalone,             \
      kGoogleWebFonts, kSchemaVersion, kWorkgroup, kDefaultWorkgroup, kVault, kDataFolder,                   \
      kPreviewFolder, kLinkFolder))                                                                          \
    X(Stop, (), (kProcess))                                                                                  \
    X(AddFile, (kPath, kWorkgroup), (kFonts, kAlreadyKnown))                                                 \
    X(RemoveFonts, (kFonts, kDryRun), (kRemoved, kLeft))                                                              \
    X(ListFonts, (kAfter, kSet, kSmartList, kWorkgroup, kSystem, kVisible), (kFonts))                                             \
    X(CheckFiles, (kAfter), (kChecked, kAfter, kProblems))                                                   \
    X(CheckRecords, (), (kFonts, kFiles, kProblems, kCopies))                                                  \
    X(ActivateForUser, (kFonts), (kFailed))                                                                  \
    X(DeactivateForUser, (kFonts), (kStillActive))                                                           \
    X(LogIn, (kName), ())                                                                                    \
    X(LogOut, (), ())                                                                                        \
    X(SetStandalone, (kOn), ())                                                                              \
    X(SetGoogleWebFonts, (kOn), ())                                                                          \
    X(ListWorkgroups, (), (kWorkgroups, kCurrent))                                                           \
    X(CreateWorkgroup, (kName), ())                                                                          \
    X(RenameWorkgroup, (kName, kNewName), ())                                                                \
    X(DeleteWorkgroup, (kName), ())                                                                          \
    X(UseWorkgroup, (kName), ())                                                                             \
    X(ListSets, (kWorkgroup), (kSets))                                                                       \
    X(FindSet, (kName, kWorkgroup), (PELLWICK_SET_RECORD))                                                   \
    X(CreateSet, (kName, kWorkgroup, kWorkgroupID), (PELLWICK_SET_RECORD))                                   \
    X(DeleteSet, (kSet), (PELLWICK_SET_RECORD))                                                              \
    X(AddFontsToSets, (kFonts, kSets), (kAdded))                                                             \
    X(ListSmartLists, (), (kGS_SmartListsKey))                                                               \
    X(FindSmartList, (kGS_SmartListNameKey), (PELLWICK_SMART_LIST_RECORD))                                   \
    X(GetSmartList, (kGS_SmartListIDKey), (PELLWICK_SMART_LIST_RECORD))                                      \
    X(CreateSmartList, (kGS_SmartListNameKey, PELLWICK_SMART_LIST_QUERY), (PELLWICK_SMART_LIST_RECORD))      \
    X(RenameSmartList, (kGS_SmartListIDKey, kGS_SmartListNameKey), (PELLWICK_SMART_LIST_RECORD))             \
    X(DeleteSmartList, (kGS_SmartListIDKey), (PELLWICK_SMART_LIST_RECORD))                                   \
    X(SetSmartListQuery, (kGS_SmartListIDKey, PELLWICK_SMART_LIST_QUERY), (PELLWICK_SMART_LIST_RECORD))      \
    X(TrySmartListQuery, (kGS_SmartListIDKey, PELLWICK_SMART_LIST_QUERY), ())                                \
    X(ActivateFonts, (kFonts, kDocument), (kMatched))                                                        \
    X(ActivateDocumentFonts, (kFonts, kDocument, kReplacements), (kMatched, kUnmatched, kReplacements,       \
      kReported))                                                                                            \
    X(NoteChoices, (kChoices), ())                                                                           \
    X(MatchFonts, (kFonts, kDocument, kReplacements), (kReported, kUnmatched, kReplacements))                \
    X(KeepFonts, (kFonts), ())                                                                               \
    X(DeactivateFonts, (kFonts), (kDeactivated))                                                             \
    X(ListRivals, (kAfter), (kFonts))                                                                        \
    X(PreferFont, (kFont, kOn), ())                                                                          \
    X(GetFontConflicts, (kFonts), (kConflicts))                                                              \
    X(EnableDesignActivation, (kFont, kWholeFamily, kEnable), (kConflicts))                                  \
    X(PreviewActivateFonts, (kFonts, kActivate), ())                                                         \
    X(RenderPreviews, (kFonts), (kPreviews))                                                                 \
    X(GetFont, (kFont), (PELLWICK_FONT_RECORD, kGS_GlyphscanChecksumKey, kGS_KerningChecksumKey))                                                              \
    X(GetFonts, (kFonts), (kFonts))                                                                          \
    X(GetLicences, (kFonts), (kFonts, kLeft))                                                                \
    X(FindByPostScriptName, (kName, kWorkgroup), (kFonts))                                                   \
    X(FindByFamilyName, (kName, kWorkgroup), (kFonts))                                                       \
    X(FindSameFamily, (kFont), (kFonts))                                                                     \
    X(FindByAnyName, (kName, kAfter), (kFonts))                                                              \
    X(GetClientStates, (kFonts), (kStates))                                                                  \
    X(SaveDocumentFonts, (kPath, kReplace, kUsage), ())                                                      \
    X(GetFontUsage, (kPath), (kUsage))                                                                       \
    X(WriteFontUsage, (kPath, kUsage), ())                                                                   \
    X(ClearDocument, (kPath), ())
// clang-format on

namespace method {
#define PELLWICK_METHOD_CONSTANT(name, arguments, result) inline constexpr char k##name[] = #name;
PELLWICK_METHODS(PELLWICK_METHOD_CONSTANT)
#undef PELLWICK_METHOD_CONSTANT
}  // namespace method

/// Names of members, and whether one is among them.
class MemberNames {
public:
    template <class... Names>
    constexpr explicit MemberNames(const Names&... names) : mNames{std::string_view(names)...} {}

    constexpr bool Hold(std::string_view name) const {
        for (const std::string_view each : mNames) {
            if (!each.empty() && each == name)
                return true;
        }
        return false;
    }
    /// Empty ones stand for none.
    constexpr const auto& Names() const { return mNames; }

private:
    std::array<std::string_view, 20> mNames;
};

/// A row of the table.
struct Method {
    std::string_view name;
    MemberNames arguments;
    MemberNames result;
};

/// Null for a name that no method has.
const Method* FindMethod(std::string_view name);

/// What the names of workgroups end in that are shown in the user's language, without it.
inline constexpr char kNameToBeLocalized[] = " (LOCALIZE ME)";
/// The name of a workgroup as people see it.
std::string ShownWorkgroupName(const std::string& name);
/// The name of kWorkgroupID_All.
inline constexpr char kAllWorkgroupsName[] = "All Fonts";

}  // namespace pellwick
