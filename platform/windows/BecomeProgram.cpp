#include "platform/BecomeProgram.h"

#include <windows.h>

#include <algorithm>

#include "CommandLineText.h"
#include "OwnedHandle.h"
#include "WideText.h"

namespace platform {
namespace {

/// Batch files are run by cmd.exe, which takes words apart by rules of its own: the name of a document could end one and
/// begin a command.
bool MayBecomeCommands(const std::vector<std::string>& words) {
    const std::wstring program = ToWide(words[0]);
    const auto hasExtension = [&](const wchar_t* extension) {
        return program.size() > 4 &&
               CompareStringOrdinal(&program[program.size() - 4], 4, extension, 4, TRUE) == CSTR_EQUAL;
    };
    return (hasExtension(L".bat") || hasExtension(L".cmd")) &&
           std::any_of(words.begin() + 1, words.end(), [](const std::string& word) {
               return word.find_first_of("\"%&|<>^!\r\n") != std::string::npos;
           });
}

/// False also where that cannot be told.
bool IsInUse(HANDLE job) {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION processes{};
    return QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &processes, sizeof processes,
                                     nullptr) &&
           processes.ActiveProcesses > 0;
}

/// What a program starts to outlive it, such as the font manager's agent, may leave the job, and is not waited for.
bool LetGo(HANDLE job) {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_BREAKAWAY_OK;
    return SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits) != FALSE;
}

/// Ctrl-C at the console that both have is the program's to answer.
BOOL WINAPI LeaveToProgram(DWORD kind) {
    return kind == CTRL_C_EVENT || kind == CTRL_BREAK_EVENT;
}

}  // namespace

SystemError BecomeProgram(const std::vector<std::string>& words, int& exitStatus) {
    if (MayBecomeCommands(words))
        return SystemError{ERROR_BAD_ARGUMENTS};
    constexpr DWORD kLookAgain = 200;  // milliseconds; what a job reports may get lost
    const OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    if (!job.IsValid() || !LetGo(job.Get()))
        return LastSystemError();
    SetConsoleCtrlHandler(LeaveToProgram, TRUE);
    std::wstring line = CommandLineText(words);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                        &startup, &started)) {
        const SystemError error = LastSystemError();
        SetConsoleCtrlHandler(LeaveToProgram, FALSE);
        return error;
    }
    const OwnedHandle process(started.hProcess);
    const OwnedHandle thread(started.hThread);
    // Where that fails, those that the program starts are not waited for.
    AssignProcessToJobObject(job.Get(), process.Get());
    ResumeThread(thread.Get());
    WaitForSingleObject(process.Get(), INFINITE);
    while (IsInUse(job.Get()))
        Sleep(kLookAgain);
    DWORD status = 0;
    GetExitCodeProcess(process.Get(), &status);
    exitStatus = static_cast<int>(status);
    return {};
}

}  // namespace platform
