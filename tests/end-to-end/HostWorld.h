// A user's world with an agent, in which hosts run.
#pragma once

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "TestFiles.h"
#include "tests/support/TestWorld.h"

using nlohmann::json;

/// Folders with names that paths must survive, a font manager, and documents. Every process of a test gets
/// its folders from the environment.
class HostWorld {
public:
    ~HostWorld();

    const pellwick::test::TestWorld& FontManager() const { return mWorld; }
    /// Makes fonts and adds them to the font manager, whose agent is started for it; launch information is
    /// written.
    void AddFonts(const std::vector<std::string>& postScriptNames);
    /// A document that uses the fonts; its path.
    std::string WriteDocument(const std::string& name, const std::vector<std::string>& postScriptNames);
    std::string Path(const std::string& name) const { return mWorld.Path(name); }

    /// Runs the font manager's command line with the words of the text; its exit status.
    int Pellwick(const std::string& words) const;
    /// Runs plugincore-host to its end.
    ProgramResult RunHost(std::vector<std::string> arguments) const;
    /// PostScript names of the font manager's fonts that a program of its own, fc-list, sees.
    std::set<std::string> VisibleFonts() const;
    /// The process identifier of the agent; 0 when none runs.
    platform::ProcessId Agent() const;
    /// Ends the agent at once and waits until it is gone.
    void KillAgent() const;
    void RemoveLaunchInformation() const;
    /// The trace that the processes of this world wrote so far.
    std::string Trace() const { return ContentOf(Path("trace")); }

private:
    pellwick::test::TestWorld mWorld{"Мои шрифты 字体 🙂"};
    const ScopedVariable mVariables[5] = {{"XDG_DATA_DIRS", Path("all users")},
                                          {"PLUGINCORE_DEBUG_OUTPUT", Path("trace")},
                                          {"PLUGINCORE_ANSWERS", ""},
                                          {"PLUGINCORE_PRESENTER", "silent"},
                                          {"LC_ALL", "C.UTF-8"}};
};

/// A world with one font.
class HostWorldTest : public testing::Test {
protected:
    HostWorldTest() { world.AddFonts({"Sample-Bold"}); }

    HostWorld world;
};

/// Where what the pages of docs/ say is tried.
class PageTest : public HostWorldTest {
protected:
    void SetUp() override {
        if (!HasSources())
            GTEST_SKIP() << kNoSources;
    }
};

int CountOf(const std::string& text, const std::string& part);
/// `otherwise`: where the variable is not set.
int NumberFromEnvironment(const char* variable, int otherwise);

/// A host that takes calls one by one, and has a panel.
class ScriptedHost {
public:
    ScriptedHost();

    /// Writes a line of a script; what it is answered with, beside the messages to the panel.
    json Exchange(const json& line);
    json Call(const std::string& name, const json& arguments = json::object());
    /// Sends a message as the panel does, or a text in its place; the messages that it is answered with at
    /// once. Messages in both directions are held against the schemas.
    std::vector<json> Panel(const json& message);
    std::vector<json> TakePanelMessages() { return std::exchange(mPanelMessages, {}); }
    uint32_t Open(const std::string& path);
    uint32_t Close(const std::string& path);
    void SetPreference(const std::string& key, int value);
    /// Idles until the trace of its world holds the text; false when it never does.
    bool IdleUntilTraced(const HostWorld& world, const std::string& text);
    void Start();
    ProgramResult Finish() { return mProcess.Finish(); }

private:
    TestProcess mProcess;
    std::vector<json> mPanelMessages;
};
