// remove, list, activate, deactivate, conflicts, prefer.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "common/Protocol.h"
#include "platform/Environment.h"

namespace pellwick::cli {

using command_line::AddText;
using command_line::AddTexts;

namespace {

/// What removing the font takes with it: every face of its file.
Json WouldBeRemoved(AgentSession& session, const Json& font) {
    const Json answer =
        session.Call(method::kRemoveFonts,
                     {{member::kFonts, Json::array({font[kGS_DatabaseIDKey]})}, {member::kDryRun, true}});
    return ArrayMember(answer, member::kRemoved);
}

/// "A, B, C and 5 more".
std::string SomeNames(const Json& fonts) {
    constexpr size_t kMost = 3;
    std::string names;
    for (size_t index = 0; index < std::min(fonts.size(), kMost); ++index)
        names += (index == 0 ? "" : ", ") + StringMember(fonts[index], kGS_PostScriptNameKey);
    return fonts.size() > kMost ? names + " and " + std::to_string(fonts.size() - kMost) + " more" : names;
}

/// Throws Failure when the user does not want it, or cannot be asked.
void ConfirmRemoval(const Json& faces) {
    const std::string what = std::to_string(faces.size()) + " fonts: " + SomeNames(faces);
    if (!platform::IsTerminal(platform::StandardStream::kInput))
        throw Failure(kExit_CouldNot, "this removes " + what + "; to have that done, add --yes");
    std::fputs(PrintableText("Remove " + what + "? [y/N] ").c_str(), stderr);
    std::string line;
    if (!std::getline(std::cin, line) || (line != "y" && line != "Y" && line != "yes"))
        throw Failure(kExit_CouldNot, "nothing was removed");
}

ExitStatus RemoveFonts(AgentSession& session, const std::vector<std::string>& names, bool isConfirmed) {
    session.StartAgentIfNeeded();
    bool isComplete = false;
    const Json found = FindFonts(session, names, isComplete);
    const Json own = WithoutSystemFonts(found, "and stays where it is");
    isComplete = isComplete && (found.empty() || !own.empty());
    Json left = IDsOf(own);
    const Json fonts = own.size() == 1 && !isConfirmed ? WouldBeRemoved(session, own.front()) : own;
    if (fonts.size() > 1 && !isConfirmed)
        ConfirmRemoval(fonts);
    Json removed = Json::array();
    while (!left.empty()) {
        const Json answer = session.Call(method::kRemoveFonts, {{member::kFonts, left}});
        const Json& page = ArrayMember(answer, member::kRemoved);
        if (!session.PrintsJson())
            PrintFonts(page, "removed");  // as it happens: the rest may fail
        else
            removed.insert(removed.end(), page.begin(), page.end());
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

/// In what the font differs from the one that documents get; empty where that is not known.
std::string DifferenceText(const Json& font, const Json& chosen) {
    const auto differ = [&](const char* key) { return StringMember(font, key) != StringMember(chosen, key); };
    if (StringMember(font, kGS_GlyphscanChecksumKey).empty() ||
        StringMember(chosen, kGS_GlyphscanChecksumKey).empty() || BoolMember(font, member::kIsChosen))
        return {};
    if (differ(kGS_GlyphscanChecksumKey))
        return differ(kGS_KerningChecksumKey) ? ", other outlines and widths"
                                              : ", other outlines, same widths";
    return differ(kGS_KerningChecksumKey) ? ", same outlines, other widths" : ", same outlines and widths";
}

void PrintRival(const Json& font, const Json& chosen) {
    PrintLine(
        std::string(BoolMember(font, member::kIsChosen) ? "  * " : "    ") +
        std::to_string(IntegerMember(font, kGS_DatabaseIDKey)) + "  " +
        (StringMember(font, kGS_VersionKey).empty() ? "no version" : StringMember(font, kGS_VersionKey)) +
        " (" + StringMember(font, kGS_FontKindKey) + ")" +
        (BoolMember(font, member::kIsPreferred) ? ", preferred" : "") + DifferenceText(font, chosen) + ", " +
        (IntegerMember(font, kGS_WorkgroupTypeKey) == kWorkgroupType_System
             ? StringMember(font, kGS_PathKey)
             : "added as " + StringMember(font, kGS_OutlineFileNameKey)));
}

/// Fonts of one name stand together.
void PrintRivals(const Json& fonts) {
    const auto nameOf = [](const Json& font) { return StringMember(font, kGS_PostScriptNameKey); };
    for (auto first = fonts.begin(); first != fonts.end();) {
        const auto end = std::find_if(first, fonts.end(),
                                      [&](const Json& font) { return nameOf(font) != nameOf(*first); });
        const auto chosen =
            std::find_if(first, end, [](const Json& font) { return BoolMember(font, member::kIsChosen); });
        PrintLine(nameOf(*first));
        for (; first != end; ++first)
            PrintRival(*first, chosen != end ? *chosen : Json());
    }
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
            name = StringMember(font, kGS_PostScriptNameKey);
            all.push_back(font);
        }
        if (!session.PrintsJson())
            PrintRivals(fonts);
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
    const auto withNames = [&](const char* name, const char* description, auto run) {
        auto* command = AddCommand(app, chosen, name, description, [&arguments, run](AgentSession& session) {
            return run(session, arguments.words);
        });
        AddTexts(*command, "NAME", arguments.words, kFontNameHelp)->required();
        return command;
    };
    auto* remove = withNames("remove", "Remove fonts and their files from the font manager",
                             [&arguments](AgentSession& session, const std::vector<std::string>& names) {
                                 return RemoveFonts(session, names, arguments.isConfirmed);
                             });
    remove->add_flag("--yes", arguments.isConfirmed, "Do not ask, however many they are");
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
