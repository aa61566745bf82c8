#include "platform/Processes.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>

#include "Descriptor.h"
#include "SpawnSettings.h"
#include "platform/Files.h"

extern "C" {  // which the header of glibc 2.36 does not say itself
#include <sys/pidfd.h>
}

namespace platform {
namespace {

// The child finds its end of the ready line at this descriptor, and is told so by a variable.
constexpr int kReadyDescriptor = 3;
constexpr char kReadyVariable[] = "PLUGINCORE_READY_DESCRIPTOR";

/// The line on which a child says that it is ready. A socket, so that a child that speaks when nobody listens
/// any more can be spared the signal of a broken pipe.
class ReadyLine {
public:
    ReadyLine() {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, mEnds) != 0)
            mEnds[0] = mEnds[1] = -1;
    }
    ~ReadyLine() {
        CloseEnd(0);
        CloseEnd(1);
    }
    ReadyLine(const ReadyLine&) = delete;
    ReadyLine& operator=(const ReadyLine&) = delete;

    bool IsOpen() const { return mEnds[0] >= 0; }
    int OurEnd() const { return mEnds[0]; }
    int ChildEnd() const { return mEnds[1]; }
    void CloseChildEnd() { CloseEnd(1); }

private:
    void CloseEnd(int end) {
        if (mEnds[end] >= 0)
            close(mEnds[end]);
        mEnds[end] = -1;
    }

    int mEnds[2];
};

/// Blanks separate, double quotes group; there is no escape character, as in a Windows command line without
/// one.
std::vector<std::string> SplitCommandLine(std::string_view commandLine) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    bool inWord = false;
    for (const char character : commandLine) {
        if (character == '"') {
            quoted = !quoted;
            inWord = true;
        } else if ((character == ' ' || character == '\t') && !quoted) {
            if (inWord)
                words.push_back(std::move(word));
            word.clear();
            inWord = false;
        } else {
            word += character;
            inWord = true;
        }
    }
    if (inWord)
        words.push_back(std::move(word));
    return words;
}

/// The program's own path, whatever is in it, and the words that follow it; nothing when the command line
/// begins otherwise.
std::vector<std::string> ArgumentsOf(const std::string& executablePath, std::string_view commandLine) {
    const std::string quotedPath = '"' + executablePath + '"';
    if (!commandLine.starts_with(quotedPath))
        return {};
    std::vector<std::string> arguments = SplitCommandLine(commandLine.substr(quotedPath.size()));
    arguments.insert(arguments.begin(), executablePath);
    return arguments;
}

std::vector<char*> PointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> ChildEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::strncmp(*variable, kReadyVariable, sizeof kReadyVariable - 1) != 0)
            variables.emplace_back(*variable);
    }
    variables.push_back(std::string(kReadyVariable) + "=" + std::to_string(kReadyDescriptor));
    return variables;
}

/// What a host may have made of these is not the agent's business.
sigset_t SignalsOfTheHost() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM})
        sigaddset(&signals, signal);
    return signals;
}

/// What became of a child, told by the thread that started it and waits for it.
class ChildWatch {
public:
    /// Starts the child by `spawn` on a thread of its own, which then collects the child when it ends,
    /// however long that takes, so that it never stays behind as a zombie. The error of the start.
    template <class Spawn>
    static SystemError Start(const std::shared_ptr<ChildWatch>& watch, Spawn&& spawn) {
        const ScopedSignalBlock block;
        SystemError error;
        try {
            std::thread([watch, &spawn] { watch->Run(spawn); }).detach();
            error = watch->WaitForStart();
        } catch (const std::system_error& failure) {
            error.code = failure.code().value();
        }
        return error;
    }

    pid_t Id() {
        const std::lock_guard guard(mStateLock);
        return mId;
    }
    std::optional<int> Status() {
        const std::lock_guard guard(mStateLock);
        return mStatus;
    }
    void WaitForEnd(std::chrono::steady_clock::time_point deadline) {
        std::unique_lock guard(mStateLock);
        mChanged.wait_until(guard, deadline, [this] { return mStatus.has_value(); });
    }

private:
    template <class Spawn>
    void Run(Spawn& spawn) {
        pid_t child = 0;
        const int error = spawn(child);
        {
            const std::lock_guard guard(mStateLock);
            mId = child;
            mStartError = SystemError{error};
            mChanged.notify_all();  // `spawn` may be gone from here on
        }
        if (error != 0)
            return;
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        const std::lock_guard guard(mStateLock);
        mStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        mChanged.notify_all();
    }
    SystemError WaitForStart() {
        std::unique_lock guard(mStateLock);
        mChanged.wait(guard, [this] { return mStartError.has_value(); });
        return *mStartError;
    }

    std::mutex mStateLock;  ///< guards what follows
    std::condition_variable mChanged;
    std::optional<SystemError> mStartError;
    std::optional<int> mStatus;
    pid_t mId = 0;
};

class LinuxChildProcess : public ChildProcess {
public:
    LinuxChildProcess(std::shared_ptr<ChildWatch> watch, std::unique_ptr<ReadyLine> ready)
        : mWatch(std::move(watch)), mReady(std::move(ready)) {}

    ProcessId Id() const override { return mWatch->Id(); }

    bool WaitUntilIdle(std::chrono::milliseconds limit) override {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        pollfd ready{mReady->OurEnd(), POLLIN, 0};
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            const int count = poll(&ready, 1, static_cast<int>(std::max<int64_t>(0, left.count())));
            if (count < 0 && errno == EINTR)
                continue;
            char signal = 0;
            if (count > 0 && read(mReady->OurEnd(), &signal, 1) == 1)
                return true;
            // The line closes without a word when the child ends: its status is there in a moment.
            mWatch->WaitForEnd(deadline);
            return false;
        }
    }

    std::optional<int> ExitStatus() override { return mWatch->Status(); }

private:
    std::shared_ptr<ChildWatch> mWatch;
    std::unique_ptr<ReadyLine> mReady;
};

std::string TargetOfLink(const std::string& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<size_t>(length)) : std::string();
}

/// /proc marks the program of a running process whose file was replaced.
std::string WithoutDeletedMark(std::string path) {
    constexpr std::string_view kMark = " (deleted)";
    if (path.size() > kMark.size() && path.compare(path.size() - kMark.size(), kMark.size(), kMark) == 0)
        path.resize(path.size() - kMark.size());
    return path;
}

SystemError ReadSmallProcFile(const std::string& path, std::string& content) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsValid())
        return LastSystemError();
    std::array<char, 4096> buffer{};
    const ssize_t length = read(file.Get(), buffer.data(), buffer.size());
    if (length < 0)
        return LastSystemError();
    content.assign(buffer.data(), static_cast<size_t>(length));
    return {};
}

/// A process whose first thread has ended shows as a zombie while its other threads live on.
ProcessState StateOfZombie(ProcessId id) {
    const std::unique_ptr<DIR, int (*)(DIR*)> tasks(
        opendir(("/proc/" + std::to_string(id) + "/task").c_str()), closedir);
    if (!tasks)
        return LastSystemError().IsNotFound() ? ProcessState::kGone : ProcessState::kCannotBeTold;
    int count = 0;
    while (readdir(tasks.get()) != nullptr)
        ++count;
    return count > 3 ? ProcessState::kAlive : ProcessState::kGone;  // ".", "..", and the first thread
}

/// Of one that /proc does not show. A name space or a set-up without /proc shows none.
ProcessState StateOfUnseen(ProcessId id) {
    return kill(static_cast<pid_t>(id), 0) != 0 && errno == ESRCH ? ProcessState::kGone
                                                                  : ProcessState::kCannotBeTold;
}

class LinuxProcesses : public Processes {
public:
    SystemError List(const NameFilter& isWanted, std::vector<ProcessInfo>& processes) override {
        const std::unique_ptr<DIR, int (*)(DIR*)> proc(opendir("/proc"), closedir);
        if (!proc)
            return LastSystemError();
        processes.clear();
        const std::string ownNamespace = TargetOfLink("/proc/self/ns/pid");
        while (const dirent* entry = readdir(proc.get())) {
            char* end = nullptr;
            const long id = std::strtol(entry->d_name, &end, 10);
            if (id <= 0 || *end != '\0')
                continue;
            struct stat owner {};
            if (fstatat(dirfd(proc.get()), entry->d_name, &owner, 0) != 0 || owner.st_uid != geteuid())
                continue;
            const std::string process = "/proc/" + std::to_string(id);
            std::string path = WithoutDeletedMark(TargetOfLink(process + "/exe"));
            if (!path.empty() && isWanted(NamePart(path)) &&
                TargetOfLink(process + "/ns/pid") == ownNamespace)
                processes.push_back({id, std::move(path)});
        }
        return {};
    }

    std::unique_ptr<ChildProcess> Launch(const std::string& executablePath, const std::string& commandLine,
                                         SystemError& error) override {
        std::vector<std::string> arguments = ArgumentsOf(executablePath, commandLine);
        if (arguments.empty()) {
            error.code = EINVAL;
            return nullptr;
        }
        auto ready = std::make_unique<ReadyLine>();
        if (!ready->IsOpen()) {
            error = LastSystemError();
            return nullptr;
        }
        std::vector<std::string> environment = ChildEnvironment();
        const SpawnSettings settings(ready->ChildEnd(), kReadyDescriptor, SignalsOfTheHost());
        const auto watch = std::make_shared<ChildWatch>();
        error = ChildWatch::Start(watch, [&](pid_t& child) {
            return settings.Spawn(executablePath.c_str(), PointersTo(arguments).data(),
                                  PointersTo(environment).data(), child);
        });
        if (error)
            return nullptr;
        ready->CloseChildEnd();
        return std::make_unique<LinuxChildProcess>(watch, std::move(ready));
    }

    std::string CurrentName() override {
        std::string name;
        ReadSmallProcFile("/proc/self/comm", name);
        while (!name.empty() && name.back() == '\n')
            name.pop_back();
        return name;
    }

    std::string CurrentExecutablePath() override {
        return WithoutDeletedMark(TargetOfLink("/proc/self/exe"));
    }
    bool IsElevated() override { return false; }
};

}  // namespace

template <>
Processes& SystemDefault<Processes>() {
    static LinuxProcesses processes;
    return processes;
}

struct ScopedSignalBlock::SavedMask {
    sigset_t signals;
};

ScopedSignalBlock::ScopedSignalBlock() : mSaved(std::make_unique<SavedMask>()) {
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
        sigdelset(&blocked, fault);
    pthread_sigmask(SIG_BLOCK, &blocked, &mSaved->signals);
}

ScopedSignalBlock::~ScopedSignalBlock() {
    pthread_sigmask(SIG_SETMASK, &mSaved->signals, nullptr);
}

ProcessId CurrentProcessId() {
    return getpid();
}

ProcessState LookAtProcess(ProcessId id, uint64_t& startTime) {
    if (id <= 0 || id > std::numeric_limits<pid_t>::max())
        return ProcessState::kGone;
    std::string stat;
    if (ReadSmallProcFile("/proc/" + std::to_string(id) + "/stat", stat))
        return StateOfUnseen(id);
    // proc(5): the name in parentheses may hold anything; after the last one come state (3) and the rest.
    size_t position = stat.rfind(')') + 2;
    if (position < 2 || position >= stat.size())
        return ProcessState::kCannotBeTold;
    const ProcessState state = stat[position] == 'Z' ? StateOfZombie(id) : ProcessState::kAlive;
    constexpr int kFieldsFromStateToStartTime = 22 - 3;
    for (int field = 0; field < kFieldsFromStateToStartTime; ++field) {
        position = stat.find(' ', position);
        if (position == std::string::npos)
            return ProcessState::kCannotBeTold;
        ++position;
    }
    if (state == ProcessState::kAlive)
        startTime = std::strtoull(stat.c_str() + position, nullptr, 10);
    return state;
}

std::string ProcessEra() {
    std::string boot;
    const std::string processes = TargetOfLink("/proc/self/ns/pid");  // with the number of the name space
    if (ReadSmallProcFile("/proc/sys/kernel/random/boot_id", boot) || processes.empty())
        return {};
    return boot.substr(0, boot.find('\n')) + " " + processes;
}

SystemError RequestEndOfProcess(ProcessId id, uint64_t startTime) {
    // Through the descriptor the signal does not reach a process that is given the identifier meanwhile.
    const Descriptor process(pidfd_open(static_cast<pid_t>(id), 0));
    if (!process.IsValid())
        return LastSystemError();
    if (StateOfProcess(id, startTime) != ProcessState::kAlive)
        return SystemError{ESRCH};
    struct stat owner {};
    if (stat(("/proc/" + std::to_string(id)).c_str(), &owner) != 0)
        return LastSystemError();
    if (owner.st_uid != geteuid())
        return SystemError{EPERM};
    return pidfd_send_signal(process.Get(), SIGTERM, nullptr, 0) == 0 ? SystemError{} : LastSystemError();
}

void SetCurrentProcessName(const std::string& name) {
    prctl(PR_SET_NAME, name.c_str());
}

bool IsReadinessAwaited() {
    return std::getenv(kReadyVariable) != nullptr;
}

void NotifyReadyForInput() {
    const char* descriptorText = std::getenv(kReadyVariable);
    if (descriptorText == nullptr)
        return;
    const int descriptor = static_cast<int>(std::strtol(descriptorText, nullptr, 10));
    unsetenv(kReadyVariable);
    if (descriptor != kReadyDescriptor)
        return;
    send(descriptor, "R", 1, MSG_NOSIGNAL);
    close(descriptor);
}

}  // namespace platform
