// A user's world for one test: folders of its own, and an agent that lives in them.
#pragma once

#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "TestProcess.h"
#include "ipc/Message.h"

namespace pellwick::test {

/// Points the environment of this process at a temporary folder of its own for as long as it lives, and stops
/// the agent in it, if one runs. One at a time.
class TestWorld {
public:
    /// `name` becomes part of the folder's path.
    explicit TestWorld(std::string name = "world");
    ~TestWorld();

    /// PATH below the temporary folder, with the system's own separators.
    std::string Path(const std::string& path) const;
    /// Writes a file and the folders that it needs; its path.
    std::string Write(const std::string& path, const std::string& content) const;
    /// Writes a font with that PostScript name, "Family-Style"; its path.
    std::string WriteFont(const std::string& postScriptName, const std::string& version = "1.0") const;

    /// Starts an agent of this world's own, which no command line started, and waits until it serves.
    void StartAgent();
    /// Waits until that agent is gone, which something has told to end in order.
    void WaitForAgentToEnd();
    /// Has the command line end that agent, and waits until it is gone.
    void StopAgent();
    /// Ends that agent by force and waits until it is gone.
    void KillAgent();
    platform::ProcessId AgentProcess() const { return mAgent ? mAgent->Id() : 0; }

    /// Runs the command line.
    ProgramResult Run(const std::vector<std::string>& arguments) const;
    /// The same with --json: what it printed.
    Json RunForJson(std::vector<std::string> arguments) const;

    /// Files of active fonts, as any program would find them: Linux: those in the folder for them. Windows:
    /// what the agent, which must run, sees in the system's table.
    std::vector<std::string> ActiveFiles() const;
    /// Takes away what the font manager keeps of its fonts.
    void EmptyVault() const;
    /// Every file below PATH, at any depth.
    std::vector<std::string> FilesBelow(const std::string& path) const;
    /// Those that the font manager keeps of its fonts.
    std::vector<std::string> VaultFiles() const { return FilesBelow("data/Vantorix/Pellwick/vault"); }
    /// What the agent has logged.
    std::string AgentLog() const;

private:
    const TemporaryFolder mTemporaryFolder;
    const std::string mName;
    std::unique_ptr<TestProcess> mAgent;
    const ScopedVariable mVariables[7] = {{"HOME", mTemporaryFolder / mName},
                                          {"XDG_DATA_HOME", Path("data")},
                                          {"XDG_CACHE_HOME", Path("cache")},
                                          {"XDG_CONFIG_HOME", Path("config")},
                                          {"XDG_RUNTIME_DIR", ""},
                                          {"TMPDIR", Path("tmp")},
                                          {"USER", "tester"}};
};

/// The PostScript names of font records.
std::vector<std::string> NamesOf(const Json& fonts);
/// What blanks separate.
std::vector<std::string> WordsOf(const std::string& text);

}  // namespace pellwick::test
