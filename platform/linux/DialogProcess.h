// The process that shows a dialog on behalf of this one, which is not a place for a toolkit.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Descriptor.h"

namespace platform {

struct DialogLimits {
    /// For how long a dialog stays that nobody touches.
    std::chrono::milliseconds unused = std::chrono::minutes(5);
    /// For how long the process may give no sign of life.
    std::chrono::milliseconds silence = std::chrono::seconds(30);
    size_t answers = size_t{4} << 20;  ///< bytes, signs of life included
};

/// One thread. What the host does with signals and children does not matter.
class DialogProcess {
public:
    /// Null, with the reason in `failure`, where the program cannot be started.
    static std::unique_ptr<DialogProcess> Start(const std::string& program, const DialogLimits& limits,
                                                std::string& failure);
    /// Ends the process, and its dialog with it.
    ~DialogProcess();
    DialogProcess(const DialogProcess&) = delete;
    DialogProcess& operator=(const DialogProcess&) = delete;

    /// Hands over a message; never waits. Lost where the process has not taken much of what came before.
    void Send(const nlohmann::json& message);
    /// The answer, for which it waits; nothing where none comes, and then HasFailed.
    std::optional<nlohmann::json> WaitForAnswer();
    /// The answer, if it is there.
    std::optional<nlohmann::json> LookForAnswer();

    bool HasFailed() const { return !mFailure.empty(); }
    /// What became of it, for people.
    const std::string& Failure() const { return mFailure; }
    /// The process said that it cannot show anything, and would do so the next time.
    bool IsHopeless() const { return mIsHopeless; }

private:
    using Clock = std::chrono::steady_clock;

    DialogProcess(pid_t process, Descriptor line, const DialogLimits& limits);
    /// Sends and receives what can be without waiting, after at most that time.
    void Exchange(std::chrono::milliseconds wait);
    bool SendSome();
    void ReceiveSome();
    std::optional<nlohmann::json> TakeAnswer();
    /// What a line says; the answer, if it is one.
    std::optional<nlohmann::json> Take(const std::string& line);
    void Fail(const std::string& failure);

    const pid_t mProcess;
    const Descriptor
        mHandle;  ///< of the process; the identifier may be another's once the host has collected it
    Descriptor mLine;
    const DialogLimits mLimits;
    std::string mOutgoing;
    std::string mIncoming;
    size_t mReceived = 0;
    Clock::time_point mLastSign = Clock::now();
    Clock::time_point mLastUse = Clock::now();
    std::string mFailure;
    bool mIsHopeless = false;
};

}  // namespace platform
