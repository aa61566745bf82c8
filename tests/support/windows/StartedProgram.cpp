#include "StartedProgram.h"

#include <io.h>
#include <windows.h>
// winternl.h has no declaration of the two functions that suspend a process as a whole.

#include <stdexcept>

#include "CommandLineText.h"
#include "OwnedHandle.h"
#include "platform/Utf8Path.h"

namespace {

using platform::OwnedHandle;

constexpr UINT kKilledStatus = 128 + 9;

/// The program's end of a pipe whose other end is ours, to be read from or written to.
OwnedHandle MakePipe(Stream& ours, bool isRead) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    HANDLE ends[2] = {};
    if (!CreatePipe(&ends[0], &ends[1], &attributes, 0))
        throw std::runtime_error("no pipe");
    HANDLE const own = ends[isRead ? 0 : 1];
    SetHandleInformation(own, HANDLE_FLAG_INHERIT, 0);
    ours.reset(_fdopen(_open_osfhandle(reinterpret_cast<intptr_t>(own), 0), isRead ? "rb" : "wb"));
    return OwnedHandle(ends[isRead ? 1 : 0]);
}

using ProcessFunction = LONG(NTAPI*)(HANDLE);

void CallSystem(const char* function, platform::ProcessId id) {
    const OwnedHandle process(OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, static_cast<DWORD>(id)));
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), function);
    if (process.Get() != nullptr && found != nullptr)
        reinterpret_cast<ProcessFunction>(reinterpret_cast<void*>(found))(process.Get());
}

}  // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& command) {
    const OwnedHandle theirs[] = {MakePipe(input, false), MakePipe(output, true), MakePipe(errors, true)};
    HANDLE inherited[] = {theirs[0].Get(), theirs[1].Get(), theirs[2].Get()};
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = inherited[0];
    startup.StartupInfo.hStdOutput = inherited[1];
    startup.StartupInfo.hStdError = inherited[2];
    // It inherits these handles alone, whatever other threads open meanwhile.
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<std::byte> attributes(size);
    startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(attributes.data());
    PROCESS_INFORMATION started{};
    std::wstring line = platform::CommandLineText(command);
    const bool isStarted =
        InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size) &&
        UpdateProcThreadAttribute(startup.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, inherited,
                                  sizeof inherited, nullptr, nullptr) &&
        CreateProcessW(platform::Utf8Path(command[0]).c_str(), line.data(), nullptr, nullptr, TRUE,
                       EXTENDED_STARTUPINFO_PRESENT | CREATE_NO_WINDOW, nullptr, nullptr,
                       &startup.StartupInfo, &started);
    DeleteProcThreadAttributeList(startup.lpAttributeList);
    if (!isStarted)
        throw std::runtime_error("cannot start " + command[0]);
    CloseHandle(started.hThread);
    id = started.dwProcessId;
    handle.reset(started.hProcess, CloseHandle);
}

int StartedProgram::Collect() const {
    WaitForSingleObject(handle.get(), INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(handle.get(), &status);
    return static_cast<int>(status);
}

void KillProcess(platform::ProcessId id) {
    const OwnedHandle process(OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(id)));
    if (process.Get() != nullptr)
        TerminateProcess(process.Get(), kKilledStatus);
}

void SuspendProcess(platform::ProcessId id) {
    CallSystem("NtSuspendProcess", id);
}

void ResumeProcess(platform::ProcessId id) {
    CallSystem("NtResumeProcess", id);
}
