#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "FontRecordKeys.h"
#include "FoundFonts.h"
#include "HostSession.h"
#include "IdleLoop.h"
#include "MissingFonts.h"
#include "OpenedDocument.h"
#include "Output.h"
#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/FontTable.h"
#include "platform/Utf8Path.h"

namespace {

using nlohmann::json;

int64_t StateOf(const json& font) {
    return font.value(kGS_ActivationStateKey, int64_t{kFontActivationState_Unknown});
}

bool IsActive(const json& font) {
    return FontActivationStateCountsAsActive(StateOf(font)) != 0;
}

/// What opening the document did for the font that matched, by its record from before and the one now.
std::string OutcomeText(const json& before, const json& now, bool isVisible) {
    if (!IsActive(now))
        return "not activated";
    if (!IsActive(before))
        return isVisible ? "activated" : "activated, not seen yet";
    switch (StateOf(before)) {
        case kFontActivationState_SystemFont:
            return "the system's";
        case kFontActivationState_ActivatedByUser:
            return "active (user)";
        default:
            return "in use already";
    }
}

/// Family and style, or the PostScript name where a font has neither.
std::string NameForPeople(const json& font) {
    const std::string family = font.value(kGS_FamilyKey, "");
    const std::string style = font.value(kGS_StyleKey, "");
    if (family.empty())
        return font.value(kGS_PostScriptNameKey, "?");
    return style.empty() ? family : family + ", " + style;
}

std::string ReplacementsText(const json& font) {
    const std::vector<json> replacements = ReplacementsOf(font);
    if (replacements.empty())
        return "nothing comes near";
    const std::string best = "perhaps " + replacements.front().value(kGS_PostScriptNameKey, "?");
    return replacements.size() == 1 ? best : fmt::format("{} or {} more", best, replacements.size() - 1);
}

/// Why a font that has another name was taken, what others of its name are active, and what could be taken for those
/// that are missing.
void PrintReasons(const OpenedDocument& document) {
    for (const json& font : document.matched) {
        for (const char* remark : {kGS_ReasonKey, kGS_ConflictKey}) {
            if (font.contains(remark))
                PrintLine("  " + font.value(kGS_PostScriptNameKey, "?") + ": " + font.value(remark, ""));
        }
    }
    for (const json& font : document.unmatched) {
        const std::string where = font.value(kGS_WhereKey, "");
        if (!where.empty() && where != "text")  // which tells nobody where to look
            PrintLine("  " + font.value(kGS_PostScriptNameKey, "?") + ": used in " + where);
        for (const json& each : ReplacementsOf(font))
            PrintLine("  " + font.value(kGS_PostScriptNameKey, "?") + ": " +
                      each.value(kGS_PostScriptNameKey, "?") + ", " + each.value(kGS_ReasonKey, "?"));
    }
}

void PrintFonts(const OpenedDocument& document, bool showsPaths) {
    PrintLine(document.path);
    if (document.matched.empty() && document.unmatched.empty()) {
        fmt::print("  no fonts\n");
        return;
    }
    const platform::VisibleFonts visible = platform::Current<platform::FontTable>().Visible();
    std::vector<std::vector<std::string>> rows{{"  FONT", "STATE", showsPaths ? "FILE" : "BY"}};
    size_t active = 0;
    for (const json& font : document.matched) {
        const std::string file = font.value(kGS_PathKey, "");
        const json before = font.value(kGS_MatchedFontKey, json::object());
        const bool isVisible = visible.Offers(file, before.value(kGS_PostScriptNameKey, ""));
        active += IsActive(font) ? 1 : 0;
        rows.push_back({"  " + font.value(kGS_PostScriptNameKey, "?"), OutcomeText(before, font, isVisible),
                        showsPaths ? file : NameForPeople(before)});
    }
    for (const json& font : document.unmatched)
        rows.push_back({"  " + font.value(kGS_PostScriptNameKey, "?"), "missing", ReplacementsText(font)});
    PrintTable(rows);
    PrintReasons(document);
    fmt::print("  {} of {} active\n", active, document.matched.size() + document.unmatched.size());
}

void PrintAsJSON(const OpenedDocument& document, const std::string& problem) {
    json line{{"file", document.path},
              {"code", document.code},
              {"codeName", ResultName(document.code)},
              {"numFontsActivated", document.numFontsActivated},
              {"matched", document.matched},
              {"unmatched", document.unmatched}};
    if (!problem.empty())
        line["error"] = problem;
    PrintJson(line.dump(-1, ' ', false, json::error_handler_t::replace));
}

/// Shows an opened document; what it means for the program's exit status.
int Show(const OpenedDocument& document, const OpenOptions& options) {
    const std::string problem = WhyNoFontsAreKnown(document);
    if (options.json)
        PrintAsJSON(document, problem);
    else if (problem.empty())
        PrintFonts(document, options.showsPaths);
    if (!problem.empty()) {
        PrintError(document.path + " was opened, but " + problem);
        return exit_status::kFailed;
    }
    return document.unmatched.empty() ? exit_status::kDone : exit_status::kFontsMissing;
}

void KeepOpen(const OpenOptions& options) {
    if (options.closeAtOnce)
        return;
    std::fflush(stdout);
    const Closing closing(options.time, "close");
    while (closing.Wait(std::chrono::hours(1))) {
    }
}

}  // namespace

int RunOpen(const HostOptions& host, const OpenOptions& options) {
    const std::vector<std::string> paths = FindDocuments(options.files);
    int status = paths.size() == options.files.size() ? exit_status::kDone : exit_status::kFailed;
    if (paths.empty() && options.fontNames.empty())
        return status;

    platform::CatchInterrupts();
    HostSession session;
    if (const int startStatus = session.Start(host))
        return startStatus;
    const auto show = [&](OpenedDocument document) {
        OfferReplacements(session.Core(), document);
        const int documentStatus = Show(document, options);
        if (status != exit_status::kFailed && documentStatus != exit_status::kDone)
            status = documentStatus;
    };
    {
        FontFinder finder;
        ProgressBar progress(paths.size());
        for (const std::string& path : paths) {
            if (platform::WasInterrupted())
                break;
            progress.Advance(platform::Utf8Text(platform::Utf8Path(path).filename()));
            const json fonts = options.searchesBytes ? json() : finder.FindForCore(path);
            OpenedDocument document = OpenDocument(session.Core(), path, fonts);
            progress.Hide();
            show(std::move(document));
        }
    }
    if (!options.fontNames.empty())
        show(OpenFonts(session.Core(), options.fontNames));
    KeepOpen(options);
    // Ending the session closes what was not opened for a path, too.
    for (const std::string& path : paths)
        session.Core().HandleCloseDocument(path.c_str(), "");
    return status;
}
