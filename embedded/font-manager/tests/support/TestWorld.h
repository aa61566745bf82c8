// A user's world for one test: folders of its own, and an agent that lives in them.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ipc/Message.h"
#include "platform/Processes.h"

namespace pellwick::test {

/// What a program that was run to its end left behind.
struct ProgramResult {
    int status = -1;  ///< exit status; 128 + N when signal N ended it
    std::string output;
    std::string errors;
};

/// Points the environment of this process at a temporary folder of its own for as long as it lives, and stops
/// the agent in it, if one runs. One at a time.
class TestWorld {
public:
    /// `name` becomes part of the folder's path.
    explicit TestWorld(const std::string& name = "world");
    ~TestWorld();
    TestWorld(const TestWorld&) = delete;
    TestWorld& operator=(const TestWorld&) = delete;

    /// PATH below the temporary folder.
    std::string Path(const std::string& path) const { return mFolder + "/" + path; }
    /// Writes a file and the folders that it needs; its path.
    std::string Write(const std::string& path, const std::string& content) const;
    /// Writes a font with that PostScript name, "Family-Style"; its path.
    std::string WriteFont(const std::string& postScriptName, const std::string& version = "1.0") const;

    void StartAgent();
    /// Ends the agent with a signal and waits until it is gone.
    void KillAgent(int signal);
    /// Sends the agent a signal that does not end it.
    void SignalAgent(int signal) const;
    platform::ProcessId AgentProcess() const { return mAgent; }

    /// Runs the command line.
    ProgramResult Run(const std::vector<std::string>& arguments) const;
    /// The same with --json: what it printed.
    Json RunForJson(std::vector<std::string> arguments) const;

    /// Files of active fonts, as any program would find them.
    std::vector<std::string> LinkedFiles() const;

private:
    std::string mFolder;
    platform::ProcessId mAgent = 0;
    std::map<std::string, std::string> mSavedVariables;
};

/// A child process with pipes to its standard streams; it is killed and collected when the object dies.
class TestProcess {
public:
    explicit TestProcess(const std::vector<std::string>& command);
    ~TestProcess();
    TestProcess(const TestProcess&) = delete;
    TestProcess& operator=(const TestProcess&) = delete;

    platform::ProcessId Id() const { return mProcess; }
    /// The next line of output, without its end; empty when there is none any more.
    std::string ReadLine();
    /// Writes a line to its input.
    void WriteLine(const std::string& line);
    void CloseInput();
    void Signal(int signal) const;
    /// Waits for the end.
    ProgramResult Finish();

private:
    platform::ProcessId mProcess = 0;
    int mInput = -1;
    int mOutput = -1;
    int mErrors = -1;
    bool mIsCollected = false;
};

/// Waits, for as long as a test may take, until the condition holds; false when it never does.
bool Eventually(const std::function<bool()>& condition);

}  // namespace pellwick::test
