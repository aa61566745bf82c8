#include "DialogProcess.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include "DialogMessages.h"
#include "SpawnSettings.h"
#include "platform/SystemError.h"

extern "C" {  // which the header of glibc 2.36 does not say itself
#include <sys/pidfd.h>
}

namespace platform {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;

/// What waits to be sent at most, where more is being sent.
constexpr size_t kLargestBacklog = 65536;

/// With the system's own way with every signal.
int Spawn(const std::string& program, int line, pid_t& process) {
    sigset_t all;
    sigfillset(&all);
    std::string path = program;
    std::string argument = dialog_messages::kLineArgument;
    const std::array<char*, 3> words = {path.data(), argument.data(), nullptr};
    return SpawnSettings(line, dialog_messages::kLine, all)
        .Spawn(path.c_str(), words.data(), environ, process);
}

}  // namespace

std::unique_ptr<DialogProcess> DialogProcess::Start(const std::string& program, const DialogLimits& limits,
                                                    std::string& failure) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        failure = SystemErrorText(LastSystemError());
        return nullptr;
    }
    Descriptor line(ends[0]);
    pid_t process = 0;
    const SystemError error{Spawn(program, ends[1], process)};
    close(ends[1]);
    if (error) {
        failure = "'" + program + "' cannot be started: " + SystemErrorText(error);
        return nullptr;
    }
    return std::unique_ptr<DialogProcess>(new DialogProcess(process, std::move(line), limits));
}

DialogProcess::DialogProcess(pid_t process, Descriptor line, const DialogLimits& limits)
    : mProcess(process), mHandle(pidfd_open(process, 0)), mLine(std::move(line)), mLimits(limits) {}

DialogProcess::~DialogProcess() {
    mLine = {};  // which ends the process where no descriptor was left for its handle
    if (mHandle.IsValid())
        pidfd_send_signal(mHandle.Get(), SIGKILL, nullptr, 0);
    siginfo_t ignored{};
    const auto wait = [&] {
        return mHandle.IsValid() ? waitid(P_PIDFD, static_cast<id_t>(mHandle.Get()), &ignored, WEXITED)
                                 : waitid(P_PID, static_cast<id_t>(mProcess), &ignored, WEXITED);
    };
    while (wait() != 0 && errno == EINTR) {
    }
}

void DialogProcess::Send(const json& message) {
    if (mOutgoing.size() < kLargestBacklog)
        mOutgoing += dialog_messages::LineOf(message);
    if (!HasFailed())
        SendSome();
}

std::optional<json> DialogProcess::WaitForAnswer() {
    mLastSign = mLastUse = Clock::now();
    for (;;) {
        std::optional<json> answer = TakeAnswer();
        if (answer || HasFailed())
            return answer;
        const Clock::time_point now = Clock::now();
        if (now - mLastUse >= mLimits.unused)
            Fail("nobody has touched it for " + std::to_string(mLimits.unused.count() / 1000) + " seconds");
        else if (now - mLastSign >= mLimits.silence)
            Fail("its process does not react");
        else
            Exchange(std::chrono::ceil<milliseconds>(
                std::min(mLastUse + mLimits.unused, mLastSign + mLimits.silence) - now));
    }
}

std::optional<json> DialogProcess::LookForAnswer() {
    if (!HasFailed())
        Exchange(milliseconds(0));
    return TakeAnswer();
}

void DialogProcess::Exchange(milliseconds wait) {
    pollfd line{mLine.Get(), static_cast<short>(mOutgoing.empty() ? POLLIN : POLLIN | POLLOUT), 0};
    if (poll(&line, 1, static_cast<int>(std::min<int64_t>(wait.count(), 1 << 30))) <= 0)
        return;
    if ((line.revents & POLLOUT) != 0 && SendSome())
        mLastSign = Clock::now();
    if ((line.revents & (POLLIN | POLLHUP | POLLERR)) != 0)
        ReceiveSome();
}

bool DialogProcess::SendSome() {
    const ssize_t sent = send(mLine.Get(), mOutgoing.data(), mOutgoing.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    // Whether the other end is gone shows when there is nothing left to receive.
    if (sent > 0)
        mOutgoing.erase(0, static_cast<size_t>(sent));
    else if (sent < 0 && errno == EPIPE)
        mOutgoing.clear();
    return sent > 0;
}

void DialogProcess::ReceiveSome() {
    std::array<char, 65536> piece;
    const ssize_t size = recv(mLine.Get(), piece.data(), piece.size(), MSG_DONTWAIT);
    if (size > 0) {
        mIncoming.append(piece.data(), static_cast<size_t>(size));
        mReceived += static_cast<size_t>(size);
    } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
        Fail("its process has ended");
    }
    if (mReceived > mLimits.answers)
        Fail("its process says too much");
}

std::optional<json> DialogProcess::TakeAnswer() {
    for (size_t end = 0; (end = mIncoming.find('\n')) != std::string::npos;) {
        const std::string line = mIncoming.substr(0, end);
        mIncoming.erase(0, end + 1);
        if (std::optional<json> answer = Take(line))
            return answer;
    }
    return std::nullopt;
}

std::optional<json> DialogProcess::Take(const std::string& line) {
    const json message = json::parse(line, nullptr, false);
    const json said = message.is_object() ? message : json::object();
    if (said.contains("answer"))
        return said["answer"];
    if (said.contains("failure") && said["failure"].is_string()) {
        Fail(said["failure"].get<std::string>());
        mIsHopeless = true;
    } else if (said.contains("alive")) {
        mLastSign = Clock::now();
        if (said.value("used", json()) == true)
            mLastUse = mLastSign;
    } else {
        Fail("its process says what nobody understands");
    }
    return std::nullopt;
}

void DialogProcess::Fail(const std::string& failure) {
    if (!HasFailed())
        mFailure = failure;
}

}  // namespace platform
