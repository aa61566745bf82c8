// Processes for work that may go wrong: they read what nobody vouches for, may crash or never come to an end,
// and get at nothing but their memory and what they are handed.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Files.h"
#include "platform/SystemError.h"

namespace platform {

/// Both sides give the same limits: which of them sets a limit depends on the system.
struct WorkerLimits {
    uint64_t memory = 0;                        ///< bytes of address space, with the files handed over
    std::chrono::milliseconds processorTime{};  ///< for each request
    std::chrono::milliseconds time{};           ///< for each request, waiting for the processor included
    size_t answerSize = 0;                      ///< bytes
};

/// The side that has the work done. One thread, but for Cancel.
class Worker {
public:
    virtual ~Worker() = default;  ///< ends the process

    /// Linux: what the process gets of our environment. Windows: it always gets all.
    enum class Variables {
        kNone,
        kOurs  ///< for one that looks for what is the user's
    };
    /// Starts the program, whose main function is to make a WorkerLine. Null and the reason in `error` on
    /// failure.
    static std::unique_ptr<Worker> Start(const std::string& executablePath, const WorkerLimits& limits,
                                         SystemError& error, Variables variables = Variables::kNone);

    enum class Outcome {
        kAnswered,
        kOverLimit,  ///< took too long or answered with too much
        kDied,       ///< crashed, or was ended: perhaps by something else than the request
        kUnfit       ///< it could not be confined (kUnfitStatus), and has not looked at the request
    };
    /// Hands over a request, with the file if it is open, and waits for the answer. Without one the process
    /// is ended, and `problem` says for people what it did, as in "took too long".
    virtual Outcome Exchange(std::string_view request, const ReadOnlyFile& file, std::string& answer,
                             std::string& problem) = 0;
    /// Ends the process, and with it an Exchange under way. Any thread.
    virtual void Cancel() = 0;
};

/// The exit status of a worker's program where WorkerLine::Confine fails.
constexpr int kUnfitStatus = 3;

/// The side that works.
class WorkerLine {
public:
    virtual ~WorkerLine() = default;

    /// In a process that Worker::Start made, with the arguments of its main function. Null in any other.
    static std::unique_ptr<WorkerLine> Open(int argumentCount, char** arguments);

    /// From here on the process is held to the limits, opens no file, connection or process, and is ended
    /// when it tries. Linux: by seccomp. Windows: by the job it is in and, as far as the system goes along,
    /// a low integrity level. To be called before anything foreign is read, and after what needs files, such
    /// as loading a conversion of the iconv library. False when that cannot be had.
    virtual bool Confine(const WorkerLimits& limits) = 0;
    /// Waits for the next request; false when there will be none. `file`: the content of the file handed over,
    /// if any, valid until it is answered: whoever waits for the answer may then replace the file.
    virtual bool Receive(std::string& request, std::string_view& file) = 0;
    /// Comes after each request. False when nobody takes it any more.
    virtual bool Answer(std::string_view answer) = 0;
};

/// What the main function of a worker's program does: has `work` serve the line. The exit status of the
/// process: that of `work`, 1 where it throws, 2 where no Worker has started the process.
int RunWorker(int argumentCount, char** arguments, int (*work)(WorkerLine& line));

}  // namespace platform
