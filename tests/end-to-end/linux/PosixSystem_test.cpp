// What only a POSIX system has: signals, and programs that take the place of others.

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostWorld.h"

using testing::HasSubstr;

using PosixSystem = HostWorldTest;

TEST_F(PosixSystem, WhatStaysOpenEndsInOrderWhenItIsAskedTo) {
    const std::string document = world.WriteDocument("poster.pdf", {"Sample-Bold"});
    const struct {
        std::vector<std::string> words;
        int signal;
    } kCases[] = {{{"open", document, "--until-signal"}, SIGHUP},
                  {{"events", "--until-signal"}, SIGTERM},
                  {{"events"}, SIGINT}};
    for (const auto& [words, signal] : kCases) {
        const size_t before = world.Trace().size();
        std::vector<std::string> command{BuiltFile(HOST_PROGRAM)};
        command.insert(command.end(), words.begin(), words.end());
        TestProcess host(command);
        if (words.size() > 1)
            host.CloseInput();
        ASSERT_TRUE(Eventually([&] {  // the core's last words at its start: interrupts are caught by then
            return world.Trace().find("Exiting CommonFunctionality::Startup()", before) != std::string::npos;
        })) << words[0];
        kill(static_cast<pid_t>(host.Id()), signal);
        EXPECT_EQ(host.Finish().status, 128 + signal) << words[0];
        EXPECT_THAT(world.Trace().substr(before), HasSubstr("CloseAllFonts() returning 0")) << words[0];
    }
}

TEST_F(PosixSystem, OpenBecomesTheProgramWhichKeepsTheFontsAndNothingElseOfOurs) {
    world.AddFonts({"Other-Bold"});
    const std::string document = world.WriteDocument("a b.pdf", {"Sample-Bold", "Gone"});
    const std::string program = world.Path("inkscape-1");
    world.FontManager().Write("inkscape-1", R"(#!/bin/sh
echo $$ "$PLUGINCORE_ANSWERS" "$@"
readlink /proc/$$/fd/*
read line
)");
    chmod(program.c_str(), 0700);
    world.FontManager().Write("answers.json", "[]");
    TestProcess host({BuiltFile(HOST_PROGRAM), "--answers", world.Path("answers.json"), "open",
                      "file://" + document, "--fonts", "Other-Bold", "--", program, "{}", "-x", "{}.pdf"});
    const std::string words = host.ReadLine();
    EXPECT_EQ(words, std::to_string(host.Id()) + "  --app-id-tag=plugincore" + std::to_string(host.Id()) +
                         " " + document + " -x {}.pdf");
    EXPECT_EQ(world.VisibleFonts(), (std::set<std::string>{"Sample-Bold", "Other-Bold"}));
    host.WriteLine("");
    const ProgramResult result = host.Finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("a b.pdf is opened without Gone"));
    EXPECT_THAT(result.output, Not(HasSubstr("socket"))) << "of the agent";
    EXPECT_THAT(world.Trace(), HasSubstr("hostApp='Inkscape'")) << "by the program's name";
    EXPECT_TRUE(Eventually([&] { return world.VisibleFonts().empty(); })) << "it is over with the program";
}
