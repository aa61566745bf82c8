#include "platform/Processes.h"

#include <windows.h>
// After windows.h, which it needs.
#include <tlhelp32.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "EndEvent.h"
#include "OwnedHandle.h"
#include "ProcessRights.h"
#include "SecurityAttributes.h"
#include "UserIdentity.h"
#include "WideText.h"
#include "WindowsFiles.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/System.h"

namespace platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A child finds the event by which it says that it is ready under the name in this variable.
constexpr wchar_t kReadyVariable[] = L"PLUGINCORE_READY_EVENT";
// What this process calls itself, with its identifier in front: a child inherits the variable but not the
// name.
constexpr char kNameVariable[] = "PLUGINCORE_PROCESS_NAME";

DWORD LeftUntil(steady_clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<milliseconds>(deadline - steady_clock::now());
    return static_cast<DWORD>(std::clamp<int64_t>(left.count(), 0, INFINITE - 1));
}

std::wstring NewEventName() {
    static std::atomic<unsigned> counter{0};
    return L"Local\\PluginCore-Ready-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(++counter);
}

bool StandsBehindReady(const std::wstring& variable) {
    const auto end = static_cast<int>(variable.find(L'=', 1));
    return CompareStringOrdinal(variable.c_str(), end, kReadyVariable, -1, TRUE) == CSTR_GREATER_THAN;
}

/// This process's variables, and that with the name of the event at its place in their order, as
/// CreateProcess wants them: each ends with a zero, and so does the list.
std::wstring ChildEnvironment(const std::wstring& eventName) {
    const std::wstring name = std::wstring(kReadyVariable) + L"=";
    std::wstring ready = name + eventName + L'\0';
    std::wstring block;
    wchar_t* variables = GetEnvironmentStringsW();
    for (const wchar_t* variable = variables; *variable != L'\0';) {
        const std::wstring each = variable;
        if (StandsBehindReady(each))
            block += std::exchange(ready, {});
        if (!each.starts_with(name))
            block += each + L'\0';
        variable += each.size() + 1;
    }
    FreeEnvironmentStringsW(variables);
    return block + ready;
}

class WindowsChildProcess : public ChildProcess {
public:
    WindowsChildProcess(OwnedHandle process, ProcessId id, OwnedHandle ready)
        : mProcess(std::move(process)), mId(id), mReady(std::move(ready)) {}

    ProcessId Id() const override { return mId; }

    bool WaitUntilIdle(milliseconds limit) override {
        const auto deadline = steady_clock::now() + limit;
        const DWORD answer = WaitForInputIdle(mProcess.Get(), LeftUntil(deadline));
        if (answer != WAIT_FAILED)
            return answer == 0 && !ExitStatus();
        // A program without windows is never idle for input. It may say itself when it is ready.
        const HANDLE signs[] = {mReady.Get(), mProcess.Get()};
        return WaitForMultipleObjects(2, signs, FALSE, LeftUntil(deadline)) == WAIT_OBJECT_0;
    }

    std::optional<int> ExitStatus() override {
        DWORD status = 0;
        if (WaitForSingleObject(mProcess.Get(), 0) != WAIT_OBJECT_0 ||
            !GetExitCodeProcess(mProcess.Get(), &status))
            return std::nullopt;
        return static_cast<int>(status);
    }

private:
    OwnedHandle mProcess;
    ProcessId mId;
    OwnedHandle mReady;
};

bool IsTrusted(HANDLE process) {
    const std::optional<TrustLevel> level = TrustLevelOfProcess(process);
    return IsThisUser(UserOfProcess(process)) && level && MayPassForUsers(*level);
}

/// An agent of another session makes fonts active there.
bool IsInThisSession(DWORD id) {
    DWORD session = 0;
    return ProcessIdToSessionId(id, &session) && session == SessionNumber();
}

/// Full path of the process's program; empty when it may not be looked at, is not this user's or this session's, or
/// confined.
std::string ProgramOf(DWORD id) {
    if (!IsInThisSession(id))
        return {};
    const OwnedHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    if (!process.IsValid() || !IsTrusted(process.Get()))
        return {};
    return ToUtf8(ReadWideText([&](wchar_t* buffer, DWORD size) {
        DWORD length = size;
        if (QueryFullProcessImageNameW(process.Get(), 0, buffer, &length))
            return length;
        return GetLastError() == ERROR_INSUFFICIENT_BUFFER ? size : 0;
    }));
}

std::string PathOfThisProgram() {
    return ToUtf8(
        ReadWideText([](wchar_t* buffer, DWORD size) { return GetModuleFileNameW(nullptr, buffer, size); }));
}

/// The path as the file system has it, whatever the letter case or the short names that it was written with;
/// empty when that cannot be told.
std::string StoredPath(const std::string& path) {
    const OwnedHandle file(
        CreateFileW(ToWidePath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file.IsValid())
        return {};
    return ToUtf8(ReadWideText([&](wchar_t* buffer, DWORD size) {
        return GetFinalPathNameByHandleW(file.Get(), buffer, size, FILE_NAME_NORMALIZED);
    }));
}

std::string WithoutExtension(const std::string& fileName) {
    return fileName.substr(0, fileName.rfind('.'));
}

class WindowsProcesses : public Processes {
public:
    SystemError List(const NameFilter& isWanted, std::vector<ProcessInfo>& processes) override {
        const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
        if (!snapshot.IsValid())
            return LastSystemError();
        processes.clear();
        PROCESSENTRY32W entry{};
        entry.dwSize = sizeof entry;
        for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more;
             more = Process32NextW(snapshot.Get(), &entry)) {
            std::string path = isWanted(ToUtf8(entry.szExeFile)) ? ProgramOf(entry.th32ProcessID) : "";
            if (!path.empty())
                processes.push_back({entry.th32ProcessID, std::move(path)});
        }
        return {};
    }

    std::unique_ptr<ChildProcess> Launch(const std::string& executablePath, const std::string& commandLine,
                                         SystemError& error) override {
        const std::wstring program = ToWidePath(executablePath);
        if (GetFileAttributesW(program.c_str()) == INVALID_FILE_ATTRIBUTES) {
            error = LastSystemError();
            return nullptr;
        }
        const std::wstring eventName = NewEventName();
        PrivateToUser rights;  // also of the child, whose rights may be less than ours
        OwnedHandle ready(CreateEventW(rights.Attributes(), TRUE, FALSE, eventName.c_str()));
        std::wstring environment = ChildEnvironment(eventName);
        std::wstring words = ToWide(commandLine);
        const std::wstring folder = ToWide(FolderPart(executablePath));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        // No streams, rather than ours: whoever reads what we print would wait for the child as well.
        startup.dwFlags = STARTF_USESTDHANDLES;
        PROCESS_INFORMATION started{};
        // Where the rights of an administrator cannot be given up, the child has them too: without it there are no fonts.
        const OwnedHandle unelevated = MakeUnelevatedToken();
        const auto start = [&](DWORD flags) {
            return CreateProcessAsUserW(unelevated.Get(), program.c_str(), words.data(), nullptr, nullptr,
                                        FALSE, flags, environment.data(), folder.c_str(), &startup,
                                        &started) != FALSE;
        };
        constexpr DWORD kFlags = CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW | CREATE_NEW_PROCESS_GROUP;
        const bool isStarted =
            start(kFlags | CREATE_BREAKAWAY_FROM_JOB) || start(kFlags);  // in a job that keeps what is in it
        if (!isStarted) {
            error = LastSystemError();
            return nullptr;
        }
        const OwnedHandle thread(started.hThread);
        return std::make_unique<WindowsChildProcess>(OwnedHandle(started.hProcess), started.dwProcessId,
                                                     std::move(ready));
    }

    std::string CurrentName() override {
        const std::string name = EnvironmentVariable(kNameVariable);
        const std::string own = std::to_string(GetCurrentProcessId()) + ":";
        if (name.starts_with(own))
            return name.substr(own.size());
        const std::string path = PathOfThisProgram();
        const std::string stored = StoredPath(path);
        return WithoutExtension(NamePart(stored.empty() ? path : stored));
    }

    std::string CurrentExecutablePath() override { return PathOfThisProgram(); }
    bool IsElevated() override { return platform::IsElevated(); }
};

}  // namespace

template <>
Processes& SystemDefault<Processes>() {
    static WindowsProcesses processes;
    return processes;
}

struct ScopedSignalBlock::SavedMask {};

ScopedSignalBlock::ScopedSignalBlock() = default;
ScopedSignalBlock::~ScopedSignalBlock() = default;

ProcessId CurrentProcessId() {
    return GetCurrentProcessId();
}

ProcessState LookAtProcess(ProcessId id, uint64_t& startTime) {
    if (id <= 0 || id > MAXDWORD)
        return ProcessState::kGone;
    const OwnedHandle process(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, static_cast<DWORD>(id)));
    if (!process.IsValid()) {
        startTime = 0;
        switch (GetLastError()) {
            case ERROR_INVALID_PARAMETER:  // an identifier that is none
                return ProcessState::kGone;
            case ERROR_ACCESS_DENIED:  // of another log-on of the user, say, with more rights
                return ProcessState::kAlive;
            default:
                return ProcessState::kCannotBeTold;
        }
    }
    // Someone may hold an ended process open, which keeps its identifier.
    const DWORD state = WaitForSingleObject(process.Get(), 0);
    if (state == WAIT_OBJECT_0)
        return ProcessState::kGone;
    FILETIME created{};
    FILETIME ignored{};
    if (state != WAIT_TIMEOUT || !GetProcessTimes(process.Get(), &created, &ignored, &ignored, &ignored))
        return ProcessState::kCannotBeTold;
    startTime = uint64_t{created.dwHighDateTime} << 32 | created.dwLowDateTime;
    return ProcessState::kAlive;
}

std::string ProcessEra() {
    return {};
}

SystemError RequestEndOfProcess(ProcessId id, uint64_t startTime) {
    const auto number = static_cast<DWORD>(id);
    // Held open, its identifier is not given to another.
    const OwnedHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, number));
    if (!process.IsValid())
        return LastSystemError();
    if (StateOfProcess(id, startTime) != ProcessState::kAlive)
        return SystemError{ERROR_INVALID_PARAMETER};
    if (!IsThisUser(UserOfProcess(process.Get())))
        return SystemError{ERROR_ACCESS_DENIED};
    const OwnedHandle event(OpenEventW(EVENT_MODIFY_STATE, FALSE, EndEventName(number).c_str()));
    return event.IsValid() && SetEvent(event.Get()) ? SystemError{} : LastSystemError();
}

void SetCurrentProcessName(const std::string& name) {
    SetEnvironment(kNameVariable, std::to_string(GetCurrentProcessId()) + ":" + name);
}

namespace {

/// Empty when nobody waits for this process.
std::wstring ReadyEventName() {
    return ReadWideText(
        [](wchar_t* buffer, DWORD size) { return GetEnvironmentVariableW(kReadyVariable, buffer, size); });
}

}  // namespace

bool IsReadinessAwaited() {
    return !ReadyEventName().empty();
}

void NotifyReadyForInput() {
    const std::wstring name = ReadyEventName();
    if (name.empty())
        return;
    SetEnvironmentVariableW(kReadyVariable, nullptr);
    const OwnedHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, name.c_str()));
    if (ready.IsValid())
        SetEvent(ready.Get());
}

}  // namespace platform
