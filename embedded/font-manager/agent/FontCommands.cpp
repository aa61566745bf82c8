// Adding, removing and listing fonts.
#include <future>
#include <nlohmann/json.hpp>
#include <optional>

#include "TarnwickPluginInterface.h"
#include "agent/Commands.h"
#include "agent/FontRecord.h"
#include "common/Limits.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "platform/FontTable.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

std::string ReadFontFile(const std::string& path) {
    uint64_t size = 0;
    if (const auto error = platform::FileSize(path, size))
        throw CommandError(GFontActivationManager::kOSFileSystemError, platform::SystemErrorText(error));
    if (size > kMaxFontFileSize)
        throw CommandError(CoreErrorCodes::kNotSupported, "larger than any font file");
    std::string content;
    if (const auto error = platform::ReadWholeFile(path, content, kMaxFontFileSize))
        throw CommandError(GFontActivationManager::kOSFileSystemError, platform::SystemErrorText(error));
    return content;
}

Workgroup TargetWorkgroup(CommandContext& context, const Json& arguments) {
    const std::string name = StringMember(arguments, "workgroup");
    if (name.empty())
        return context.manager.CurrentWorkgroup();
    Workgroup workgroup = FindWorkgroup(context, name);
    if (workgroup.type == kWorkgroupType_System)
        throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                           "\"" + name + "\" always stays as it is");
    return workgroup;
}

/// A font file's way into the vault, which it leaves again when nothing comes of the command.
class VaultAddition {
public:
    explicit VaultAddition(const FontVault& vault) : mVault(vault) {}
    ~VaultAddition() {
        if (mFile)
            mVault.Remove(*mFile);
    }
    VaultAddition(const VaultAddition&) = delete;
    VaultAddition& operator=(const VaultAddition&) = delete;

    void Store(const FontFile& file, const std::string& content) {
        if (!mVault.Has(file))
            mFile = file;
        if (const auto error = mVault.Store(file, content))
            throw CommandError(GFontActivationManager::kOSFileSystemError,
                               platform::WriteFailureText(mVault.PathOf(file), error));
    }
    void Keep() { mFile.reset(); }

private:
    const FontVault& mVault;
    std::optional<FontFile> mFile;  ///< one that was not there before
};

/// A file that is known already; its copy in the vault is made good if need be. The file's ID.
int64_t AddAgain(FontManager& manager, const FontFile& file, const std::string& content,
                 VaultAddition& addition) {
    if (!manager.vault.Has(file))
        addition.Store(file, content);
    manager.fonts.SetFileMissing(file.id, false);
    return file.id;
}

int64_t AddNew(CommandContext& context, FontFile& file, const std::string& content, VaultAddition& addition) {
    std::string reason;
    const std::vector<FontFace> faces = context.manager.scanner.Scan(content, reason);
    context.audience.KeepAlive();
    if (faces.empty())
        throw CommandError(reason == kReason_Damaged ? error_codes::GFontToolResults::kCorrupt
                                                     : error_codes::GFontToolResults::kNotAFontFile,
                           reason);
    file.extension = FontFileExtension(file.name, faces);
    file.size = content.size();
    addition.Store(file, content);
    return context.manager.fonts.Add(file, faces);
}

Json AddFile(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    const std::string path = StringMember(arguments, "path");
    const std::string content = ReadFontFile(path);
    context.audience.KeepAlive();
    FontFile file;
    file.checksum = Sha256(content);
    file.name = platform::Utf8Text(platform::Utf8Path(path).filename());
    context.audience.KeepAlive();

    VaultAddition addition(manager.vault);  // outlives the transaction, as a record must not its file
    Transaction transaction(manager.database);
    const Workgroup workgroup = TargetWorkgroup(context, arguments);
    const auto known = manager.fonts.FindFile(file.checksum);
    const int64_t fileID =
        known ? AddAgain(manager, *known, content, addition) : AddNew(context, file, content, addition);
    for (const Font& font : manager.fonts.FontsOfFile(fileID))
        manager.workgroups.AddFont(workgroup.id, font.id);
    transaction.Commit();
    addition.Keep();
    if (!known)
        context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return {{"fonts", FontRecords(manager, manager.fonts.FontsOfFile(fileID))},
            {"alreadyKnown", known.has_value()}};
}

Json RemoveFonts(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    Json removed = Json::array();
    std::vector<FontFile> files;
    Activation activation = manager.BeginActivation();
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, "fonts"))) {
        const auto font = manager.fonts.Find(id);
        if (!font)  // gone with another face of its file
            continue;
        for (const Json& record : FontRecords(manager, manager.fonts.FontsOfFile(font->file.id)))
            removed.push_back(record);
        activation.RemoveFile(font->file);
        files.push_back(font->file);
    }
    const ActivationChanges changes = activation.Commit();
    for (const FontFile& file : files)
        manager.vault.Remove(file);
    AnnounceChanges(context.audience, changes);
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return {{"removed", removed}};
}

/// The next of all fonts, or of those in the set or the smart list that the request gives.
std::vector<Font> NextPage(CommandContext& context, const Json& arguments) {
    FontStore& store = context.manager.fonts;
    const auto after = static_cast<uint32_t>(IntegerMember(arguments, "after"));
    if (arguments.contains("set"))
        return store.ListInSet(IDOf(IntegerMember(arguments, "set")), after, kListPageSize);
    if (arguments.contains("smartList"))
        return store.ListFrom(SourcesOfSmartList(context, IntegerMember(arguments, "smartList")), after,
                              kListPageSize);
    return store.List(after, kListPageSize);
}

/// The system may take long to say: it looks at all its fonts.
platform::VisibleFonts AskWhatIsVisible(Audience& audience) {
    auto answer =
        std::async(std::launch::async, [] { return platform::Current<platform::FontTable>().Visible(); });
    while (answer.wait_for(kKeepAliveInterval) != std::future_status::ready)
        audience.KeepAlive();
    return answer.get();
}

Json ListFonts(CommandContext& context, const Json& arguments) {
    Json records = Json::array();
    std::optional<platform::VisibleFonts> visible;
    if (BoolMember(arguments, kVisibleMember))
        visible = AskWhatIsVisible(context.audience);
    for (const Font& font : NextPage(context, arguments)) {
        Json record = FontRecord(context.manager, font);
        record[kStyleMember] = font.style;
        record[kFullNameMember] = font.fullName;
        if (visible)
            record[kVisibleMember] =
                IsActive(font) &&
                visible->Offers(context.manager.activeFonts->PathOf(font.file), font.postScriptName);
        records.push_back(std::move(record));
    }
    return {{"fonts", std::move(records)}};
}

}  // namespace

void AddFontCommands(CommandTable& table) {
    table[method::kAddFile] = AddFile;
    table[method::kRemoveFonts] = RemoveFonts;
    table[method::kListFonts] = ListFonts;
}

}  // namespace pellwick
