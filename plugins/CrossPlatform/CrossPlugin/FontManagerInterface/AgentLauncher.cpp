#include "AgentLauncher.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string_view>
#include <vector>

#include "StringConversion.h"
#include "TraceLog.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "platform/Processes.h"

namespace {

constexpr char kLaunchInfoFileName[] = "com.vantorix.Pellwick-LaunchInfo.conf";
constexpr uint64_t kLaunchInfoSizeLimit = 1 << 20;
constexpr std::chrono::milliseconds kIdleWaitLimit{2000};

std::string LaunchInfoPath(const std::string& folder) {
    return folder + platform::kPathSeparator + "Vantorix" + platform::kPathSeparator + kLaunchInfoFileName;
}

/// A value with a zero in it would name one file here and another one to the system; a path that depends on
/// the working folder names whatever somebody has put there.
bool NamesAProgram(const std::string& path, const std::string& arguments) {
    return platform::IsFullPath(path) && arguments.find('\0') == std::string::npos &&
           platform::IsExistingFile(path);
}

bool IsTrusted(const std::string& fault) {
    if (!fault.empty())
        LogMessage(0, "The launch info file for all users is left alone, since %s", fault.c_str());
    return fault.empty();
}

/// Every user of the machine may make folders among those for all users, and would choose the program that other people's
/// hosts start.
bool IsTrusted(AgentLauncher::LaunchInfo& info) {
    std::string fault;
    info.program.Open(info.path, platform::FileUse::kProgram, fault);
    if (!IsTrusted(fault))
        return false;
    info.path = info.program.Path();
    platform::JudgedFile library;
    const std::string path =
        platform::FolderPart(info.path) + platform::LibraryFileName(AgentLauncher::kInterfaceLibrary);
    return library.Open(path, platform::FileUse::kProgram, fault).IsNotFound() || IsTrusted(fault);
}

/// False, with a line of trace, where the file cannot be read or is not to be obeyed.
bool ReadContent(const std::string& infoPath, bool isForAllUsers, std::string& content) {
    platform::JudgedFile file;
    std::string fault;
    platform::SystemError error;
    if (!isForAllUsers)
        error = platform::ReadWholeFile(infoPath, content, kLaunchInfoSizeLimit);
    else if (error = file.Open(infoPath, platform::FileUse::kContent, fault); !error)
        error = IsTrusted(fault) ? file.Read(content, kLaunchInfoSizeLimit) : platform::SystemError{};
    if (error)
        LogMessage(0, "Error %d on attempt to open launch info file at: %s", error.code, infoPath.c_str());
    return !error && fault.empty();
}

/// True when the agent that the file's text names is there.
bool ReadLaunchInfo(const std::string& infoPath, bool isForAllUsers, AgentLauncher::LaunchInfo& info) {
    std::string content;
    if (!ReadContent(infoPath, isForAllUsers, content))
        return false;
    LogLines(0, "Launch config file contents: %s", content.c_str());
    info.path = AgentLauncher::LaunchInfoValue(content, "pellwick.path");
    info.arguments = AgentLauncher::LaunchInfoValue(content, "pellwick.args");
    if (!NamesAProgram(info.path, info.arguments)) {
        LogMessage(0,
                   "Pellwick path found in launch config file (%s) but the Pellwick.exe was not found at the "
                   "specified path (%s)",
                   infoPath.c_str(), info.path.c_str());
        return false;
    }
    LogMessage(0, "Pellwick found in launch config file and on disk: %s %s", info.path.c_str(),
               info.arguments.c_str());
    return !isForAllUsers || IsTrusted(info);
}

/// Starts the agent and waits for it to settle.
bool Launch(const std::string& path, const std::string& arguments) {
    const std::string commandLine = "\"" + path + "\" " + arguments;
    LogMessage(0, "Attempting to launch Pellwick: %s", commandLine.c_str());
    platform::SystemError error;
    const auto process = platform::Current<platform::Processes>().Launch(path, commandLine, error);
    if (!process) {
        LogMessage(0, "Error %d on call to CreateProcess('%s')", error.code, commandLine.c_str());
        return false;
    }
    process->WaitUntilIdle(kIdleWaitLimit);
    if (const std::optional<int> status = process->ExitStatus()) {
        LogMessage(0, "'%s' already exited with error %d", commandLine.c_str(), *status);
        return false;
    }
    LogMessage(0, "Successfully launched Pellwick at: %s %s", path.c_str(), arguments.c_str());
    return true;
}

ErrorCode FindRunningProcess(const std::string& name, std::string& folder) {
    const std::string wanted = AsciiLowerCase(name);
    const std::string wantedProgram = name.find('.') == std::string::npos ? wanted + ".exe" : wanted;
    std::vector<platform::ProcessInfo> processes;
    const auto isWanted = [&](const std::string& fileName) {
        const std::string lower = AsciiLowerCase(fileName);
        return lower == wanted || lower == wantedProgram;
    };
    if (const platform::SystemError error =
            platform::Current<platform::Processes>().List(isWanted, processes))
        return static_cast<ErrorCode>(error.code);
    if (processes.empty())
        return CoreErrorCodes::kUnknownError;
    folder = platform::FolderPart(processes.front().executablePath);
    return CoreErrorCodes::kSuccess;
}

}  // namespace

ErrorCode AgentLauncher::GetPathToRunningProcessExe(const std::string& name, std::string& folder) {
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "GetPathToRunningProcessExe('%s', '%s') returned %d", name.c_str(), folder.c_str(),
                       static_cast<int>(result));
        },
        "Entering GetPathToRunningProcessExe('%s', ...)", name.c_str());
    return result = FindRunningProcess(name, folder);
}

std::string AgentLauncher::LaunchInfoValue(const std::string& content, const std::string& key) {
    for (size_t begin = 0; begin < content.size();) {
        const size_t end = std::min(content.find_first_of("\r\n", begin), content.size());
        const std::string_view line(content.data() + begin, end - begin);
        const size_t equals = line.find('=');
        if (equals != std::string_view::npos && line.substr(0, equals) == key)
            return std::string(line.substr(equals + 1));
        begin = end + 1;
    }
    return {};
}

bool AgentLauncher::GetLaunchInfoFileValues(platform::KnownFolder folder, LaunchInfo& info) {
    constexpr char kName[] = "GetLaunchInfoFileValues";
    bool isFound = false;
    const TraceScope trace([&] { LogMessage(-1, "%s returning %s", kName, isFound ? "success" : "fail"); },
                           "Entering %s", kName);
    const bool isForAllUsers = folder == platform::KnownFolder::kAllUsersApplicationData;
    const std::string folderPath = platform::Current<platform::Folders>().PathOf(folder);
    isFound = !folderPath.empty() && ReadLaunchInfo(LaunchInfoPath(folderPath), isForAllUsers, info);
    return isFound;
}

ErrorCode AgentLauncher::FindAndLaunchPellwick(std::string* folder) {
    constexpr char kName[] = "FindAndLaunchPellwick";
    ErrorCode result = GZephyrinConfig::kAgentNotFound;
    const TraceScope trace([&] { LogMessage(-1, "%s returning %d", kName, static_cast<int>(result)); },
                           "Entering %s", kName);
    LaunchInfo info;
    const bool isFound = GetLaunchInfoFileValues(platform::KnownFolder::kAllUsersApplicationData, info) ||
                         GetLaunchInfoFileValues(platform::KnownFolder::kLocalApplicationData, info);
    if (!isFound || !Launch(info.path, info.arguments)) {
        LogMessage(0, "Could not launch Pellwick.exe");
        return result;
    }
    if (folder != nullptr)
        *folder = platform::FolderPart(info.path);
    return result = CoreErrorCodes::kSuccess;
}
