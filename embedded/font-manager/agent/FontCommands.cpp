// Adding, removing and listing fonts.
#include <algorithm>
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

void RefuseSystemFonts(CommandContext& context, const std::vector<uint32_t>& ids) {
    for (const uint32_t id : ids) {
        const auto font = context.manager.fonts.Find(id);
        if (font && font->file.IsSystems())
            throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                               "\"" + font->postScriptName + "\" is the system's own: " + font->file.path +
                                   " stays where it is");
    }
}

}  // namespace

/// The next of the fonts to remove, each with all faces of its file. One answer holds only so many: the IDs
/// that are left come back for another request.
Json commands::RemoveFonts(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    Json removed = Json::array();
    std::vector<FontFile> files;
    Activation activation = manager.BeginActivation(Durability::kPowerLoss);
    std::vector<uint32_t> left = FontIDsOf(ArrayMember(arguments, member::kFonts));
    RefuseSystemFonts(context, left);
    std::reverse(left.begin(), left.end());
    for (; !left.empty() && removed.size() < kListPageSize; left.pop_back()) {
        context.audience.KeepAlive();
        const auto font = manager.fonts.Find(left.back());
        if (!font)  // gone with another face of its file
            continue;
        for (const Font& face : manager.fonts.FontsOfFile(font->file.id))
            removed.push_back({{kGS_DatabaseIDKey, face.id}, {kGS_PostScriptNameKey, face.postScriptName}});
        activation.RemoveFile(font->file);
        files.push_back(font->file);
    }
    RequireSendable(removed);
    const ActivationChanges changes = activation.Commit();
    for (const FontFile& file : files)
        (void)manager.vault.Remove(file);
    AnnounceChanges(context.audience, changes);
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return {{member::kRemoved, std::move(removed)},
            {member::kLeft, std::vector<uint32_t>(left.rbegin(), left.rend())}};
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
