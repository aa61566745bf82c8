// Adding, removing and listing fonts.
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/NamedRecords.h"
#include "agent/Requests.h"
#include "agent/SmartListCommands.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/FontTable.h"

namespace pellwick {
namespace {

/// The next of all fonts, or of those that the request gives.
std::vector<Font> NextPage(CommandContext& context, const Json& arguments) {
    FontStore& store = context.manager.fonts;
    const uint32_t after = PageStart(arguments);
    if (arguments.contains(member::kSet))
        return store.ListInSet(IDOf(IntegerMember(arguments, member::kSet)), after, kListPageSize);
    if (arguments.contains(member::kSmartList))
        return store.ListFrom(SourcesOfSmartList(context, IntegerMember(arguments, member::kSmartList)),
                              after, kListPageSize);
    if (arguments.contains(member::kWorkgroup))
        return store.ListFrom(
            {false, {FindWorkgroup(context, StringMember(arguments, member::kWorkgroup)).id}, {}}, after,
            kListPageSize);
    if (arguments.contains(member::kSystem))
        return store.ListOfKind(BoolMember(arguments, member::kSystem), after, kListPageSize);
    return store.List(after, kListPageSize);
}

/// On Linux the system reads fonts to tell: not in this process.
platform::VisibleFonts LookAtVisibleFonts(FontWorker& worker) {
    auto& table = platform::Current<platform::FontTable>();
    if (!table.IsFilledFromFolders())
        return table.Visible();
    std::string problem;
    const auto installed = worker.ListInstalled(problem);
    if (!installed)
        throw CommandError(GFontActivationManager::kOSFileSystemError,
                           "what programs see cannot be told: " + problem);
    return {{installed->files.begin(), installed->files.end()}, {}};
}

/// `visible`: what the system offers to programs; null when nobody asked for it.
Json Page(CommandContext& context, const Json& arguments, const platform::VisibleFonts* visible) {
    Json records = Json::array();
    for (const Font& font : NextPage(context, arguments)) {
        Json record = FontRecord(context.manager, font);
        record[member::kFullName] = font.fullName;
        if (visible != nullptr)
            record[member::kVisible] =
                IsActive(font) && visible->Offers(context.manager.PathOf(font), font.postScriptName);
        records.push_back(std::move(record));
    }
    return {{member::kFonts, std::move(records)}};
}

void RefuseSystemFont(const Font& font) {
    if (font.file.IsSystems())
        throw CommandError(
            GZephyrinWorkgroupManager::kRestrictedWorkgroup,
            "\"" + font.postScriptName + "\" is the system's own: " + font.file.path + " stays where it is");
}

/// A page of the fonts, taken from the front of `left`, and the faces that share their files, which come to `files`.
Json NextFacesWithTheirFiles(CommandContext& context, std::vector<uint32_t>& left,
                             std::map<int64_t, FontFile>& files) {
    FontStore& fonts = context.manager.fonts;
    Json faces = Json::array();
    auto next = left.begin();
    for (; next != left.end() && faces.size() < kListPageSize; ++next) {
        context.audience.KeepAlive();
        const auto font = fonts.Find(*next);
        if (!font || !files.emplace(font->file.id, font->file).second)  // gone, or here with another face
            continue;
        RefuseSystemFont(*font);
        for (const Font& face : fonts.FontsOfFile(font->file.id))
            faces.push_back({{kGS_DatabaseIDKey, face.id}, {kGS_PostScriptNameKey, face.postScriptName}});
    }
    left.erase(left.begin(), next);
    return faces;
}

}  // namespace

/// The next of the fonts to remove, each with all faces of its file. One answer holds only so many: the IDs
/// that are left come back for another request.
Json commands::RemoveFonts(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    std::vector<uint32_t> left = FontIDsOf(ArrayMember(arguments, member::kFonts));
    std::map<int64_t, FontFile> files;
    Json removed = NextFacesWithTheirFiles(context, left, files);
    RequireSendable(removed);
    if (BoolMember(arguments, member::kDryRun))
        return {{member::kRemoved, std::move(removed)}, {member::kLeft, left}};
    Activation activation = manager.BeginActivation(Durability::kPowerLoss);
    for (const auto& [id, file] : files)
        activation.RemoveFile(file);
    const ActivationChanges changes = activation.Commit();
    for (const auto& [id, file] : files)
        (void)manager.vault.Remove(file);
    AnnounceChanges(context.audience, changes);
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return {{member::kRemoved, std::move(removed)}, {member::kLeft, left}};
}

Json commands::ListFonts(CommandContext& context, const Json& arguments) {
    if (!BoolMember(arguments, member::kVisible))
        return Page(context, arguments, nullptr);
    // The system may take long to say: it looks at all its fonts.
    return context.Defer(Deferral::LaneName::kFiles, [arguments](FontWorker& worker) {
        const auto visible = std::make_shared<platform::VisibleFonts>(LookAtVisibleFonts(worker));
        return [=](CommandContext& later) { return Page(later, arguments, visible.get()); };
    });
}

}  // namespace pellwick
