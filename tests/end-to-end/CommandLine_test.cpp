#include <sstream>
#include <thread>

#include "HostWorld.h"
#include "PluginCoreInterface.h"
#include "platform/System.h"

using testing::HasSubstr;

using CommandLine = HostWorldTest;

TEST_F(CommandLine, WhatIsMissingIsNamedAndTheExitStatus) {
    const std::string text = world.FontManager().Write("Notizen 字.txt", "no document at all");
    auto result = world.RunHost({"open", text, "--close"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("no fonts"));
    // One bad path does not keep the others closed.
    const std::string document = world.WriteDocument("a.pdf", {"Sample-Bold"});
    result = world.RunHost({"--json", "open", world.Path("missing.pdf"), document, "--close"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("missing.pdf"));
    EXPECT_EQ(json::parse(result.output)["numFontsActivated"], 1);
    result = world.RunHost({"open", world.WriteDocument("a.ai", {"Sample-Bold", "Gone"}), "--close"});
    EXPECT_EQ(result.status, 3) << result.errors;
    for (const char* part : {"Sample-Bold", "Gone", "missing"})
        EXPECT_THAT(result.output, HasSubstr(part));
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{}, {"open"}, {"open", "x.pdf", "--for", "soon"}})
        EXPECT_EQ(world.RunHost(wrong).status, 2);
}

TEST_F(CommandLine, WhatIsNoReadableDocumentIsReportedNotOpened) {
    const std::string empty = world.FontManager().Write("empty.psd", "");
    const auto result = world.RunHost({"fonts", "--json", world.Path("."), world.Path("none.ai"), empty});
    EXPECT_EQ(result.status, 1);
    std::istringstream lines(result.output);
    std::string line;
    for (const char* error : {"GFileSystem::kInvalidPath", "GFileSystem::kFileNotFound"}) {
        std::getline(lines, line);
        EXPECT_EQ(json::parse(line)["error"], error);
        EXPECT_GT(json::parse(line)["code"], 0);
    }
    std::getline(lines, line);
    EXPECT_EQ(json::parse(line), (json{{"file", empty}, {"fonts", json::array()}, {"reader", "search"}}));
    const std::string evil = world.FontManager().Write("evil.ai", "/FontName /Red\033[31m\nTwo /F >>");
    EXPECT_EQ(world.RunHost({"fonts", evil}).output, "Red\\x1B[31m\\x0ATwo\n");
    // The core opens such a document all the same, without fonts.
    const auto opened = world.RunHost({"--json", "open", empty, "--close"});
    EXPECT_EQ(opened.status, 0) << opened.errors;
    EXPECT_EQ(json::parse(opened.output)["matched"], json::array());
}

TEST_F(CommandLine, TheProgramPassesForTheHostsThatItNamesAndNoOther) {
    for (const std::string app :
         {"AfterEffects2025", "Photoshop2024", platform::kIsLinux ? "LibreOffice" : "Sketch"}) {
        EXPECT_EQ(world.RunHost({"--app", app, "settings", "EnablePlugin"}).status, 0) << app;
        EXPECT_THAT(world.Trace(), HasSubstr("VPFInterface(hostApp='" + app + "'"));
    }
    const auto refused = world.RunHost({"--app", "Photoshop", "settings"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("Photoshop2023, Photoshop2024"));
}

TEST_F(CommandLine, FontsAreReadByTheFormatUnlessTheBytesAreToBeSearched) {
    const std::string drawing = world.FontManager().Write(
        "a.svg", "<svg><text id='t' font-family='Sample-Bold'>x</text><!-- /FontName /Other /F >> --></svg>");
    const json found = json::parse(world.RunHost({"fonts", "--json", drawing}).output);
    EXPECT_EQ(found["fonts"], json::array({"Sample-Bold"}));
    EXPECT_EQ(found["reader"], "svg");
    EXPECT_EQ(found["details"][0]["where"], "text t");
    EXPECT_THAT(world.RunHost({"fonts", "--where", drawing}).output,
                HasSubstr("Sample-Bold  no        text t"));
    EXPECT_EQ(world.RunHost({"fonts", "--raw", drawing}).output, "Other\n");
    const auto opened = world.RunHost({"--json", "open", "--close", drawing});
    EXPECT_EQ(json::parse(opened.output)["numFontsActivated"], 1) << opened.output << opened.errors;
    EXPECT_EQ(world.RunHost({"open", "--raw", "--close", drawing}).status, 3);
    const std::string letter = world.FontManager().Write("letter.txt", "Dear reader");
    const std::string damaged = world.FontManager().Write("damaged.svg", "<svg>");
    for (const std::string& file : {letter, damaged}) {
        EXPECT_EQ(world.RunHost({"fonts", file}).status, 1) << file;
        EXPECT_EQ(world.RunHost({"fonts", "--raw", file}).status, 0) << file;
    }
}

TEST_F(CommandLine, AScriptCanCallEveryExportWithNothing) {
    ScriptedHost host;
#define NAME_OF(function) #function,
    const std::vector<std::string> names = {PLUGINCORE_FUNCTIONS(NAME_OF)};
#undef NAME_OF
    for (auto name = names.rbegin(); name != names.rend(); ++name)  // the core starts last
        EXPECT_EQ(host.Call(*name)["call"], *name);
    EXPECT_EQ(host.Call("HandleOpenExistingDocument")["codeName"], "CoreErrorCodes::kInvalidParam");
    EXPECT_EQ(host.Call("GetAPIVersion", {{"requestedVersion", 7}})["codeName"],
              "CoreErrorCodes::kNotImplemented");
    EXPECT_EQ(host.Finish().status, 0);
    ScriptedHost ofAnotherVersion;
    EXPECT_NE(
        ofAnotherVersion.Call("InitializePluginCoreInterface", {{"versionPrefixRequired", "99."}})["code"],
        0);
}

TEST_F(CommandLine, EventsPrintsWhatGoesToThePanelUntilEnterOrItsTimeIsOver) {
    TestProcess events({BuiltFile(HOST_PROGRAM), "events"});
    // Activated and deactivated until it listens.
    std::string line;
    std::thread reader([&] { line = events.ReadLine(); });
    EXPECT_TRUE(Eventually([&] {
        world.FontManager().Run({"deactivate", "1"});
        world.FontManager().Run({"activate", "1"});
        return world.Trace().find("font 1 activated") != std::string::npos;
    }));
    reader.join();
    EXPECT_EQ(json::parse(line)["fontIDs"], json({1})) << line;
    EXPECT_TRUE(line.starts_with(R"({"messageID":2)")) << "the text as it was sent: " << line;
    events.WriteLine("");
    const auto result = events.Finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("Press Enter"));
    EXPECT_THAT(world.Trace(), HasSubstr("CloseAllFonts() returning 0")) << "the core was ended";
    EXPECT_EQ(world.RunHost({"events", "--for", "0.1"}).output, "");
}

TEST_F(CommandLine, ADocumentIsOpenedForAProgramWhoseStatusCounts) {
    const std::string document = world.WriteDocument("a  b.pdf", {"Sample-Bold"});
    const std::string host = BuiltFile(HOST_PROGRAM);
    ProgramResult result = world.RunHost({"open", document, "--", host, "fonts", "{}"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "Sample-Bold\n");
    EXPECT_EQ(world.RunHost({"open", "--fonts", "Sample-Bold", "Gone", "--", host, "--none"}).status, 2);
    result = world.RunHost({"open", document, "--", world.Path("none")});
    EXPECT_EQ(result.status, 127) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("cannot be started: "));
    // What would be taken for something else than was meant is refused.
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"open", "--fonts", "Sample-Bold", "--", "{}"},
                                               {"open", "--fonts", "Sample-Bold", document, "--", host},
                                               {"open", document, "--close", "--", host}})
        EXPECT_EQ(world.RunHost(wrong).status, 2);
    EXPECT_EQ(world.RunHost({"open", "--", "-none.pdf"}).status, 1) << "a document of an odd name";
}
