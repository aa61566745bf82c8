#include "platform/Worker.h"

#include <fcntl.h>
#include <poll.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "SpawnSettings.h"

namespace platform {
namespace {

using std::chrono::steady_clock;

// Where the worker finds its end of the line, and the argument that says so.
constexpr int kLine = 3;
constexpr char kWorkerArgument[] = "--worker";
// A request says how large the file is, since the worker may not ask. An answer has its own size in front.
struct RequestHeader {
    uint64_t fileSize;
    uint32_t size;
};
constexpr size_t kMaxRequest = 65536;

/// Sends all of it; `descriptor` goes along with the first byte unless it is negative. `flags`: MSG_DONTWAIT
/// fails where the other side has not taken what it was sent before.
bool SendAll(int line, std::string_view bytes, int descriptor, int flags = 0) {
    while (!bytes.empty()) {
        iovec piece{const_cast<char*>(bytes.data()), bytes.size()};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        msghdr message{};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        if (descriptor >= 0) {
            message.msg_control = control.data();
            message.msg_controllen = control.size();
            cmsghdr* header = CMSG_FIRSTHDR(&message);
            header->cmsg_level = SOL_SOCKET;
            header->cmsg_type = SCM_RIGHTS;
            header->cmsg_len = CMSG_LEN(sizeof descriptor);
            std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
        }
        const ssize_t sent = sendmsg(line, &message, MSG_NOSIGNAL | flags);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(sent));
        descriptor = -1;
    }
    return true;
}

/// Receives so many bytes, and a descriptor if one comes along.
bool ReceiveAll(int line, void* buffer, size_t size, int& descriptor) {
    for (size_t received = 0; received < size;) {
        iovec piece{static_cast<char*>(buffer) + received, size - received};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        msghdr message{};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        const ssize_t count = recvmsg(line, &message, MSG_CMSG_CLOEXEC);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        const cmsghdr* header = CMSG_FIRSTHDR(&message);
        if (header != nullptr && header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_RIGHTS)
            std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
        received += static_cast<size_t>(count);
    }
    return true;
}

/// Waits until there is something to receive, or the other end is closed; false when the time is over first.
bool WaitForInput(int line, steady_clock::time_point deadline) {
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now()).count();
        pollfd wanted{line, POLLIN, 0};
        const int count = poll(&wanted, 1, static_cast<int>(std::clamp<int64_t>(left, 0, 1 << 30)));
        if (count != 0 && !(count < 0 && errno == EINTR))
            return true;
        if (left <= 0)
            return false;
    }
}

constexpr char kTookTooLong[] = "took too long";
constexpr char kAnsweredTooMuch[] = "answered with too much";

std::string ProblemOf(int status) {
    if (!WIFSIGNALED(status))
        return "gave up";
    switch (WTERMSIG(status)) {
        case SIGPROF:
            return kTookTooLong;
        case SIGSYS:
            return "tried to do what it must not";
        default:
            return "crashed (signal " + std::to_string(WTERMSIG(status)) + ")";
    }
}

class LinuxWorker : public Worker {
public:
    LinuxWorker(pid_t process, int line, const WorkerLimits& limits)
        : mProcess(process), mLine(line), mLimits(limits) {}
    ~LinuxWorker() override {
        End();
        close(mLine);
    }

    Outcome Exchange(std::string_view request, const ReadOnlyFile& file, std::string& answer,
                     std::string& problem) override {
        problem.clear();
        if (HandOver(request, file) && TakeAnswer(answer, problem))
            return Outcome::kAnswered;
        const int status = End();
        if (mIsCancelled)
            problem = "was cancelled";
        else if (problem.empty())
            problem = ProblemOf(status);
        if (WIFEXITED(status) && WEXITSTATUS(status) == kUnfitStatus)
            return Outcome::kUnfit;
        const bool isOverLimit = problem == kTookTooLong || problem == kAnsweredTooMuch;
        return isOverLimit ? Outcome::kOverLimit : Outcome::kDied;
    }
    /// Wakes the thread that exchanges, which ends the process.
    void Cancel() override {
        mIsCancelled = true;
        shutdown(mLine, SHUT_RDWR);
    }

private:
    bool HandOver(std::string_view request, const ReadOnlyFile& file) {
        RequestHeader header{};
        if (request.size() > kMaxRequest || (file.IsOpen() && file.Size(header.fileSize)))
            return false;
        header.size = static_cast<uint32_t>(request.size());
        std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
        bytes += request;
        // A worker that reads its requests has room for the next one.
        return SendAll(mLine, bytes, static_cast<int>(file.NativeHandle()), MSG_DONTWAIT);
    }
    bool TakeAnswer(std::string& answer, std::string& problem) {
        const auto deadline = steady_clock::now() + mLimits.time;
        uint32_t size = 0;
        if (!ReceiveBy(deadline, reinterpret_cast<char*>(&size), sizeof size, problem))
            return false;
        if (size > mLimits.answerSize) {
            problem = kAnsweredTooMuch;
            return false;
        }
        answer.resize(size);
        return ReceiveBy(deadline, answer.data(), size, problem);
    }
    bool ReceiveBy(steady_clock::time_point deadline, char* buffer, size_t size, std::string& problem) {
        for (size_t received = 0; received < size;) {
            if (!WaitForInput(mLine, deadline)) {
                problem = kTookTooLong;
                return false;
            }
            const ssize_t count = recv(mLine, buffer + received, size - received, MSG_DONTWAIT);
            if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN))
                return false;
            received += static_cast<size_t>(std::max<ssize_t>(count, 0));
        }
        return true;
    }
    /// How the process ended; one that was ending already is not changed by it.
    int End() {
        if (!std::exchange(mIsRunning, false))
            return 0;
        int status = 0;
        kill(mProcess, SIGKILL);
        while (waitpid(mProcess, &status, 0) < 0 && errno == EINTR) {
        }
        return status;
    }

    const pid_t mProcess;
    const int mLine;
    const WorkerLimits mLimits;
    std::atomic<bool> mIsCancelled{false};
    bool mIsRunning = true;
};

/// With the system's own way with every signal.
int Spawn(const std::string& program, int line, Worker::Variables variables, pid_t& process) {
    sigset_t all;
    sigfillset(&all);
    std::string path = program;
    std::string argument = kWorkerArgument;
    const std::array<char*, 3> words = {path.data(), argument.data(), nullptr};
    const std::array<char*, 1> none = {nullptr};
    return SpawnSettings(line, kLine, all)
        .Spawn(path.c_str(), words.data(), variables == Worker::Variables::kOurs ? environ : none.data(),
               process);
}

#ifndef PLUGINCORE_UNCONFINED

bool Limit(__rlimit_resource resource, uint64_t value) {
    const rlimit limit{value, value};
    return setrlimit(resource, &limit) == 0;
}

/// What is left to a worker: its memory, its time and the line.
bool RestrictSystemCalls() {
    const std::unique_ptr<void, void (*)(void*)> filter(seccomp_init(SCMP_ACT_KILL_PROCESS), seccomp_release);
    if (!filter)
        return false;
    bool isComplete = true;
    const auto allow = [&](int call) {
        isComplete = isComplete && seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 0) == 0;
    };
    const auto allowWith = [&](int call, const scmp_arg_cmp& argument) {
        isComplete =
            isComplete && seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, call, 1, &argument) == 0;
    };
    for (const int call :
         {SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(brk), SCMP_SYS(madvise), SCMP_SYS(close),
          SCMP_SYS(futex), SCMP_SYS(getrandom), SCMP_SYS(setitimer), SCMP_SYS(clock_gettime),
          SCMP_SYS(rt_sigreturn), SCMP_SYS(rt_sigprocmask), SCMP_SYS(getpid), SCMP_SYS(gettid),
          SCMP_SYS(restart_syscall), SCMP_SYS(exit), SCMP_SYS(exit_group),
          SCMP_SYS(sysinfo)})  // qsort of the C library asks how much memory there is
        allow(call);
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)})  // never to run what was written
        allowWith(call, SCMP_A2_64(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0));
    for (const int call : {SCMP_SYS(recvmsg), SCMP_SYS(sendmsg)})
        allowWith(call, SCMP_A0_64(SCMP_CMP_EQ, kLine, 0));
    allowWith(SCMP_SYS(tgkill), SCMP_A0_64(SCMP_CMP_EQ, static_cast<uint64_t>(getpid()), 0));  // to abort
    return isComplete && seccomp_load(filter.get()) == 0;
}

#endif

class LinuxWorkerLine : public WorkerLine {
public:
    ~LinuxWorkerLine() override { Unmap(); }

    bool Confine([[maybe_unused]] const WorkerLimits& limits) override {
#ifdef PLUGINCORE_UNCONFINED
        // A sanitizer reserves more address space than there is, and makes calls of its own.
        return true;
#else
        mProcessorTime = limits.processorTime;
        return Limit(RLIMIT_CORE, 0) && Limit(RLIMIT_AS, limits.memory) &&
               prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && RestrictSystemCalls();
#endif
    }

    bool Receive(std::string& request, std::string_view& file) override {
        SetTimer({});
        RequestHeader header{};
        int descriptor = -1;
        if (!ReceiveAll(kLine, &header, sizeof header, descriptor) || header.size > kMaxRequest)
            return false;
        SetTimer(mProcessorTime);
        request.resize(header.size);
        if (!ReceiveAll(kLine, request.data(), request.size(), descriptor))
            return false;
        file = Map(descriptor, header.fileSize);
        if (descriptor >= 0)
            close(descriptor);
        return true;
    }

    bool Answer(std::string_view answer) override {
        Unmap();
        const auto size = static_cast<uint32_t>(answer.size());
        const std::string_view header(reinterpret_cast<const char*>(&size), sizeof size);
        return SendAll(kLine, header, -1) && SendAll(kLine, answer, -1);
    }

private:
    std::string_view Map(int descriptor, uint64_t size) {
        if (descriptor < 0 || size == 0)
            return {};
        void* content = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
        if (content == MAP_FAILED)
            return {};
        mContent = content;
        mSize = size;
        return {static_cast<const char*>(content), size};
    }
    void Unmap() {
        if (mContent != nullptr)
            munmap(std::exchange(mContent, nullptr), mSize);
    }
    /// The signal of this timer ends the process.
    static void SetTimer(std::chrono::milliseconds time) {
        itimerval timer{};
        timer.it_value.tv_sec = time.count() / 1000;
        timer.it_value.tv_usec = time.count() % 1000 * 1000;
        setitimer(ITIMER_PROF, &timer, nullptr);
    }

    std::chrono::milliseconds mProcessorTime{};
    void* mContent = nullptr;
    size_t mSize = 0;
};

}  // namespace

std::unique_ptr<Worker> Worker::Start(const std::string& executablePath, const WorkerLimits& limits,
                                      SystemError& error, Variables variables) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        error = LastSystemError();
        return nullptr;
    }
    pid_t process = 0;
    error.code = Spawn(executablePath, ends[1], variables, process);
    close(ends[1]);
    if (error) {
        close(ends[0]);
        return nullptr;
    }
    return std::make_unique<LinuxWorker>(process, ends[0], limits);
}

std::unique_ptr<WorkerLine> WorkerLine::Open(int argumentCount, char** arguments) {
    if (argumentCount != 2 || std::strcmp(arguments[1], kWorkerArgument) != 0)
        return nullptr;
    return std::make_unique<LinuxWorkerLine>();
}

}  // namespace platform
