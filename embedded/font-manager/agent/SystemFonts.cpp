#include "agent/SystemFonts.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "platform/Memory.h"
#include "scan/FontFiles.h"

namespace pellwick {

/// One reading. The loop and the lane have it in turn.
struct SystemFontReading {
    const Locations& locations;               ///< fonts in the agent's folders are its own
    std::map<std::string, FontFile> known{};  ///< by path; in the end those that are gone or have changed
    platform::InstalledFonts installed{};
    std::string problem{};           ///< why nothing is known of them; empty when it is
    std::vector<FontFile> unread{};  ///< files that are new or have changed, last one first
    struct ReadFile {
        FontFile file;
        std::vector<FontFace> faces;  ///< none where it is not a font that can be used
    };
    std::vector<ReadFile> read{};
    size_t count = 0;           ///< of files that were new or had changed
    bool isIncomplete = false;  ///< what is recorded may lack fonts; the loop's alone
};

namespace {

using Reading = std::shared_ptr<SystemFontReading>;

/// Sorts out what is new, what is gone and what has changed.
void Compare(SystemFontReading& reading) {
    std::erase_if(reading.installed.folders,
                  [&](const std::string& folder) { return reading.locations.IsOwn(folder); });
    for (const std::string& path : reading.installed.files) {
        FontFile file;
        file.path = path;
        if (reading.locations.IsOwn(path) || platform::FileSize(path, file.size) ||
            platform::FileModificationTime(path, file.modified) || file.size > kMaxFontFileSize)
            continue;
        const auto known = reading.known.find(path);
        if (known != reading.known.end() && known->second.size == file.size &&
            known->second.modified == file.modified)
            reading.known.erase(known);
        else
            reading.unread.push_back(std::move(file));
    }
    reading.count = reading.unread.size();
}

void Read(SystemFontReading::ReadFile& each, FontWorker& worker) {
    each.file.name = platform::NamePart(each.file.path);
    std::string beginning(kSignatureSize, '\0');
    size_t size = 0;
    platform::ReadOnlyFile content;
    if (content.Open(each.file.path) || content.ReadAt(0, beginning.data(), beginning.size(), size) ||
        !MayBeFontFile(std::string_view(beginning).substr(0, size)))
        return;
    each.faces = worker.Scan(content).faces;
    each.file.extension = FontFileExtension(each.file.name, each.faces);
    each.file.checksum = FontVault::ChecksumOfContent(each.file.path, worker.StopFlag());
}

void ReadSome(SystemFontReading& reading, FontWorker& worker) {
    const auto deadline = std::chrono::steady_clock::now() + kReadingTime;
    while (!reading.unread.empty() && std::chrono::steady_clock::now() < deadline) {
        SystemFontReading::ReadFile each{std::move(reading.unread.back()), {}};
        Read(each, worker);
        reading.unread.pop_back();
        reading.read.push_back(std::move(each));
    }
}

void NoteEnd(CommandContext& context, const SystemFontReading& reading) {
    if (reading.count == 0 && reading.known.empty())
        return;
    context.audience.Note("the system's fonts: " + std::to_string(reading.count) + " files read, " +
                          std::to_string(reading.known.size()) + " changed or gone");
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    platform::ReleaseFreeMemory();
}

void Forget(FontManager& manager, const std::map<std::string, FontFile>& files) {
    if (files.empty())
        return;
    Transaction transaction(manager.database, Durability::kProcess);
    for (const auto& [path, file] : files)
        manager.fonts.ForgetSystemFile(file.id);
    transaction.Commit();
}

/// What can be told again at any time is not worth a wait for the disk.
void Record(FontManager& manager, std::vector<SystemFontReading::ReadFile>& read) {
    if (read.empty())
        return;
    const auto workgroup = manager.workgroups.FirstOfType(kWorkgroupType_System);
    Transaction transaction(manager.database, Durability::kProcess);
    for (const auto& [file, faces] : read) {
        if (manager.fonts.IsSystemFileKnown(file.path))  // by now: another session's agent reads them too
            continue;
        const int64_t fileID = manager.fonts.Add(file, faces);
        for (const Font& font : manager.fonts.FontsOfFile(fileID))
            manager.workgroups.AddFont(workgroup ? workgroup->id : 0, font.id);
    }
    transaction.Commit();
    read.clear();
}

Json ReadOn(CommandContext& context, const Reading& reading) {
    Record(context.manager, reading->read);
    if (reading->unread.empty()) {
        NoteEnd(context, *reading);
        return Json::object();
    }
    return context.Defer(Deferral::LaneName::kSystemFonts, [reading](FontWorker& worker) {
        ReadSome(*reading, worker);
        return [reading](CommandContext& later) { return ReadOn(later, reading); };
    });
}

}  // namespace

Json ReadSystemFonts(CommandContext& context,
                     const std::function<void(const std::vector<std::string>& folders)>& onFolders) {
    FontManager& manager = context.manager;
    const Reading reading(new SystemFontReading{manager.locations});
    manager.systemFontReading = reading;
    for (FontFile& file : manager.fonts.SystemFiles())
        reading->known.emplace(file.path, file);
    reading->isIncomplete = reading->known.empty();
    return context.Defer(Deferral::LaneName::kSystemFonts, [reading, onFolders](FontWorker& worker) {
        if (auto installed = worker.ListInstalled(reading->problem)) {
            reading->installed = std::move(*installed);
            Compare(*reading);
        }
        return [reading, onFolders](CommandContext& later) -> Json {
            if (!reading->problem.empty())
                throw CommandError(GFontActivationManager::kOSFileSystemError, reading->problem);
            onFolders(reading->installed.folders);
            reading->isIncomplete = !reading->unread.empty();
            Forget(later.manager, reading->known);
            return ReadOn(later, reading);
        };
    });
}

bool AreSystemFontsIncomplete(const FontManager& manager) {
    const Reading reading = manager.systemFontReading.lock();
    return reading && reading->isIncomplete;
}

}  // namespace pellwick
