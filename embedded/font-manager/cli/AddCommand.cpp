// add.
#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "StringConversion.h"
#include "cli/PellwickWords.h"
#include "cli/Progress.h"
#include "common/Protocol.h"
#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/FontTable.h"
#include "platform/Utf8Path.h"

namespace pellwick::cli {
namespace {

namespace fs = std::filesystem;

struct FoundFile {
    std::string path;
    bool isNamed;  ///< by the user, not found in a folder
};

struct AddResult {
    Json added = Json::array();
    Json known = Json::array();
    Json failures = Json::array();
    Json leftOut = Json::array();  ///< links in folders that are not followed
    Json unseen = Json::array();   ///< what was added, of kinds that this system shows to no program
    int skipped = 0;               ///< files in folders that are not fonts
};

void Note(Json& list, const std::string& path, const std::string& reason) {
    list.push_back({{"path", path}, {"reason", reason}});
}

bool IsFolder(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(platform::Utf8Path(path), ignored);
}

/// The paths of what stands in the folder, in the order of the names.
std::vector<std::string> EntriesOf(const std::string& folder, AddResult& result) {
    std::vector<std::string> entries;
    std::error_code failure;
    for (fs::directory_iterator entry(platform::Utf8Path(folder), failure);
         !failure && entry != fs::directory_iterator(); entry.increment(failure))
        entries.push_back(platform::Utf8Text(entry->path()));
    if (failure)
        Note(result.failures, folder, "the folder cannot be read: " + platform::SystemErrorText(failure));
    std::sort(entries.begin(), entries.end());
    return entries;
}

/// Every file in the folder and those below it. Links to files are followed; those to folders may lead anywhere, in a
/// circle as well.
void FindFilesIn(const std::string& folder, std::vector<FoundFile>& files, AddResult& result) {
    for (const std::string& path : EntriesOf(folder, result)) {
        if (platform::WasInterrupted())
            return;
        if (platform::IsExistingFile(path))
            files.push_back({path, false});
        else if (platform::IsLink(path))
            Note(result.leftOut, path,
                 IsFolder(path) ? "a link to a folder; name it to add what is in that"
                                : "a link that leads to no file");
        else if (IsFolder(path))
            FindFilesIn(path, files, result);
    }
}

std::vector<FoundFile> FindFiles(const std::vector<std::string>& paths, AddResult& result) {
    std::vector<FoundFile> files;
    for (const std::string& path : paths) {
        const std::string start = platform::AbsolutePath(path);
        if (IsFolder(start))
            FindFilesIn(start, files, result);
        else
            files.push_back({start, true});
    }
    return files;
}

/// Fonts come with licences, read-me files and forms for the web; what is in a folder and is not a font to use
/// is left alone.
bool IsOfNoConcern(const FoundFile& file, ErrorCode code) {
    return !file.isNamed && code == error_codes::GFontToolResults::kNotAFontFile;
}

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
    const std::string extension = platform::Utf8Text(platform::Utf8Path(file.path).extension());
    const std::string unseen = platform::WhyNeverShown(AsciiLowerCase(extension));
    if (!unseen.empty())
        Note(result.unseen, file.path, unseen);
    Json& list = BoolMember(answer, member::kAlreadyKnown) ? result.known : result.added;
    for (const Json& font : ArrayMember(answer, member::kFonts))
        list.push_back(font);
}

/// How many of the files it came to before the user had enough.
size_t AddFiles(AgentSession& session, const std::vector<FoundFile>& files, const std::string& workgroup,
                AddResult& result) {
    Progress progress(files.size(), "files");
    size_t count = 0;
    for (; count < files.size() && !platform::WasInterrupted(); ++count) {
        AddFile(session, files[count], workgroup, result);
        progress.Advance();
    }
    return count;
}

void PrintAddResult(const AddResult& result) {
    for (const Json& font : result.added)
        PrintLine("added " + StringMember(font, kGS_PostScriptNameKey));
    for (const Json& each : result.leftOut)
        PrintLine("left out " + StringMember(each, "path") + ": " + StringMember(each, "reason"));
    for (const Json& each : result.unseen)
        PrintLine("never seen " + StringMember(each, "path") + ": " + StringMember(each, "reason"));
    if (!result.known.empty())
        PrintLine(std::to_string(result.known.size()) + " known already");
    if (result.skipped != 0)
        PrintLine(std::to_string(result.skipped) + " other files left alone");
}

void Report(const AgentSession& session, const AddResult& result) {
    if (session.PrintsJson())
        PrintJson({{"added", result.added},
                   {"alreadyKnown", result.known},
                   {"failed", result.failures},
                   {"leftOut", result.leftOut},
                   {"neverSeen", result.unseen},
                   {"skipped", result.skipped}});
    else
        PrintAddResult(result);
    for (const Json& failure : result.failures)
        PrintError(StringMember(failure, "path") + ": " + StringMember(failure, "reason"));
}

ExitStatus AddFonts(AgentSession& session, const std::vector<std::string>& paths,
                    const std::string& workgroup) {
    platform::CatchInterrupts();
    AddResult result;
    const std::vector<FoundFile> files = FindFiles(paths, result);
    session.StartAgentIfNeeded();
    const size_t count = AddFiles(session, files, workgroup, result);
    Report(session, result);
    if (platform::WasInterrupted())
        throw Failure(kExit_CouldNot, "stopped after " + std::to_string(count) + " of " +
                                          std::to_string(files.size()) +
                                          " files; what was added stays, and the same command goes on");
    if (result.added.empty() && result.known.empty() && result.failures.empty())
        throw Failure(kExit_CouldNot,
                      "there are no fonts in what was given; name font files or folders of them");
    return result.failures.empty() ? kExit_Done : kExit_CouldNot;
}

}  // namespace

void DescribeAddCommand(CLI::App& app, Arguments& arguments, Action& chosen) {
    auto* add = AddCommand(
        app, chosen, "add", "Add font files, or folders of them",
        [&](AgentSession& session) { return AddFonts(session, arguments.words, arguments.workgroup); });
    command_line::AddTexts(*add, "PATH", arguments.words, "Files and folders")->required();
    command_line::AddText(*add, "--workgroup", arguments.workgroup, "Where to put the fonts");
}

}  // namespace pellwick::cli
