#include "TestProcess.h"

#include <gtest/gtest.h>
#include <windows.h>
// winternl.h has no declaration of the two functions that suspend a process as a whole.

#include <chrono>
#include <stdexcept>
#include <thread>

#include "CommandLineText.h"
#include "OwnedHandle.h"
#include "platform/Utf8Path.h"

namespace {

using platform::OwnedHandle;

constexpr std::chrono::seconds kPatience{60};
constexpr UINT kKilledStatus = 128 + 9;

struct Pipe {
    enum class Inherited { kReadEnd, kWriteEnd };

    explicit Pipe(Inherited inherited) {
        SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
        HANDLE readHandle = nullptr;
        HANDLE writeHandle = nullptr;
        if (!CreatePipe(&readHandle, &writeHandle, &attributes, 0))
            throw std::runtime_error("no pipe");
        readEnd = OwnedHandle(readHandle);
        writeEnd = OwnedHandle(writeHandle);
        const OwnedHandle& ours = inherited == Inherited::kReadEnd ? writeEnd : readEnd;
        SetHandleInformation(ours.Get(), HANDLE_FLAG_INHERIT, 0);
    }

    OwnedHandle readEnd;
    OwnedHandle writeEnd;
};

std::string ReadToEnd(HANDLE pipe) {
    std::string text;
    char piece[4096];
    for (DWORD size = 0; ReadFile(pipe, piece, sizeof piece, &size, nullptr) && size > 0;)
        text.append(piece, size);
    return text;
}

/// Waits for something to read or the end; false when nothing comes, so that a test fails instead of hanging.
bool IsReadable(HANDLE pipe) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    DWORD available = 0;
    while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr) && available == 0) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return available > 0;
}

using ProcessFunction = LONG(NTAPI*)(HANDLE);

void CallSystem(const char* function, platform::ProcessId id) {
    const OwnedHandle process(OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, static_cast<DWORD>(id)));
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), function);
    if (process.Get() != nullptr && found != nullptr)
        reinterpret_cast<ProcessFunction>(reinterpret_cast<void*>(found))(process.Get());
}

}  // namespace

struct TestProcess::State {
    OwnedHandle process;
    DWORD id = 0;
    Pipe input{Pipe::Inherited::kReadEnd};
    Pipe output{Pipe::Inherited::kWriteEnd};
    Pipe errors{Pipe::Inherited::kWriteEnd};
};

TestProcess::TestProcess(const std::vector<std::string>& command) : mState(std::make_unique<State>()) {
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    HANDLE inherited[] = {mState->input.readEnd.Get(), mState->output.writeEnd.Get(),
                          mState->errors.writeEnd.Get()};
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
    mState->process = OwnedHandle(started.hProcess);
    mState->id = started.dwProcessId;
    CloseHandle(started.hThread);
    mState->input.readEnd = {};
    mState->output.writeEnd = {};
    mState->errors.writeEnd = {};
}

TestProcess::~TestProcess() {
    Kill();
    WaitForSingleObject(mState->process.Get(), INFINITE);
}

platform::ProcessId TestProcess::Id() const {
    return mState->id;
}

std::string TestProcess::ReadLine() {
    const HANDLE output = mState->output.readEnd.Get();
    char character = 0;
    DWORD size = 0;
    std::string line;
    while (IsReadable(output) && ReadFile(output, &character, 1, &size, nullptr) && character != '\n')
        line += character;
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

void TestProcess::WriteLine(const std::string& line) {
    const std::string text = line + "\n";
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(mState->input.writeEnd.Get(), text.data(), static_cast<DWORD>(text.size()),
                          &written, nullptr));
    ASSERT_EQ(written, text.size());
}

void TestProcess::CloseInput() {
    mState->input.writeEnd = {};
}

ProgramResult TestProcess::Finish() {
    CloseInput();
    ProgramResult result;
    std::thread errors([&] { result.errors = ReadToEnd(mState->errors.readEnd.Get()); });
    result.output = ReadToEnd(mState->output.readEnd.Get());
    errors.join();
    WaitForSingleObject(mState->process.Get(), INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(mState->process.Get(), &status);
    result.status = static_cast<int>(status);
    return result;
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
