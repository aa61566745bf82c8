#include "VPILoader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string kLibrary = platform::LibraryFileName("TarnwickPluginInterfaceX64");
const std::string kAgentProgram = platform::ProgramFileName("Pellwick");
const std::string kAgent = "/opt/v/" + kAgentProgram;

class VPILoaderTest : public testing::Test {
protected:
    ~VPILoaderTest() override { delete VPILoader::GetSharedInstance(); }

    bool IsLoaded() { return VPILoader::GetSharedInstance()->IsLoaded(&path, &version, &missingCount); }

    CapturedTrace trace;
    FakeProcesses processes;
    FakeFolders folders;
    FakeLibraries libraries;
    FakeVersionResources versions;
    FakeInterfaceLibrary library;
    std::string path;
    std::string version;
    uint32_t missingCount = 0;
};

}  // namespace

TEST_F(VPILoaderTest, TheLibraryBesideTheRunningAgentIsBound) {
    processes.running = {{1, "/opt/v/other"}, {2, "/opt/v/PELLWICK" + kAgentProgram.substr(8)}};
    const std::string expected = "/opt/v/" + kLibrary;
    libraries.loadable = {expected};
    libraries.symbols = FakeInterfaceLibrary::Symbols();
    versions.values[{expected, "PrivateBuild"}] = "8.0.0.7";
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(path, expected);
    EXPECT_EQ(version, "8.0.0.7");
    EXPECT_EQ(missingCount, 0u);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(VPILoader::GetSharedInstance()->VersionStringRef()).get()), "8.0.0.7");
    EXPECT_NE(VPILoader::GetSharedInstance()->pfActivateFonts, nullptr);
    EXPECT_THAT(trace.Text(), StartsWith("Entering first call to VPILoader::GetSharedInstance()\n"
                                         " Entering GetPathToRunningProcessExe('" +
                                         kAgentProgram +
                                         "', ...)\n"
                                         " GetPathToRunningProcessExe('" +
                                         kAgentProgram +
                                         "', '/opt/v/') returned 0\n"
                                         " SUCCESS: LoadLibraryA('" +
                                         expected + "') returned 0x"));
    EXPECT_THAT(trace.Text(), HasSubstr(", 'ClearDocumentSlug') returned 0x"));
    EXPECT_THAT(trace.Text(), Not(HasSubstr("ERROR")));
    EXPECT_TRUE(processes.launchedCommandLines.empty());
}

TEST_F(VPILoaderTest, OneMissingFunctionIsNoFullLibraryButALateOnePassesTheValidation) {
    processes.running = {{2, kAgent}};
    libraries.loadable = {"/opt/v/" + kLibrary};
    libraries.symbols = FakeInterfaceLibrary::Symbols();
    libraries.symbols.erase("ClearDocumentSlug");
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(missingCount, 1u);
    EXPECT_THAT(trace.Text(),
                EndsWith("VPILoader::IsLoaded() returning false because of one or more null inputs.\n"));
    EXPECT_THAT(trace.Text(), Not(HasSubstr("ERROR:  this->pf")));
    EXPECT_THAT(trace.Text(), HasSubstr(", 'ClearDocumentSlug') returned 0x00000000\n"));
    EXPECT_EQ(VPILoader::GetSharedInstance()->pfClearDocumentSlug, nullptr);
}

TEST_F(VPILoaderTest, AMissingEarlyFunctionFailsTheValidationByName) {
    processes.running = {{2, kAgent}};
    libraries.loadable = {"/opt/v/" + kLibrary};
    libraries.symbols = FakeInterfaceLibrary::Symbols();
    libraries.symbols.erase("ActivateFonts");
    libraries.symbols.erase("TrackFontPanelClick");
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(missingCount, 2u);
    EXPECT_THAT(trace.Text(), HasSubstr("ERROR:  this->pfActivateFonts is NULL.\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("ERROR:  this->pfTrackFontPanelClick is NULL.\n"));
}

TEST_F(VPILoaderTest, WithoutAgentAndLibraryAllFunctionsAreMissingForGood) {
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(missingCount, 88u);
    EXPECT_EQ(version, "");
    EXPECT_THAT(trace.Text(),
                HasSubstr("LoadLibraryA('" + kLibrary + "') returned error code 0x00000002 (2)\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("ERROR:  cannot find " + kLibrary + "\n"));
    EXPECT_THAT(trace.Text(),
                EndsWith("VPILoader::IsLoaded() returning false because all 88 functions are missing.\n"));
    processes.running = {{2, kAgent}};
    libraries.loadable = {"/opt/v/" + kLibrary};
    EXPECT_FALSE(IsLoaded()) << "a failed load is not tried again";
    EXPECT_FALSE(VPILoader::GetSharedInstance()->IsLoaded(&path, nullptr, &missingCount));
    EXPECT_THAT(trace.Text(),
                EndsWith("VPILoader::IsLoaded() returning false because it was called incorrectly.\n"));
}

TEST_F(VPILoaderTest, ALibraryInTheSearchPathServesWithoutAnAgent) {
    libraries.loadable = {kLibrary};
    libraries.symbols = FakeInterfaceLibrary::Symbols();
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(path, "/system/library.so");
    EXPECT_THAT(trace.Text(), HasSubstr("; path='/system/library.so'\n"));
}

TEST_F(VPILoaderTest, ATooLongModuleNameIsAFailureOfItsOwn) {
    libraries.loadable = {kLibrary};
    libraries.symbols = FakeInterfaceLibrary::Symbols();
    libraries.pathOfLoaded = std::string(260, 'x');
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(path, "");
    EXPECT_THAT(trace.Text(), HasSubstr("Failure in GetModuleFileNameA(0x"));
}

TEST_F(VPILoaderTest, TheTraceReachesTheFontManagersLogPieceByPiece) {
    processes.running = {{2, kAgent}};
    libraries.loadable = {"/opt/v/" + kLibrary};
    libraries.symbols = FakeInterfaceLibrary::Symbols();
    ASSERT_TRUE(IsLoaded());
    VPILoader::GetSharedInstance()->LogIntoFontManager();
    LogMessage(0, "not yet");
    EnableLogging();
    LogMessage(1, "Entering");
    LogMessage(-1, "Exiting");
    EXPECT_EQ(library.log, "Entering\nExiting\n");
    EXPECT_EQ(library.CallsOf("Log"), 2);
}
