// doctor.
#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "FontRecordKeys.h"
#include "cli/DocumentNames.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "cli/Progress.h"
#include "common/FontManagerLimits.h"
#include "common/Locations.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Utf8Path.h"

namespace pellwick::cli {
namespace {

// How something stands.
constexpr char kOk[] = "ok";
constexpr char kWarning[] = "warning";
constexpr char kWrong[] = "wrong";

/// What was looked at, in the order in which it is told.
class Findings {
public:
    /// `mend`: what to do about it; empty where there is nothing to do.
    void Add(const char* state, const std::string& about, const std::string& text,
             const std::string& mend = {}) {
        mAll.push_back({{"state", state}, {"about", about}, {"text", text}, {"mend", mend}});
        mIsAnythingWrong = mIsAnythingWrong || state == std::string_view(kWrong);
    }
    void Print() const {
        for (const Json& each : mAll) {
            const std::string mend = StringMember(each, "mend");
            std::string state = StringMember(each, "state");
            state.resize(sizeof kWarning, ' ');
            PrintLine(state + StringMember(each, "about") + ": " + StringMember(each, "text") +
                      (mend.empty() ? "" : "; " + mend));
        }
    }
    const Json& All() const { return mAll; }
    ExitStatus Status() const { return mIsAnythingWrong ? kExit_CouldNot : kExit_Done; }

private:
    Json mAll = Json::array();
    bool mIsAnythingWrong = false;
};

void AddProblems(const Json& problems, const char* about, Findings& findings) {
    for (const Json& problem : problems)
        findings.Add(kWrong, about, problem.get<std::string>());
}

void ExamineAgent(const Json& status, Findings& findings) {
    findings.Add(kOk, "agent",
                 "process " + std::to_string(IntegerMember(status, member::kProcess)) + ", listens at " +
                     Locations::OfThisUser().AgentAddress());
    if (BoolMember(status, member::kLoggedIn))
        findings.Add(kOk, "user", StringMember(status, member::kUserName) + " is logged in");
    else
        findings.Add(kWarning, "user", "nobody is logged in, so no fonts are activated",
                     PastedCommand("login NAME"));
    findings.Add(kOk, "hosts", std::to_string(IntegerMember(status, member::kHosts)) + " hold fonts active");
}

/// Plug-ins start the agent that the file names.
void ExamineLaunchInformation(Findings& findings) {
    constexpr uint64_t kLargest = 65536;
    const std::string path = Locations::OfThisUser().launchInfoPath;
    std::string text;
    if (platform::ReadWholeFile(path, text, kLargest))
        findings.Add(kWarning, "launch-info",
                     "plug-ins cannot start the agent by themselves: there is no " + path,
                     PastedCommand("launch-info"));
    else if (text.find("pellwick.path=" + ProgramPath() + "\n") == std::string::npos)
        findings.Add(kWarning, "launch-info", path + " names another agent than this one",
                     PastedCommand("launch-info"));
    else
        findings.Add(kOk, "launch-info", path);
}

/// Last: an agent that was started for this may still be reading them.
void ExamineSystemFonts(AgentSession& session, Findings& findings) {
    const Json status = session.Call(method::kGetStatus, Json::object());
    const long long count = IntegerMember(status, member::kSystemFonts);
    if (count == 0)
        findings.Add(kWarning, "system fonts", "none are known; perhaps the system does not tell",
                     "see the log");
    else
        findings.Add(kOk, "system fonts", std::to_string(count));
}

/// Programs in sandboxes see the user's fonts in one place, wherever XDG_DATA_HOME leads.
void ExamineSandboxes(const std::string& linkFolder, Findings& findings) {
    const std::string home = platform::Current<platform::Folders>().PathOf(platform::KnownFolder::kHome);
    const auto inHome = [&](const char* path) { return home + platform::kPathSeparator + path; };
    for (const auto& [sandbox, folder] : {std::pair{"flatpak", ".var/app"}, {"snap", "snap"}}) {
        std::error_code ignored;
        if (!std::filesystem::is_directory(platform::Utf8Path(inHome(folder)), ignored))
            continue;
        if (linkFolder.starts_with(inHome(".local/share/fonts")))
            findings.Add(kOk, sandbox, "its programs see active fonts when they start");
        else
            findings.Add(kWarning, sandbox,
                         "its programs do not see active fonts, which are in " + linkFolder,
                         "let XDG_DATA_HOME be ~/.local/share, and start the agent again");
    }
}

void ExamineCopies(long long copies, Findings& findings) {
    if (copies > 0)
        findings.Add(kOk, "copies",
                     std::to_string(copies) +
                         " files are installed on the system as well, where they are always active");
}

void ExamineConflicts(AgentSession& session, Findings& findings) {
    const Json rivals = session.Call(method::kListRivals, {{member::kAfter, ""}});
    if (ArrayMember(rivals, member::kFonts).empty())
        findings.Add(kOk, "conflicts", "no two fonts of one name differ");
    else
        findings.Add(kWarning, "conflicts", "fonts of one name differ", PastedCommand("conflicts"));
}

/// How many files there were.
long long ExamineFiles(AgentSession& session, long long expected, Findings& findings) {
    Progress progress(static_cast<size_t>(expected), "files");
    long long checked = 0;
    for (Json after = 0;;) {
        const Json page = session.Call(method::kCheckFiles, {{member::kAfter, after}});
        const long long count = IntegerMember(page, member::kChecked);
        if (count == 0)
            return checked;
        after = page[member::kAfter];
        checked += count;
        progress.Advance(static_cast<size_t>(count));
        AddProblems(ArrayMember(page, member::kProblems), "files", findings);
    }
}

ExitStatus ExamineAll(AgentSession& session) {
    session.StartAgentIfNeeded();
    Findings findings;
    ExamineAgent(session.Call(method::kGetStatus, Json::object()), findings);
    ExamineLaunchInformation(findings);
    const Json records = session.Call(method::kCheckRecords, Json::object());
    const Json& problems = ArrayMember(records, member::kProblems);
    AddProblems(problems, "records", findings);
    if (problems.empty())
        findings.Add(kOk, "records", "the database, links and leases are as they should be");
    ExamineCopies(IntegerMember(records, member::kCopies), findings);
    ExamineConflicts(session, findings);
    const long long files = ExamineFiles(session, IntegerMember(records, member::kFiles), findings);
    findings.Add(kOk, "files",
                 std::to_string(IntegerMember(records, member::kFonts)) + " fonts in " +
                     std::to_string(files) + " files were compared with their checksums");
    ExamineSystemFonts(session, findings);
    ExamineSandboxes(Locations::OfThisUser().linkFolder, findings);
    if (session.PrintsJson())
        PrintJson({{"fonts", records[member::kFonts]}, {"files", files}, {"findings", findings.All()}});
    else
        findings.Print();
    return findings.Status();
}

/// Why the font is active, or is not.
void ExamineFont(const Json& font, bool isVisible, Findings& findings) {
    const std::string name = StringMember(font, kGS_PostScriptNameKey) + " (" +
                             std::to_string(IntegerMember(font, kGS_DatabaseIDKey)) + ")";
    const std::string seen = isVisible ? ", and programs see it" : ", but programs do not see it";
    const char* state = isVisible ? kOk : kWrong;
    const std::string mend = isVisible ? "" : "start the program again, or see " + PastedCommand("doctor");
    switch (IntegerMember(font, kGS_ActivationStateKey)) {
        case kFontActivationState_SystemFont:
            return findings.Add(state, name, "the system has it at " + StringMember(font, kGS_PathKey) + seen,
                                mend);
        case kFontActivationState_ActivatedByUser:
            return findings.Add(state, name, "active, as you chose" + seen, mend);
        case kFontActivationState_ActivatedByPlugin:
            return findings.Add(state, name, "active, since open documents need it" + seen, mend);
        case kFontActivationState_Missing:
            return findings.Add(kWrong, name, "its file is gone from the vault",
                                "add " + StringMember(font, kGS_OutlineFileNameKey) + " again");
        default:
            return findings.Add(
                kOk, name, "not active: no open document needs it, and you did not activate it",
                PastedCommand("activate " + std::to_string(IntegerMember(font, kGS_DatabaseIDKey))));
    }
}

/// The IDs of those that the system offers to programs. For each page of the list the system looks at all its
/// fonts, so that only pages that one of these may be in are asked for.
std::set<long long> VisibleAmong(AgentSession& session, const Json& fonts) {
    std::set<long long> ids;
    for (const Json& font : fonts)
        ids.insert(IntegerMember(font, kGS_DatabaseIDKey));
    std::set<long long> visible;
    for (auto next = ids.begin(); next != ids.end();) {
        const Json page =
            session.Call(method::kListFonts, {{member::kAfter, *next - 1}, {member::kVisible, true}});
        const Json& listed = ArrayMember(page, member::kFonts);
        if (listed.empty())
            break;
        for (const Json& font : listed) {
            if (BoolMember(font, member::kVisible))
                visible.insert(IntegerMember(font, kGS_DatabaseIDKey));
        }
        next = ids.upper_bound(IntegerMember(listed.back(), kGS_DatabaseIDKey));
    }
    return visible;
}

void ExamineFonts(AgentSession& session, const Json& fonts, Findings& findings) {
    const std::set<long long> visible = VisibleAmong(session, fonts);
    for (const Json& font : fonts)
        ExamineFont(font, visible.count(IntegerMember(font, kGS_DatabaseIDKey)) != 0, findings);
}

/// "perhaps Sample-Bold, same family, Bold instead of Black".
std::string BestReplacementText(const Json& replacements) {
    for (const Json& font : replacements) {
        if (IntegerMember(font, kGS_RankKey) == 1)
            return "perhaps " + StringMember(font, kGS_PostScriptNameKey) + ", " +
                   StringMember(font, kGS_ReasonKey);
    }
    return "nothing comes near";
}

std::string RequestedName(const Json& request) {
    return request.is_string() ? request.get<std::string>() : StringMember(request, kGS_PostScriptNameKey);
}

/// What the document would be given if it were opened now.
void ExamineDocument(AgentSession& session, const std::string& path, Findings& findings) {
    const Json requests = FontsOfDocument(path);
    if (requests.empty())
        return findings.Add(kOk, path, "it names no fonts");
    Json matches = Json::array();
    for (size_t first = 0; first < requests.size(); first += kMaxFontsPerRequest) {
        const auto begin = requests.begin() + static_cast<std::ptrdiff_t>(first);
        const auto count = std::min(requests.size() - first, kMaxFontsPerRequest);
        const Json part(std::vector<Json>(begin, begin + static_cast<std::ptrdiff_t>(count)));
        const Json answer =
            session.Call(method::kMatchFonts, {{member::kFonts, part}, {member::kDocument, path}});
        for (const Json& font : ArrayMember(answer, member::kReported))
            matches.push_back(font[kGS_MatchedFontKey]);
        const Json& unmatched = ArrayMember(answer, member::kUnmatched);
        const Json& replacements = ArrayMember(answer, member::kReplacements);
        for (size_t index = 0; index < unmatched.size(); ++index)
            findings.Add(kWrong, RequestedName(part[unmatched[index].get<size_t>()]),
                         "missing; " + (index < replacements.size() ? BestReplacementText(replacements[index])
                                                                    : "nothing was looked for"),
                         PastedCommand("add PATH"));
    }
    ExamineFonts(session, matches, findings);
}

/// Words that are paths of files are documents.
ExitStatus ExamineNamed(AgentSession& session, const std::vector<std::string>& words) {
    session.StartAgentIfNeeded();
    Findings findings;
    std::vector<std::string> names;
    for (const std::string& word : words) {
        if (platform::IsExistingFile(word))
            ExamineDocument(session, platform::AbsolutePath(word), findings);
        else
            names.push_back(word);
    }
    bool isComplete = true;
    if (!names.empty())
        ExamineFonts(session, FindFonts(session, names, isComplete), findings);
    if (session.PrintsJson())
        PrintJson({{"findings", findings.All()}});
    else
        findings.Print();
    return isComplete ? findings.Status() : kExit_CouldNot;
}

}  // namespace

void DescribeDoctorCommand(CLI::App& app, Arguments& arguments, Action& chosen) {
    auto* doctor = AddCommand(app, chosen, "doctor",
                              "Check everything, and put right what can be; or say why fonts, or those of "
                              "documents, are active or not",
                              [&](AgentSession& session) {
                                  return arguments.words.empty() ? ExamineAll(session)
                                                                 : ExamineNamed(session, arguments.words);
                              });
    exact_words::AddTexts(*doctor, "FONT", arguments.words, std::string(kFontNameHelp) + ", or a document");
}

}  // namespace pellwick::cli
