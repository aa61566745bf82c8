// Adding a font file. The lane for files copies it, and has it read by a process that may die of it; the loop
// keeps the records.
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/NamedRecords.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "scan/FontFiles.h"

namespace pellwick {
namespace {

/// A font file on its way into the vault, which it leaves again when nothing comes of the command.
struct Arrival {
    explicit Arrival(const FontVault& target) : vault(target) {}
    ~Arrival() {
        if (isNewInVault)
            (void)vault.Remove(file);
    }
    Arrival(const Arrival&) = delete;
    Arrival& operator=(const Arrival&) = delete;

    const FontVault& vault;
    std::string name;  ///< as the user calls the file
    FontFile file;
    ReceivedFile received;
    std::vector<FontFace> faces;
    bool isNewInVault = false;
    bool isRepaired = false;  ///< what stood in the vault was damaged
};

using Arriving = std::shared_ptr<Arrival>;

Workgroup TargetWorkgroup(CommandContext& context, const std::string& name) {
    if (name.empty())
        return context.manager.CurrentWorkgroup();
    Workgroup workgroup = FindWorkgroup(context, name);
    if (workgroup.type == kWorkgroupType_System)
        throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                           "\"" + name + "\" always stays as it is");
    return workgroup;
}

[[noreturn]] void ThrowUnreadable(platform::SystemError error) {
    throw CommandError(GFontActivationManager::kOSFileSystemError, platform::SystemErrorText(error));
}

[[noreturn]] void ThrowUnwritable(const std::string& path, platform::SystemError error) {
    throw CommandError(GFontActivationManager::kOSFileSystemError, platform::WriteFailureText(path, error));
}

[[noreturn]] void ThrowRefused(const std::string& reason) {
    throw CommandError(reason.starts_with(kReason_Damaged) ? error_codes::GFontToolResults::kCorrupt
                                                           : error_codes::GFontToolResults::kNotAFontFile,
                       reason);
}

/// Refuses what cannot be a font before it is copied.
void OpenFontFile(const std::string& path, platform::ReadOnlyFile& source) {
    constexpr char kTooLarge[] = "larger than any font file";
    uint64_t size = 0;
    size_t beginningSize = 0;
    std::string beginning(kSignatureSize, '\0');
    platform::SystemError error = source.Open(path);
    if (!error)
        error = source.Size(size);
    if (!error && size > kMaxFontFileSize)
        throw CommandError(CoreErrorCodes::kNotSupported, kTooLarge);
    if (!error)
        error = source.ReadAt(0, beginning.data(), beginning.size(), beginningSize);
    if (error)
        ThrowUnreadable(error);
    if (!MayBeFontFile(std::string_view(beginning).substr(0, beginningSize)))
        ThrowRefused(kReason_NoFont);
}

void Receive(const std::string& path, Arrival& arrival, const StopFlag& isStopped) {
    platform::ReadOnlyFile source;
    OpenFontFile(path, source);
    platform::SystemError error;
    switch (arrival.vault.Receive(source, isStopped, arrival.received, error)) {
        case FontVault::Outcome::kReceived:
            break;
        case FontVault::Outcome::kUnreadable:
            ThrowUnreadable(error);
        case FontVault::Outcome::kUnwritable:
            ThrowUnwritable(arrival.vault.Folder(), error);
        case FontVault::Outcome::kTooLarge:
            throw CommandError(CoreErrorCodes::kNotSupported, "it grew beyond any font file meanwhile");
        case FontVault::Outcome::kStopped:
            throw CommandError(GAgentIF::kShutdown, "the agent ends; add it again");
    }
    arrival.file.checksum = arrival.received.checksum;
    arrival.file.size = arrival.received.size;
    arrival.file.name = arrival.name = platform::NamePart(path);
}

void Read(Arrival& arrival, FontWorker& worker) {
    platform::ReadOnlyFile copy;
    if (const auto error = copy.Open(arrival.received.copy.Path()))
        ThrowUnreadable(error);
    ScanResult result = worker.Scan(copy);
    if (result.faces.empty())
        ThrowRefused(result.reason);
    arrival.faces = std::move(result.faces);
    arrival.file.extension = FontFileExtension(arrival.file.name, arrival.faces);
}

void Place(Arrival& arrival) {
    arrival.isNewInVault = !arrival.vault.Has(arrival.file);  // also where the folder cannot be flushed after
    if (const auto error = arrival.vault.Place(arrival.received, arrival.file))
        ThrowUnwritable(arrival.vault.PathOf(arrival.file), error);
}

/// The record of the file, if there is one, and the arrival's own where there is none.
FontFile Note(CommandContext& context, const Arrival& arrival, bool& isKnown) {
    FontManager& manager = context.manager;
    const auto known = manager.fonts.FindFile(arrival.file.checksum);
    isKnown = known.has_value();
    FontFile file = known.value_or(arrival.file);
    // Another command may have removed the file meanwhile.
    if (!manager.vault.Has(file) || (!isKnown && arrival.faces.empty()))
        throw CommandError(CoreErrorCodes::kNotFound, "it was removed at the same time; add it again");
    if (!isKnown) {
        file.id = manager.fonts.Add(file, arrival.faces);
        return file;
    }
    manager.fonts.SetFileMissing(file.id, false);
    manager.fonts.SetFileName(file.id, arrival.name);  // one that was taken back has lost it
    return file;
}

/// Programs that have the damaged file open or linked get the whole one.
void ActivateRepaired(FontManager& manager, const FontFile& file) {
    const auto known = manager.fonts.FindFile(file.checksum);
    if (!known || !manager.fonts.IsFileActive(known->id))
        return;
    manager.activeFonts->Remove(*known);
    manager.RepairActiveFonts();  // tried again later where it fails
}

Json Record(CommandContext& context, const Arriving& arrival, const std::string& workgroupName) {
    FontManager& manager = context.manager;
    bool isKnown = false;
    Transaction transaction(manager.database);
    const Workgroup workgroup = TargetWorkgroup(context, workgroupName);
    const bool wasRemoved = manager.fonts.IsRemovedFile(arrival->file.checksum);
    const FontFile file = Note(context, *arrival, isKnown);
    for (const Font& font : manager.fonts.FontsOfFile(file.id))
        manager.workgroups.AddFont(workgroup.id, font.id);
    Json fonts = FontRecords(manager, manager.fonts.FontsOfFile(file.id));
    RequireSendable(fonts);
    transaction.Commit();
    // The file is kept, unless another command added it with another extension meanwhile.
    if (file.extension == arrival->file.extension)
        arrival->isNewInVault = false;
    // Otherwise a database that loses its log would remove the file again.
    if (wasRemoved && !manager.database.WriteBackLog())
        context.audience.Note("the database's log could not be written back");
    if (arrival->isRepaired)
        ActivateRepaired(manager, arrival->file);
    if (!isKnown)
        context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return {{member::kFonts, std::move(fonts)}, {member::kAlreadyKnown, isKnown}};
}

/// A known file is not read again; a damaged copy in the vault is replaced.
Json Identify(CommandContext& context, const Arriving& arrival, const std::string& workgroup) {
    const auto known = context.manager.fonts.FindFile(arrival->file.checksum);
    if (known)
        arrival->file = *known;
    return context.Defer(Deferral::LaneName::kFiles, [=, isKnown = known.has_value()](FontWorker& worker) {
        if (!isKnown)
            Read(*arrival, worker);
        arrival->isRepaired = isKnown && !arrival->vault.IsIntact(arrival->file, worker.StopFlag());
        if (!isKnown || arrival->isRepaired)
            Place(*arrival);
        return [=](CommandContext& later) { return Record(later, arrival, workgroup); };
    });
}

}  // namespace

Json commands::AddFile(CommandContext& context, const Json& arguments) {
    const std::string path = StringMember(arguments, member::kPath);
    const std::string workgroup = StringMember(arguments, member::kWorkgroup);
    TargetWorkgroup(context, workgroup);
    const auto arrival = std::make_shared<Arrival>(context.manager.vault);
    return context.Defer(Deferral::LaneName::kFiles, [=](FontWorker& worker) {
        Receive(path, *arrival, worker.StopFlag());
        return [=](CommandContext& later) { return Identify(later, arrival, workgroup); };
    });
}

}  // namespace pellwick
