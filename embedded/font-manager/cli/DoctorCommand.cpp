// doctor.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "cli/Findings.h"
#include "cli/FontDoctor.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "cli/Progress.h"
#include "common/Locations.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Utf8Path.h"

namespace pellwick::cli {
namespace {

void AddProblems(const Json& problems, const char* about, Findings& findings) {
    for (const Json& problem : problems)
        findings.Add(kWrong, about, problem.get<std::string>());
}

void WarnOfLogOut(const Json& status, Findings& findings) {
    if (!BoolMember(status, member::kLoggedIn))
        findings.Add(kWarning, "user", "nobody is logged in, so no fonts are activated",
                     PastedCommand("login NAME"));
}

void ExamineAgent(const Json& status, Findings& findings) {
    findings.Add(kOk, "agent",
                 "process " + std::to_string(IntegerMember(status, member::kProcess)) + ", listens at " +
                     Locations::OfThisUser().AgentAddress());
    if (BoolMember(status, member::kLoggedIn))
        findings.Add(kOk, "user", StringMember(status, member::kUserName) + " is logged in");
    WarnOfLogOut(status, findings);
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

/// Words that are paths of files are documents.
ExitStatus ExamineNamed(AgentSession& session, const std::vector<std::string>& words) {
    session.StartAgentIfNeeded();
    Findings findings;
    WarnOfLogOut(session.Call(method::kGetStatus, Json::object()), findings);
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
    command_line::AddTexts(*doctor, "FONT", arguments.words, std::string(kFontNameHelp) + ", or a document");
}

}  // namespace pellwick::cli
