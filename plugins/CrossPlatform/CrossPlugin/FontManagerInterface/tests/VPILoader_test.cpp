#include "VPILoader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string_view>

#include "CapturedTrace.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"
#include "FontManagerWorld.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
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

constexpr const char* kTable[] = {
#define NAME_OF(symbol, parameters) #symbol,
    TARNWICK_PLUGIN_FUNCTIONS(NAME_OF)
#undef NAME_OF
};
constexpr size_t kValidated = 79;  // up to TrackFontPanelClick
static_assert(std::string_view(kTable[kValidated - 1]) == "TrackFontPanelClick");

/// Libraries beside the running agent that lack functions of the table.
class IncompleteLibraryTest : public FontManagerWorld {
protected:
    /// What the trace says of functions that are not there.
    std::string ToldAsMissing() {
        std::istringstream lines(trace.Text());
        std::string told;
        for (std::string line; std::getline(lines, line);) {
            if (line.ends_with(" is NULL."))
                told += line.substr(line.find("ERROR")) + "\n";
            else if (line.ends_with(" returned 0x00000000"))
                told += line.substr(line.find("'")) + "\n";
        }
        return told;
    }

    /// Loads one as start-up does.
    void ExpectRefusalWithout(const std::vector<size_t>& lacking) {
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        std::string unbound;
        std::string invalid;
        for (const size_t index : lacking) {
            const std::string symbol = kTable[index];
            libraries.symbols.erase(symbol);
            unbound += "'" + symbol + "') returned 0x00000000\n";
            if (index < kValidated)
                invalid += "ERROR:  this->pf" + symbol + " is NULL.\n";
        }
        trace.Clear();
        std::string path;
        std::string version;
        uint32_t missingCount = 0;
        ASSERT_FALSE(VPILoader::GetSharedInstance()->IsLoaded(&path, &version, &missingCount)) << unbound;
        ASSERT_EQ(missingCount, lacking.size()) << unbound;
        ASSERT_EQ(ToldAsMissing(), unbound + invalid);
        ASSERT_THAT(trace.Text(),
                    EndsWith("VPILoader::IsLoaded() returning false because of one or more null inputs.\n"));
        ExpectNoFontManager();
        ASSERT_THAT(library.calls, IsEmpty()) << unbound;
        delete VPILoader::GetSharedInstance();
    }

    void ExpectNoFontManager() {
        FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
        EXPECT_FALSE(fontManager.CompatibleFontManagerIsRunning());
        EXPECT_EQ(fontManager.GetFontManager(), nullptr);
        EXPECT_EQ(fontManager.ActivateDocumentFonts("/a.ai", {}), kErrorMarquellNotRunning);
        EXPECT_FALSE(fontManager.IsLoggedIn());
        SetLogFile("host.log");
    }
};

}  // namespace

TEST_F(IncompleteLibraryTest, NoFunctionAndNoPairOfFunctionsCanBeMissing) {
    int singles = 0;
    int pairs = 0;
    for (size_t first = 0; first < std::size(kTable); ++first, ++singles) {
        ASSERT_NO_FATAL_FAILURE(ExpectRefusalWithout({first}));
        for (size_t second = first + 1; second < std::size(kTable); ++second, ++pairs)
            ASSERT_NO_FATAL_FAILURE(ExpectRefusalWithout({first, second}));
    }
    std::cout << "refused: " << singles << " libraries without one function, " << pairs << " without two\n";
    EXPECT_EQ(singles, 86);
    EXPECT_EQ(pairs, 3655);
}

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
