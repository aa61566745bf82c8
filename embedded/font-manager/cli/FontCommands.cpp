// add, remove, list, activate, deactivate.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "FontRecordKeys.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "cli/Progress.h"
#include "common/Protocol.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick::cli {

using exact_words::AddText;
using exact_words::AddTexts;

namespace {

namespace fs = std::filesystem;

struct FoundFile {
    std::string path;
    bool isNamed;  ///< by the user, not found in a folder
};

/// The file, or every file in the folder and those below it, in the order of their names.
void FindFiles(const std::string& path, std::vector<FoundFile>& files, Json& failures) {
    std::error_code failure;
    const fs::path start = platform::Utf8Path(platform::AbsolutePath(path));
    if (!fs::is_directory(start, failure)) {
        files.push_back({platform::Utf8Text(start), true});
        return;
    }
    const size_t first = files.size();
    fs::recursive_directory_iterator entry(start, fs::directory_options::skip_permission_denied, failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored))
            files.push_back({platform::Utf8Text(entry->path()), false});
    }
    if (failure)
        failures.push_back({{"path", path}, {"reason", platform::SystemErrorText(failure)}});
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(first), files.end(),
              [](const FoundFile& left, const FoundFile& right) { return left.path < right.path; });
}

/// Fonts come with licences, read-me files and forms for the web; what is in a folder and is no font to use
/// is left alone.
bool IsOfNoConcern(const FoundFile& file, ErrorCode code) {
    return !file.isNamed && code == error_codes::GFontToolResults::kNotAFontFile;
}

struct AddResult {
    Json added = Json::array();
    Json known = Json::array();
    Json failures = Json::array();
    int skipped = 0;  ///< files in folders that are no fonts
};

void AddFile(AgentSession& session, const FoundFile& file, const std::string& workgroup, AddResult& result) {
    Json answer;
    const ErrorCode code =
        session.Try(method::kAddFile, {{member::kPath, file.path}, {member::kWorkgroup, workgroup}}, answer);
    if (code != CoreErrorCodes::kSuccess) {
        const std::string reason = FailureText(code, answer);
        if (IsOfNoConcern(file, code))
            ++result.skipped;
        else
            result.failures.push_back({{"path", file.path}, {"reason", reason}});
        return;
    }
    Json& list = BoolMember(answer, member::kAlreadyKnown) ? result.known : result.added;
    for (const Json& font : ArrayMember(answer, member::kFonts))
        list.push_back(font);
}

void PrintAddResult(const AddResult& result) {
    for (const Json& font : result.added)
        PrintLine("added " + StringMember(font, kGS_PostScriptNameKey));
    if (!result.known.empty())
        PrintLine(std::to_string(result.known.size()) + " known already");
    if (result.skipped != 0)
        PrintLine(std::to_string(result.skipped) + " other files left alone");
}

ExitStatus AddFonts(AgentSession& session, const std::vector<std::string>& paths,
                    const std::string& workgroup) {
    AddResult result;
    std::vector<FoundFile> files;
    for (const std::string& path : paths)
        FindFiles(path, files, result.failures);
    session.StartAgentIfNeeded();
    {
        Progress progress(files.size(), "files");
        for (const FoundFile& file : files) {
            AddFile(session, file, workgroup, result);
            progress.Advance();
        }
    }
    if (session.PrintsJson())
        PrintJson({{"added", result.added},
                   {"alreadyKnown", result.known},
                   {"failed", result.failures},
                   {"skipped", result.skipped}});
    else
        PrintAddResult(result);
    for (const Json& failure : result.failures)
        PrintError(StringMember(failure, "path") + ": " + StringMember(failure, "reason"));
    if (result.added.empty() && result.known.empty() && result.failures.empty())
        throw Failure(kExit_CouldNot,
                      "there are no fonts in what was given; name font files or folders of them");
    return result.failures.empty() ? kExit_Done : kExit_CouldNot;
}

ExitStatus RemoveFonts(AgentSession& session, const std::vector<std::string>& names) {
    session.StartAgentIfNeeded();
    bool isComplete = false;
    const Json found = FindFonts(session, names, isComplete);
    const Json own = WithoutSystemFonts(found, "and stays where it is");
    isComplete = isComplete && (found.empty() || !own.empty());
    Json left = IDsOf(own);
    Json removed = Json::array();
    while (!left.empty()) {
        const Json answer = session.Call(method::kRemoveFonts, {{member::kFonts, left}});
        const Json& fonts = ArrayMember(answer, member::kRemoved);
        if (!session.PrintsJson())
            PrintFonts(fonts, "removed");  // as it happens: the rest may fail
        else
            removed.insert(removed.end(), fonts.begin(), fonts.end());
        left = ArrayMember(answer, member::kLeft);
    }
    if (session.PrintsJson())
        PrintJson({{"removed", removed}});
    return isComplete ? kExit_Done : kExit_CouldNot;
}

/// Those of the system are listed where they are asked for, in whatever way.
ExitStatus ListFonts(AgentSession& session, const FontFilter& filter) {
    session.StartAgentIfNeeded();
    Json source = Json::object();
    if (!filter.workgroup.empty())
        source[member::kWorkgroup] = filter.workgroup;
    else if (filter.isSystems || (filter.text + filter.family + filter.state).empty())
        source[member::kSystem] = filter.isSystems;
    const Json fonts = ListFontsBy(session, source, filter);
    if (session.PrintsJson())
        PrintJson({{"fonts", fonts}});
    return kExit_Done;
}

ExitStatus ActivateFonts(AgentSession& session, const std::vector<std::string>& names) {
    session.StartAgentIfNeeded();
    bool isComplete = false;
    const Json found = FindFonts(session, names, isComplete);
    const Json fonts = WithoutSystemFonts(found, "and always active");
    const Json failed = CallForFonts(session, method::kActivateForUser, fonts, member::kFailed);
    for (const Json& font : failed)
        PrintError("the file of " + StringMember(font, kGS_PostScriptNameKey) +
                   " is gone from the vault; add the font again");
    if (session.PrintsJson())
        PrintJson({{"fonts", fonts}, {"failed", failed}});
    else if (failed.empty())
        PrintFonts(fonts, "activated");
    return isComplete && failed.empty() ? kExit_Done : kExit_CouldNot;
}

/// The fonts that are not among the others.
Json Without(const Json& fonts, const Json& others) {
    std::set<long long> unwanted;
    for (const Json& font : others)
        unwanted.insert(IntegerMember(font, kGS_DatabaseIDKey));
    Json rest = Json::array();
    std::copy_if(fonts.begin(), fonts.end(), std::back_inserter(rest), [&](const Json& font) {
        return unwanted.count(IntegerMember(font, kGS_DatabaseIDKey)) == 0;
    });
    return rest;
}

ExitStatus DeactivateFonts(AgentSession& session, const std::vector<std::string>& names) {
    session.StartAgentIfNeeded();
    bool isComplete = false;
    const Json found = FindFonts(session, names, isComplete);
    const Json fonts = WithoutSystemFonts(found, "and always active");
    const Json stillActive = CallForFonts(session, method::kDeactivateForUser, fonts, member::kStillActive);
    if (session.PrintsJson())
        PrintJson({{"fonts", fonts}, {"stillActive", stillActive}});
    else
        PrintFonts(Without(fonts, stillActive), "deactivated");
    for (const Json& font : stillActive)
        PrintError(StringMember(font, kGS_PostScriptNameKey) + " stays active while open documents use it");
    return isComplete ? kExit_Done : kExit_CouldNot;
}

void PrintRival(const Json& font) {
    PrintLine(std::string(BoolMember(font, member::kIsChosen) ? "  * " : "    ") +
              std::to_string(IntegerMember(font, kGS_DatabaseIDKey)) + "  " +
              StringMember(font, kGS_VersionKey) + " (" + StringMember(font, kGS_FontKindKey) + ")" +
              (BoolMember(font, member::kIsPreferred) ? ", preferred" : "") + ", " +
              (IntegerMember(font, kGS_WorkgroupTypeKey) == kWorkgroupType_System
                   ? StringMember(font, kGS_PathKey)
                   : "added as " + StringMember(font, kGS_OutlineFileNameKey)));
}

/// Fonts of one name in files that differ.
ExitStatus ListConflicts(AgentSession& session) {
    session.StartAgentIfNeeded();
    Json all = Json::array();
    std::string name;
    for (;;) {
        const Json page = session.Call(method::kListRivals, {{member::kAfter, name}});
        const Json& fonts = ArrayMember(page, member::kFonts);
        if (fonts.empty())
            break;
        for (const Json& font : fonts) {
            if (session.PrintsJson()) {
                all.push_back(font);
            } else {
                if (StringMember(font, kGS_PostScriptNameKey) != name)
                    PrintLine(StringMember(font, kGS_PostScriptNameKey));
                PrintRival(font);
            }
            name = StringMember(font, kGS_PostScriptNameKey);
        }
    }
    if (session.PrintsJson())
        PrintJson({{"fonts", all}});
    else
        PrintLine(name.empty() ? "no two fonts of one name differ"
                               : "* is what documents are given; \"prefer\" and a number choose another");
    return kExit_Done;
}

ExitStatus PreferFont(AgentSession& session, const std::string& name, bool isForgotten) {
    session.StartAgentIfNeeded();
    bool isComplete = false;
    const Json fonts = FindFonts(session, {name}, isComplete);
    if (!isComplete)
        return kExit_CouldNot;
    if (fonts.size() > 1)
        throw Failure(kExit_CouldNot, std::to_string(fonts.size()) + " fonts are called \"" + name +
                                          "\"; give the number of one, see \"Pellwick conflicts\"");
    const Json& font = fonts.front();
    session.Call(method::kPreferFont,
                 {{member::kFont, font[kGS_DatabaseIDKey]}, {member::kOn, !isForgotten}});
    if (session.PrintsJson())
        PrintJson(font);
    else
        PrintFonts(Json::array({font}), isForgotten ? "no longer preferred:" : "preferred:");
    return kExit_Done;
}

}  // namespace

void DescribeFontCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    auto* add = AddCommand(
        app, chosen, "add", "Add font files, or folders of them",
        [&](AgentSession& session) { return AddFonts(session, arguments.words, arguments.workgroup); });
    AddTexts(*add, "PATH", arguments.words, "Files and folders")->required();
    AddText(*add, "--workgroup", arguments.workgroup, "Where to put the fonts");
    const auto withNames = [&](const char* name, const char* description, auto run) {
        auto* command = AddCommand(app, chosen, name, description, [&arguments, run](AgentSession& session) {
            return run(session, arguments.words);
        });
        AddTexts(*command, "NAME", arguments.words, kFontNameHelp)->required();
    };
    withNames("remove", "Remove fonts and their files from the font manager", RemoveFonts);
    withNames("activate", "Make fonts active until they are deactivated", ActivateFonts);
    withNames("deactivate", "End that", DeactivateFonts);
    AddCommand(app, chosen, "conflicts",
               "List fonts of one name that differ, and which of them documents get", ListConflicts);
    auto* prefer = AddCommand(
        app, chosen, "prefer", "Give documents this font of its name",
        [&](AgentSession& session) { return PreferFont(session, arguments.name, arguments.isForgotten); });
    AddText(*prefer, "FONT", arguments.name, kFontNameHelp)->required();
    prefer->add_flag("--forget", arguments.isForgotten, "No longer; the best by version goes again");
    FontFilter& filter = arguments.filter;
    auto* list = AddCommand(app, chosen, "list", "List the fonts, but for the system's",
                            [&](AgentSession& session) { return ListFonts(session, filter); });
    AddText(*list, "TEXT", filter.text, "Those with this in their name, the system's included");
    AddText(*list, "--family", filter.family, "Those of this family, the system's included");
    AddText(*list, "--workgroup", filter.workgroup, "Those in this workgroup");
    AddText(*list, "--state", filter.state, "Those in this state: active, in use, missing, system, or -")
        ->check(CLI::IsMember({"active", "in use", "missing", "system", "-"}));
    list->add_flag("--system", filter.isSystems, "The system's");
    list->add_flag("--visible", filter.isVisible, "Those that the system offers to programs now");
}

}  // namespace pellwick::cli
