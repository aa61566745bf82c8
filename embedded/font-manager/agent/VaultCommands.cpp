// Whether the vault holds what the records say, and what to do where it does not.
#include <chrono>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/Requests.h"
#include "agent/VaultCommands.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "scan/FontFiles.h"

namespace pellwick {
namespace {

enum class Finding { kIntact, kMissing, kDamaged };

struct CheckedFile {
    FontFile file;
    Finding finding = Finding::kIntact;
    std::string keptAt{};  ///< where a damaged one was put
};

/// A file that cannot be read just now is not called damaged.
CheckedFile Check(const FontVault& vault, const FontFile& file, const StopFlag& isStopped) {
    if (!vault.Has(file)) {
        const bool isThere = platform::IsExistingFile(vault.PathOf(file));
        return {file, isThere ? Finding::kDamaged : Finding::kMissing,
                isThere ? vault.SetAside(vault.PathOf(file)) : std::string()};
    }
    const std::string checksum = FontVault::ChecksumOfContent(vault.PathOf(file), isStopped);
    if (checksum.empty() || checksum == file.checksum)
        return {file};
    return {file, Finding::kDamaged, vault.SetAside(vault.PathOf(file))};
}

std::string TextOf(const CheckedFile& checked) {
    const std::string name = checked.file.name;
    if (checked.finding == Finding::kMissing)
        return "the file of " + name + " is gone from the vault; add the font again";
    return "the file of " + name + " is damaged" +
           (checked.keptAt.empty() ? std::string() : ", and was put into " + checked.keptAt) +
           "; add the font again";
}

/// Fonts whose file is not what it was are not offered any more.
void NoteLost(CommandContext& context, const std::vector<CheckedFile>& checked, Json& problems) {
    std::vector<FontFile> lost;
    Activation activation = context.manager.BeginActivation();
    for (const CheckedFile& each : checked) {
        const auto known = context.manager.fonts.FindFile(each.file.checksum);
        if (!known)  // removed meanwhile
            continue;
        if (each.finding == Finding::kIntact) {
            context.manager.fonts.SetFileMissing(known->id, false);
            continue;
        }
        activation.NoteMissing(*known);
        lost.push_back(*known);
        problems.push_back(TextOf(each));
    }
    AnnounceChanges(context.audience, activation.Commit());
    for (const FontFile& file : lost)
        context.manager.activeFonts->Remove(file);
}

Json Report(CommandContext& context, const std::vector<CheckedFile>& checked) {
    Json problems = Json::array();
    NoteLost(context, checked, problems);
    return {{member::kChecked, checked.size()},
            {member::kAfter, checked.empty() ? 0 : checked.back().file.id},
            {member::kProblems, std::move(problems)}};
}

/// What can be put right without reading every font. `damage`: what SQLite finds wrong with the database.
Json ReportRecords(CommandContext& context, const std::vector<std::string>& damage) {
    FontManager& manager = context.manager;
    Json problems = Json::array();
    for (const std::string& each : damage)
        problems.push_back("the database " + manager.locations.databasePath + ": " + each);
    AnnounceChanges(context.audience, manager.EndLeasesOfDeadProcesses());
    const ActiveFonts::Repairs repairs = manager.RepairActiveFonts();
    if (!repairs.problem.empty())
        problems.push_back(repairs.problem);
    return {{member::kFonts, manager.fonts.Count()},
            {member::kFiles, manager.fonts.CountFiles()},
            {member::kCopies, manager.fonts.CountCopiesOfSystemFiles()},
            {member::kProblems, std::move(problems)}};
}

/// A file of the vault that no record knows, and what is in it.
struct FoundFile {
    FontFile file;
    std::vector<FontFace> faces;
    std::string problem;  ///< why it is none; empty when it is one
};

ScanResult Scan(const platform::ReadOnlyFile& content, FontWorker& worker) {
    try {
        return worker.Scan(content);
    } catch (const NoFontWorker& error) {
        return {{}, error.what(), false};
    }
}

std::string WhereAside(const FontVault& vault, const std::string& path) {
    const std::string target = vault.SetAside(path);
    return target.empty() ? ", and cannot be put aside" : ", and was put into " + target;
}

FoundFile LookInto(const FontVault& vault, const std::string& path, FontWorker& worker) {
    FoundFile found;
    platform::ReadOnlyFile content;
    found.file.checksum = FontVault::ChecksumOfName(path);
    found.file.extension = platform::NamePart(path).substr(found.file.checksum.size());
    const std::string checksum = FontVault::ChecksumOfContent(path, worker.StopFlag());
    if (checksum.empty() || content.Open(path) || content.Size(found.file.size))
        found.problem = path + " cannot be read";
    else if (checksum != found.file.checksum)
        found.problem = path + " is damaged" + WhereAside(vault, path);
    if (!found.problem.empty())
        return found;
    ScanResult result = Scan(content, worker);
    found.faces = std::move(result.faces);
    if (!found.faces.empty())
        found.file.name = found.faces.front().postScriptName + found.file.extension;
    else if (!result.isJudged)
        found.problem = path + " stays where it is, and the next start tries again (" + result.reason + ")";
    else
        found.problem = path + " is not a font (" + result.reason + ")" + WhereAside(vault, path);
    return found;
}

/// The same font may have been added under a name of another extension since, or before a loss of records.
void Reunite(FontManager& manager, const FontFile& found, const FontFile& known) {
    if (found.extension == known.extension)  // added by somebody meanwhile
        return;
    static const StopFlag kGoesOn{false};
    if (manager.vault.IsIntact(known, kGoesOn)) {
        (void)manager.vault.Remove(found);
    } else if (manager.vault.Rename(found, known)) {
        manager.fonts.SetFileMissing(known.id, false);
        manager.RepairActiveFonts();
    }
}

void Add(CommandContext& context, const FoundFile& found) {
    FontManager& manager = context.manager;
    if (const auto known = manager.fonts.FindFile(found.file.checksum)) {
        Reunite(manager, found.file, *known);
        return;
    }
    if (!manager.vault.Has(found.file))  // added and removed by somebody meanwhile
        return;
    Transaction transaction(manager.database);
    const int64_t fileID = manager.fonts.Add(found.file, found.faces);
    for (const Font& font : manager.fonts.FontsOfFile(fileID))
        manager.workgroups.AddFont(manager.DefaultWorkgroup().id, font.id);
    transaction.Commit();
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
}

}  // namespace

/// The files in their order after that ID, for as long as there is time.
Json commands::CheckFiles(CommandContext& context, const Json& arguments) {
    const FontVault& vault = context.manager.vault;
    const auto files =
        context.manager.fonts.FilesAfter(IntegerMember(arguments, member::kAfter), kMaxFilesPerCheck);
    return context.Defer(Deferral::LaneName::kFiles, [&vault, files](FontWorker& worker) {
        const auto deadline = std::chrono::steady_clock::now() + kVaultCheckTime;
        std::vector<CheckedFile> checked;
        for (const FontFile& file : files) {
            if (worker.StopFlag() || std::chrono::steady_clock::now() > deadline)
                break;
            checked.push_back(Check(vault, file, worker.StopFlag()));
        }
        return [checked](CommandContext& later) { return Report(later, checked); };
    });
}

Json commands::CheckRecords(CommandContext& context, const Json&) {
    // Over a connection of its own: it reads the whole database.
    const std::string path = context.manager.locations.databasePath;
    return context.Defer(Deferral::LaneName::kFiles, [path](FontWorker&) {
        return [damage = Database(path).FindDamage()](CommandContext& later) {
            return ReportRecords(later, damage);
        };
    });
}

Json CheckNextFile(CommandContext& context) {
    const int64_t last = context.manager.settings.LastCheckedFile();
    auto files = context.manager.fonts.FilesAfter(last, 1);
    if (files.empty() && last != 0)
        files = context.manager.fonts.FilesAfter(0, 1);
    if (files.empty())
        return Json::object();
    const FontVault& vault = context.manager.vault;
    return context.Defer(Deferral::LaneName::kFiles, [&vault, file = files.front()](FontWorker& worker) {
        return [checked = Check(vault, file, worker.StopFlag())](CommandContext& later) {
            Transaction transaction(later.manager.database, Durability::kProcess);
            later.manager.settings.SetLastCheckedFile(checked.file.id);
            transaction.Commit();
            Json problems = Json::array();
            NoteLost(later, {checked}, problems);
            if (!problems.empty())
                throw CommandError(error_codes::GZephyrinAssetManager::kFontMissing,
                                   problems.front().get<std::string>());
            return Json::object();
        };
    });
}

Json TakeBack(CommandContext& context, const std::shared_ptr<std::vector<std::string>>& paths) {
    if (paths->empty())
        return Json::object();
    const std::string path = std::move(paths->back());
    paths->pop_back();
    const FontVault& vault = context.manager.vault;
    return context.Defer(Deferral::LaneName::kFiles, [&vault, path, paths](FontWorker& worker) {
        return [found = LookInto(vault, path, worker), paths](CommandContext& later) {
            try {
                if (found.problem.empty())
                    Add(later, found);
                else
                    later.audience.Note(found.problem);
            } catch (const DatabaseError& error) {  // the next start tries again
                later.audience.Note("taking a font back: " + std::string(error.what()));
            }
            return TakeBack(later, paths);
        };
    });
}

}  // namespace pellwick
