#include <fmt/core.h>

#include <nlohmann/json.hpp>

#include "CollectPlan.h"
#include "Commands.h"
#include "Output.h"
#include "PrintableText.h"
#include "collect/FontCollector.h"
#include "ipc/AgentConnection.h"
#include "platform/Console.h"
#include "platform/Files.h"

namespace {

using nlohmann::json;
using pellwick::CollectedFont;
using Outcome = CollectedFont::Outcome;
namespace manifest = pellwick::manifest;

/// Of two outcomes the one that matters more: what could not be done, then what is missing.
int Worse(int left, int right) {
    const bool isLeftMild = left == exit_status::kDone || left == exit_status::kFontsMissing;
    return isLeftMild && right != exit_status::kDone ? right : left;
}

/// What was done in one folder.
struct Collection {
    std::vector<CollectedFont> fonts;
    size_t copied = 0;
    int status = exit_status::kDone;

    void Note(int outcome) { status = Worse(status, outcome); }
    void Add(CollectedFont font) {
        if (font.outcome == Outcome::kCopied)
            ++copied;
        else if (font.outcome != Outcome::kLeftOut)
            Note(font.outcome == Outcome::kUnreadable ? exit_status::kFontsMissing : exit_status::kFailed);
        fonts.push_back(std::move(font));
    }
};

std::string NameOf(const json& font) {
    return font.value(manifest::kPostScriptName, "");
}

/// The records of the plan's fonts. kDone, or what the program ends with after an error line.
int AskFontManager(const CollectTarget& target, json& fonts) {
    constexpr std::chrono::seconds kPatience{30};
    pellwick::AgentConnection agent(kPatience);
    json answer;
    const ErrorCode code = pellwick::GetFontsToCollect(
        [&](const char* method, const json& arguments, json& result) {
            const ErrorCode called = agent.Call(method, arguments, result);
            answer = result;
            return called;
        },
        target.ids, fonts);
    if (code == CoreErrorCodes::kSuccess)
        return exit_status::kDone;
    PrintError("the font manager has not said where the fonts are (" + pellwick::FailureText(code, answer) +
               "); see how it is with: " + PellwickCommand("status"));
    return agent.HasFailed() ? exit_status::kFontManagerUnreachable : exit_status::kFailed;
}

void Copy(const CollectTarget& target, const json& fonts, pellwick::FontCollector& collector,
          Collection& collection) {
    ProgressBar progress(fonts.size());
    for (const json& font : fonts) {
        if (platform::WasInterrupted()) {
            progress.Hide();
            PrintError("stopped; what was collected so far is whole");
            collection.Note(exit_status::kFailed);
            return;
        }
        progress.Advance(font.value(kGS_PostScriptNameKey, ""));
        collection.Add(collector.Collect(font, target.uses.at(font.value(kGS_DatabaseIDKey, int64_t{0}))));
    }
}

void Warn(const CollectedFont& font) {
    const std::string problem = font.entry.value(manifest::kProblem, "");
    if (!problem.empty())
        PrintError(NameOf(font.entry) + " was not collected: " + problem);
    else if (font.isRestricted)
        PrintError(NameOf(font.entry) +
                   " was copied, but must not be handed on without its owner's leave; '--restricted skip' "
                   "leaves it out");
}

constexpr size_t kNameWidth = 26;
constexpr size_t kFileWidth = 25;
constexpr size_t kRightsWidth = 25;

/// As a cell that leaves room for the others on a line of 80 characters.
std::string Cell(const std::string& text, size_t width) {
    const std::string printable = PrintableText(text);
    return CountCodePoints(printable) > width ? FirstCodePoints(printable, width - 1) + "\u2026" : printable;
}

std::vector<std::string> Row(const CollectedFont& font) {
    const bool isCopied = font.outcome == Outcome::kCopied;
    return {Cell(NameOf(font.entry), kNameWidth),
            Cell(isCopied ? font.entry.value(manifest::kFile, "") : "not collected", kFileWidth),
            Cell(font.entry.value(manifest::kRights, ""), kRightsWidth)};
}

void PrintCollection(const CollectTarget& target, const Collection& collection) {
    std::vector<std::vector<std::string>> rows{{"FONT", "FILE", "RIGHTS"}};
    for (const CollectedFont& font : collection.fonts)
        rows.push_back(Row(font));
    for (const std::string& name : target.MissingNames())
        rows.push_back({Cell(name, kNameWidth), "missing"});
    PrintTable(rows);
    PrintLine(fmt::format("{} of {} collected to {}", collection.copied,
                          target.ids.size() + target.MissingNames().size(), target.folder));
}

void PrintAsJSON(const CollectTarget& target, const Collection& collection) {
    json fonts = json::array();
    for (const CollectedFont& font : collection.fonts)
        fonts.push_back(font.entry);
    const json line{{"folder", target.folder},
                    {"collected", collection.copied},
                    {"total", target.ids.size() + target.MissingNames().size()},
                    {manifest::kFonts, fonts},
                    {manifest::kMissing, target.MissingNames()}};
    PrintJson(line.dump(-1, ' ', false, json::error_handler_t::replace));
}

/// Copies into the folder and writes the manifest; an error line for what cannot be done.
Collection CollectIn(const CollectTarget& target, const json& fonts, const CollectOptions& options) {
    Collection collection;
    if (const auto error = platform::MakeFolders(target.folder)) {
        PrintError(platform::WriteFailureText(target.folder, error));
        collection.Note(exit_status::kFailed);
        return collection;
    }
    pellwick::FontCollector collector(target.folder, options.leavesOutRestricted
                                                         ? pellwick::RestrictedFonts::kLeaveOut
                                                         : pellwick::RestrictedFonts::kCopy);
    Copy(target, fonts, collector, collection);
    for (const auto& [document, missing] : target.missingFonts)
        collector.SetMissing(document, missing);
    if (const auto error = collector.Finish()) {
        PrintError(platform::WriteFailureText(collector.ManifestPath(), error));
        collection.Note(exit_status::kFailed);
    }
    return collection;
}

int Collect(const CollectTarget& target, const CollectOptions& options) {
    json fonts;
    if (const int status = AskFontManager(target, fonts))
        return status;
    Collection collection = CollectIn(target, fonts, options);
    if (!target.MissingNames().empty())
        collection.Note(exit_status::kFontsMissing);
    for (const CollectedFont& font : collection.fonts)
        Warn(font);
    if (options.json)
        PrintAsJSON(target, collection);
    else
        PrintCollection(target, collection);
    return collection.status;
}

}  // namespace

int RunCollect(const HostOptions& host, const CollectOptions& options) {
    if (options.folder.empty() && !options.besideDocuments) {
        PrintError("name a folder with --to, or give --document-fonts");
        return exit_status::kWrongUsage;
    }
    const std::vector<std::string> paths = FindDocuments(options.files);
    int status = paths.size() == options.files.size() ? exit_status::kDone : exit_status::kFailed;
    if (paths.empty())
        return status;
    platform::CatchInterrupts();
    HostSession session;
    if (const int startStatus = session.Start(host))
        return startStatus;
    CollectPlan plan(options);
    status = Worse(status, plan.Read(session.Core(), paths));
    for (const CollectTarget& target : plan.Targets()) {
        if (platform::WasInterrupted())
            return exit_status::kFailed;
        status = Worse(status, Collect(target, options));
    }
    return status;
}
