#include "platform/Worker.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <vector>

#include "OwnedHandle.h"
#include "ProcessRights.h"
#include "SecurityAttributes.h"
#include "WideText.h"

namespace platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Behind it comes the number of the worker's end of the line, which it inherits.
constexpr wchar_t kWorkerArgument[] = L"--worker=";
constexpr DWORD kPipeBuffer = 65536;
constexpr char kTookTooLong[] = "took too long";
constexpr char kAnsweredTooMuch[] = "answered with too much";
/// A request says which handle of the worker's process is the file, and how large that is.
struct RequestHeader {
    uint64_t file;
    uint64_t fileSize;
    uint32_t size;
};
constexpr size_t kMaxRequest = 65536;

bool WriteAll(HANDLE line, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(line, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
            return false;
        bytes.remove_prefix(written);
    }
    return true;
}

bool ReadAll(HANDLE line, void* buffer, size_t size) {
    for (size_t received = 0; received < size;) {
        DWORD count = 0;
        if (!ReadFile(line, static_cast<char*>(buffer) + received, static_cast<DWORD>(size - received),
                      &count, nullptr) ||
            count == 0)
            return false;
        received += count;
    }
    return true;
}

/// The two ends of a line: ours never blocks for longer than we wait, the worker's is inherited.
struct LineEnds {
    OwnedHandle ours;
    OwnedHandle workers;

    bool Make() {
        static std::atomic<unsigned> counter{0};
        const std::wstring name = L"\\\\.\\pipe\\PluginCore-Worker-" +
                                  std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter) +
                                  L"-" + std::to_wstring(GetTickCount64());
        PrivateToUser rights(PrivateToUser::Kind::kPipe);
        ours = OwnedHandle(CreateNamedPipeW(
            name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
            PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, kPipeBuffer,
            kPipeBuffer, 0, rights.Attributes()));
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        if (ours.IsValid())
            workers =
                OwnedHandle(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, &inherited,
                                        OPEN_EXISTING, SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS, nullptr));
        return workers.IsValid();
    }
};

/// The worker inherits this handle and no other, and is in the job from its beginning: one that is put there later, or
/// starts suspended, stays for ever where we are killed meanwhile.
class StartAttributes {
public:
    StartAttributes(HANDLE inherited, HANDLE job) : mInherited(inherited), mJob(job) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 2, 0, &size);
        mMemory.resize(size);
        mIsValid = InitializeProcThreadAttributeList(List(), 2, 0, &size) &&
                   Set(PROC_THREAD_ATTRIBUTE_HANDLE_LIST, mInherited) &&
                   Set(PROC_THREAD_ATTRIBUTE_JOB_LIST, mJob);
    }
    ~StartAttributes() {
        if (mIsValid)
            DeleteProcThreadAttributeList(List());
    }
    StartAttributes(const StartAttributes&) = delete;
    StartAttributes& operator=(const StartAttributes&) = delete;

    bool IsValid() const { return mIsValid; }
    LPPROC_THREAD_ATTRIBUTE_LIST List() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(mMemory.data());
    }

private:
    bool Set(DWORD_PTR attribute, HANDLE& only) {
        return UpdateProcThreadAttribute(List(), 0, attribute, &only, sizeof only, nullptr, nullptr);
    }

    HANDLE mInherited;
    HANDLE mJob;
    std::vector<char> mMemory;
    bool mIsValid = false;
};

/// Ends what is in it when it is closed.
OwnedHandle MakeJob(const WorkerLimits& limits) {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION rules{};
    rules.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_ACTIVE_PROCESS | JOB_OBJECT_LIMIT_PROCESS_MEMORY |
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    rules.BasicLimitInformation.ActiveProcessLimit = 1;
    rules.ProcessMemoryLimit = static_cast<SIZE_T>(limits.memory);
    if (!SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &rules, sizeof rules))
        return {};
    JOBOBJECT_BASIC_UI_RESTRICTIONS windows{};
    windows.UIRestrictionsClass = JOB_OBJECT_UILIMIT_DESKTOP | JOB_OBJECT_UILIMIT_DISPLAYSETTINGS |
                                  JOB_OBJECT_UILIMIT_EXITWINDOWS | JOB_OBJECT_UILIMIT_GLOBALATOMS |
                                  JOB_OBJECT_UILIMIT_HANDLES | JOB_OBJECT_UILIMIT_READCLIPBOARD |
                                  JOB_OBJECT_UILIMIT_SYSTEMPARAMETERS | JOB_OBJECT_UILIMIT_WRITECLIPBOARD;
    SetInformationJobObject(job.Get(), JobObjectBasicUIRestrictions, &windows, sizeof windows);
    return job;
}

class WindowsWorker : public Worker {
public:
    WindowsWorker(OwnedHandle job, OwnedHandle process, OwnedHandle line, const WorkerLimits& limits)
        : mJob(std::move(job)),
          mProcess(std::move(process)),
          mLine(std::move(line)),
          mDone(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
          mCancelled(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
          mLimits(limits) {}
    ~WindowsWorker() override { TerminateJobObject(mJob.Get(), 1); }

    Outcome Exchange(std::string_view request, const ReadOnlyFile& file, std::string& answer,
                     std::string& problem) override {
        problem.clear();
        GrantProcessorTime();
        if (HandOver(request, file) && TakeAnswer(answer, problem))
            return Outcome::kAnswered;
        if (WaitForSingleObject(mCancelled.Get(), 0) == WAIT_OBJECT_0)
            problem = "was cancelled";
        else if (problem.empty())
            problem = ProblemOfEnd();
        TerminateJobObject(mJob.Get(), 1);
        const bool isOverLimit = problem == kTookTooLong || problem == kAnsweredTooMuch;
        return isOverLimit ? Outcome::kOverLimit : Outcome::kDied;
    }
    void Cancel() override { SetEvent(mCancelled.Get()); }

private:
    /// Setting the limit begins the count anew.
    void GrantProcessorTime() {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION rules{};
        if (!QueryInformationJobObject(mJob.Get(), JobObjectExtendedLimitInformation, &rules, sizeof rules,
                                       nullptr))
            return;
        constexpr LONGLONG kTicksPerMillisecond = 10000;
        rules.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_JOB_TIME;
        rules.BasicLimitInformation.PerJobUserTimeLimit.QuadPart =
            mLimits.processorTime.count() * kTicksPerMillisecond;
        SetInformationJobObject(mJob.Get(), JobObjectExtendedLimitInformation, &rules, sizeof rules);
    }
    bool HandOver(std::string_view request, const ReadOnlyFile& file) {
        RequestHeader header{};
        HANDLE copy = nullptr;
        if (request.size() > kMaxRequest)
            return false;
        if (file.IsOpen() &&
            (file.Size(header.fileSize) ||
             !DuplicateHandle(GetCurrentProcess(), reinterpret_cast<HANDLE>(file.NativeHandle()),
                              mProcess.Get(), &copy, GENERIC_READ, FALSE, 0)))
            return false;
        header.file = reinterpret_cast<uintptr_t>(copy);
        header.size = static_cast<uint32_t>(request.size());
        std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
        bytes += request;
        return WriteBy(steady_clock::now() + mLimits.time, bytes);
    }
    bool WriteBy(steady_clock::time_point deadline, std::string_view bytes) {
        OVERLAPPED operation{};
        operation.hEvent = mDone.Get();
        DWORD written = 0;
        if (!WriteFile(mLine.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation) &&
            GetLastError() != ERROR_IO_PENDING)
            return false;
        if (WaitFor(deadline) != WAIT_OBJECT_0)
            CancelIoEx(mLine.Get(), &operation);
        return GetOverlappedResult(mLine.Get(), &operation, &written, TRUE) && written == bytes.size();
    }
    bool TakeAnswer(std::string& answer, std::string& problem) {
        const auto deadline = steady_clock::now() + mLimits.time;
        uint32_t size = 0;
        if (!ReadBy(deadline, reinterpret_cast<char*>(&size), sizeof size, problem))
            return false;
        if (size > mLimits.answerSize) {
            problem = kAnsweredTooMuch;
            return false;
        }
        answer.resize(size);
        return ReadBy(deadline, answer.data(), size, problem);
    }
    bool ReadBy(steady_clock::time_point deadline, char* buffer, size_t size, std::string& problem) {
        for (size_t received = 0; received < size;) {
            OVERLAPPED operation{};
            operation.hEvent = mDone.Get();
            DWORD count = 0;
            if (!ReadFile(mLine.Get(), buffer + received, static_cast<DWORD>(size - received), nullptr,
                          &operation) &&
                GetLastError() != ERROR_IO_PENDING)
                return false;
            const DWORD sign = WaitFor(deadline);
            if (sign != WAIT_OBJECT_0)
                CancelIoEx(mLine.Get(), &operation);
            const BOOL isRead = GetOverlappedResult(mLine.Get(), &operation, &count, TRUE);
            if (sign == WAIT_TIMEOUT && !isRead)
                problem = kTookTooLong;
            if (!isRead || count == 0)
                return false;
            received += count;
        }
        return true;
    }
    DWORD WaitFor(steady_clock::time_point deadline) const {
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
        const HANDLE signs[] = {mDone.Get(), mCancelled.Get()};
        return WaitForMultipleObjects(2, signs, FALSE,
                                      static_cast<DWORD>(std::clamp<int64_t>(left, 0, INFINITE - 1)));
    }
    /// The line is closed, so it has ended or is about to.
    std::string ProblemOfEnd() const {
        DWORD status = 0;
        WaitForSingleObject(mProcess.Get(), 1000);
        GetExitCodeProcess(mProcess.Get(), &status);
        if (status == ERROR_NOT_ENOUGH_QUOTA)
            return kTookTooLong;
        return status == 0 ? "gave up" : "crashed (status " + std::to_string(status) + ")";
    }

    const OwnedHandle mJob;
    const OwnedHandle mProcess;
    const OwnedHandle mLine;
    const OwnedHandle mDone;
    const OwnedHandle mCancelled;
    const WorkerLimits mLimits;
};

/// What a process of low integrity may write to is next to nothing.
void LowerIntegrity() {
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_DEFAULT | TOKEN_QUERY, &token))
        SetIntegrity(OwnedHandle(token).Get(), WinLowLabelSid);
}

class WindowsWorkerLine : public WorkerLine {
public:
    explicit WindowsWorkerLine(OwnedHandle line) : mLine(std::move(line)) {}
    ~WindowsWorkerLine() override { Unmap(); }

    bool Confine(const WorkerLimits&) override {
        LowerIntegrity();
        return true;
    }
    bool Receive(std::string& request, std::string_view& file) override {
        RequestHeader header{};
        if (!ReadAll(mLine.Get(), &header, sizeof header) || header.size > kMaxRequest)
            return false;
        const OwnedHandle handle(reinterpret_cast<HANDLE>(static_cast<uintptr_t>(header.file)));
        request.resize(header.size);
        if (!ReadAll(mLine.Get(), request.data(), request.size()))
            return false;
        file = header.file != 0 ? Map(handle.Get(), header.fileSize) : std::string_view();
        return true;
    }
    bool Answer(std::string_view answer) override {
        Unmap();
        const auto size = static_cast<uint32_t>(answer.size());
        const std::string_view header(reinterpret_cast<const char*>(&size), sizeof size);
        return WriteAll(mLine.Get(), header) && WriteAll(mLine.Get(), answer);
    }

private:
    std::string_view Map(HANDLE file, uint64_t size) {
        const OwnedHandle mapping(CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr));
        if (!mapping.IsValid())
            return {};
        mContent = MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, static_cast<SIZE_T>(size));
        if (mContent == nullptr)
            return {};
        return {static_cast<const char*>(mContent), static_cast<size_t>(size)};
    }
    void Unmap() {
        if (mContent != nullptr)
            UnmapViewOfFile(mContent);
        mContent = nullptr;
    }

    const OwnedHandle mLine;
    void* mContent = nullptr;
};

}  // namespace

std::unique_ptr<Worker> Worker::Start(const std::string& executablePath, const WorkerLimits& limits,
                                      SystemError& error, Variables /*variables*/) {
    LineEnds line;
    OwnedHandle job = MakeJob(limits);
    if (!job.IsValid() || !line.Make()) {
        error = LastSystemError();
        return nullptr;
    }
    StartAttributes attributes(line.workers.Get(), job.Get());
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.lpAttributeList = attributes.List();
    const std::wstring program = ToWidePath(executablePath);
    std::wstring words = L'"' + program + L"\" " + kWorkerArgument +
                         std::to_wstring(reinterpret_cast<uintptr_t>(line.workers.Get()));
    PROCESS_INFORMATION started{};
    constexpr DWORD kFlags = DETACHED_PROCESS | EXTENDED_STARTUPINFO_PRESENT;
    if (!attributes.IsValid() || !CreateProcessW(program.c_str(), words.data(), nullptr, nullptr, TRUE,
                                                 kFlags, nullptr, nullptr, &startup.StartupInfo, &started)) {
        error = LastSystemError();
        return nullptr;
    }
    OwnedHandle process(started.hProcess);
    CloseHandle(started.hThread);
    return std::make_unique<WindowsWorker>(std::move(job), std::move(process), std::move(line.ours), limits);
}

std::unique_ptr<WorkerLine> WorkerLine::Open(int argumentCount, char** arguments) {
    const std::string argument = argumentCount == 2 ? arguments[1] : "";
    const std::string beginning = ToUtf8(kWorkerArgument);
    if (!argument.starts_with(beginning))
        return nullptr;
    const auto line = static_cast<uintptr_t>(std::strtoull(argument.c_str() + beginning.size(), nullptr, 10));
    return std::make_unique<WindowsWorkerLine>(OwnedHandle(reinterpret_cast<HANDLE>(line)));
}

}  // namespace platform
