#include "CollectPlan.h"

#include <algorithm>

#include "FontRecordKeys.h"
#include "FoundFonts.h"
#include "Output.h"
#include "collect/FontCollector.h"
#include "platform/Console.h"
#include "platform/Files.h"

namespace {

using nlohmann::json;

/// Where layout programs look for fonts that come with a document.
constexpr char kDocumentFontsFolder[] = "Document fonts";

OpenedDocument OpenForAMoment(const CoreLibrary& core, const std::string& path, FontFinder& finder) {
    OpenedDocument document = OpenDocument(core, path, finder.FindForCore(path));
    core.HandleCloseDocument(path.c_str(), "");
    return document;
}

}  // namespace

void CollectTarget::Add(const OpenedDocument& document) {
    for (const json& font : document.matched) {
        const auto id = font.value(kGS_DatabaseIDKey, int64_t{0});
        const auto [use, isNew] = uses.try_emplace(id, json::array());
        use->second = pellwick::MergedUses(use->second, pellwick::UsesIn(document.path, font));
        if (isNew)
            ids.push_back(id);
    }
    json& missing = missingFonts.try_emplace(platform::NamePart(document.path), json::array()).first->second;
    for (const json& font : document.unmatched)
        missing.push_back(pellwick::MissingFont(document.path, font));
}

std::set<std::string> CollectTarget::MissingNames() const {
    std::set<std::string> names;
    for (const auto& [document, fonts] : missingFonts) {
        for (const json& font : fonts)
            names.insert(font.value(pellwick::manifest::kPostScriptName, ""));
    }
    return names;
}

int CollectPlan::Read(const CoreLibrary& core, const std::vector<std::string>& paths) {
    FontFinder finder;
    ProgressBar progress(paths.size());
    int status = exit_status::kDone;
    for (const std::string& path : paths) {
        if (platform::WasInterrupted()) {
            progress.Hide();
            PrintError("stopped; not all documents were looked at");
            return exit_status::kFailed;
        }
        progress.Advance(platform::NamePart(path));
        const OpenedDocument document = OpenForAMoment(core, path, finder);
        const std::string problem = WhyNoFontsAreKnown(document);
        if (problem.empty()) {
            TargetOf(path).Add(document);
            continue;
        }
        progress.Hide();
        PrintError("the fonts of " + path + " were not collected: " + problem);
        status = exit_status::kFailed;
    }
    return status;
}

CollectTarget& CollectPlan::TargetOf(const std::string& path) {
    const std::string folder = mOptions.besideDocuments ? platform::FolderPart(path) + kDocumentFontsFolder
                                                        : platform::AbsolutePath(mOptions.folder);
    const auto found = std::find_if(mTargets.begin(), mTargets.end(),
                                    [&](const CollectTarget& target) { return target.folder == folder; });
    if (found != mTargets.end())
        return *found;
    CollectTarget& added = mTargets.emplace_back();
    added.folder = folder;
    return added;
}
