// What only a POSIX system has: signals, rights of files, named pipes.

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostWorld.h"
#include "TestFiles.h"

using testing::HasSubstr;

TEST(EventsCommand, EndsInOrderWhenItIsInterrupted) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    TestProcess events({BuiltFile(HOST_PROGRAM), "events"});
    ASSERT_TRUE(
        Eventually([&] { return !world.Trace().empty(); }));  // the core's: interrupts are caught by then
    kill(static_cast<pid_t>(events.Id()), SIGINT);
    EXPECT_EQ(events.Finish().status, 0);
    EXPECT_THAT(world.Trace(), HasSubstr("CloseAllFonts() returning 0")) << "the core was ended";
}

TEST(CommandLine, WhatMayNotBeReadOrNeverEndsIsReportedNotOpened) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    const std::string document = world.WriteDocument("secret.pdf", {"Sample-Bold"});
    chmod(document.c_str(), 0);
    const std::string pipe = world.Path("pipe.ai");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto result = world.RunHost({"fonts", "--json", pipe, document});
    EXPECT_EQ(result.status, 1);
    std::istringstream lines(result.output);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(json::parse(line)["error"], "GFileSystem::kInvalidPath");
    std::getline(lines, line);
    if (getuid() != 0) {  // who may read everything
        EXPECT_EQ(json::parse(line)["error"], "GFile::kOpenFailed");
    }
}
