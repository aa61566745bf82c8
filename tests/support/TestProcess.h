// Child processes of a test, and waiting for what they do.
#pragma once

#include <functional>

#include "StartedProgram.h"

/// What a program that was run to its end left behind.
struct ProgramResult {
    int status = -1;  ///< exit status; 128 + 9 when it was killed, on POSIX 128 + N when signal N ended it
    std::string output;
    std::string errors;
};

/// A child process with pipes to its standard streams; it is killed and collected when the object dies. It
/// inherits nothing else. Texts are UTF-8. One thread.
class TestProcess {
public:
    /// Starts the program at the full path `command[0]`. Throws when that fails.
    explicit TestProcess(const std::vector<std::string>& command);
    ~TestProcess();

    platform::ProcessId Id() const;
    /// The next line of output, without its end ("\n" or "\r\n"); empty when there is none any more.
    std::string ReadLine();
    /// Writes a line to its input.
    void WriteLine(const std::string& line);
    void CloseInput();
    /// Ends it by force, without waiting until it is gone.
    void Kill() const { KillProcess(Id()); }
    void Resume() const { ResumeProcess(Id()); }
    /// Closes its input and waits for the end. What ReadLine gave is not given again.
    ProgramResult Finish();

private:
    struct State;
    std::unique_ptr<State> mState;
};

/// Waits, for as long as a test may take, until the condition holds; false when it never does.
bool Eventually(const std::function<bool()>& condition);
