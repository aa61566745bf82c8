// What other users of the machine could get at.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "common/Locations.h"
#include "platform/Files.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;

constexpr fs::perms kOthersWrite = fs::perms::group_write | fs::perms::others_write;
constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;

/// New files are open to everybody, unless their makers take care.
class OpenMask {
public:
    OpenMask() : mSaved(umask(0)) {}
    ~OpenMask() { umask(mSaved); }
    OpenMask(const OpenMask&) = delete;
    OpenMask& operator=(const OpenMask&) = delete;

private:
    const mode_t mSaved;
};

/// Everything of ours is closed to others, at any depth.
void ExpectPrivate(const TestWorld& world) {
    int count = 0;
    for (const char* ours : {"data/Vantorix", "data/fonts/Vantorix", "cache/Vantorix", "config/Vantorix"}) {
        const fs::path folder = world.Path(ours);
        if (!fs::exists(folder))
            continue;
        EXPECT_EQ(fs::status(folder).permissions() & kOthers, fs::perms::none) << folder;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_symlink())
                continue;
            const fs::perms closed = entry.is_directory() ? kOthers : kOthersWrite;
            EXPECT_EQ(entry.status().permissions() & closed, fs::perms::none) << entry.path();
            ++count;
        }
    }
    EXPECT_GT(count, 0);
}

TEST(OtherUsers, NothingIsLeftOpenWhateverTheMaskAndWhoeverComesFirst) {
    using Step = void (*)(TestWorld&);
    const Step launchInfo = [](TestWorld& world) { world.RunForJson({"launch-info"}); };
    const Step library = [](TestWorld&) {
        static const TestLibrary& bound = *new TestLibrary;
        PluginThreadInstanceRef thread = nullptr;
        ASSERT_EQ(bound.InitThreadInstance(&thread), 0u);
        EXPECT_EQ(bound.BeginLogging(thread, "host.log"), 0u);
        EXPECT_EQ(bound.Log(thread, "a line\n"), 0u);
        EXPECT_EQ(bound.DestroyThreadInstance(thread), 0u);
        EXPECT_EQ(bound.OSCreateDirectory(Locations::OfThisUser().logFolder.c_str()), 0u);
        EXPECT_EQ(umask(0), 0u) << "a library leaves the host's mask alone";
    };
    const Step agent = [](TestWorld& world) {
        world.StartAgent();
        world.WriteFont("Sample-Bold");
        const Json font = world.RunForJson({"add", world.Path("fonts")});
        world.RunForJson({"activate", "Sample-Bold"});
    };
    for (const auto& steps : {std::vector<Step>{agent, library, launchInfo},
                              {library},
                              {launchInfo},
                              {library, agent},
                              {launchInfo, agent, library}}) {
        TestWorld world;
        const OpenMask mask;
        for (const Step step : steps)
            step(world);
        ExpectPrivate(world);
    }
}

TEST(OtherUsers, WhatIsOpenIsClosedWhenTheAgentStarts) {
    TestWorld world;
    world.Write("data/Vantorix/Logs/Pellwick.log", "of an earlier agent\n");
    world.Write("data/Vantorix/Pellwick/vault/ab/note", "");
    world.Write("data/fonts/Vantorix/ab/mine.ttf", "the user's own");
    world.Write("data/fonts/others.ttf", "another program's");
    world.Write("cache/Vantorix/Pellwick/previews/cd/image", "");
    world.Write("config/Vantorix/Preferences.json", "{}");
    world.Write("elsewhere/file", "");
    fs::create_directory_symlink(world.Path("elsewhere"), world.Path("data/Vantorix/link"));
    for (const auto& entry : fs::recursive_directory_iterator(world.Path("."))) {
        const bool isOpen = entry.is_directory() || entry.path().filename() == "Pellwick.log";
        if (!entry.is_symlink())
            fs::permissions(entry.path(), isOpen ? fs::perms::all : fs::perms::owner_read);
    }
    world.StartAgent();
    ExpectPrivate(world);
    EXPECT_EQ(fs::status(world.Path("data/fonts")).permissions(), fs::perms::all) << "it is not ours";
    EXPECT_EQ(fs::status(world.Path("elsewhere")).permissions(), fs::perms::all);
    std::string log;
    platform::ReadWholeFile(Locations::OfThisUser().logFolder + "/Pellwick.log", log, 10000);
    EXPECT_EQ(log.find("of an earlier agent"), 0u);
    EXPECT_NE(log.find("folders put right: "), std::string::npos) << log;
}

}  // namespace
}  // namespace pellwick::test
