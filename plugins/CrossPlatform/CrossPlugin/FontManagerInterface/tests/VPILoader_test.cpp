#include "VPILoader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string_view>

#include "FontManagerWorld.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string kLibrary = platform::LibraryFileName("TarnwickPluginInterfaceX64");
const std::string kAgentProgram = platform::ProgramFileName("Pellwick");

class VPILoaderTest : public FontManagerWorld {
protected:
    VPILoaderTest() {
        processes.running.clear();
        libraries.loadable.clear();
    }
    bool IsLoaded() { return VPILoader::GetSharedInstance()->IsLoaded(&path, &version, &missingCount); }

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

}  // namespace

TEST_F(VPILoaderTest, NoFunctionCanBeMissing) {
    libraries.loadable = {kLibrary};
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    for (size_t index = 0; index < std::size(kTable); ++index) {
        // With the one after it as well, to tell a count from a flag.
        std::string unbound;
        std::string invalid;
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        for (size_t each = index; each < std::min(index + 2, std::size(kTable)); ++each) {
            libraries.symbols.erase(kTable[each]);
            unbound += "'" + std::string(kTable[each]) + "') returned 0x00000000\n";
            if (each < kValidated)
                invalid += "ERROR:  this->pf" + std::string(kTable[each]) + " is NULL.\n";
        }
        trace.Clear();
        ASSERT_FALSE(IsLoaded()) << unbound;
        ASSERT_EQ(missingCount, 86 - libraries.symbols.size()) << unbound;
        ASSERT_EQ(ToldAsMissing(), unbound + invalid);
        ASSERT_THAT(trace.Text(),
                    EndsWith("VPILoader::IsLoaded() returning false because of one or more null inputs.\n"));
        EXPECT_FALSE(fontManager.CompatibleFontManagerIsRunning());
        EXPECT_EQ(fontManager.GetFontManager(), nullptr);
        EXPECT_EQ(fontManager.ActivateDocumentFonts("/a.ai", {}), kErrorMarquellNotRunning);
        EXPECT_FALSE(fontManager.IsLoggedIn());
        SetLogFile("host.log");
        ASSERT_THAT(library.calls, IsEmpty()) << unbound;
        delete VPILoader::GetSharedInstance();
    }
}

TEST_F(VPILoaderTest, TheLibraryBesideTheRunningAgentIsBound) {
    processes.running = {{1, "/opt/v/other"}, {2, "/opt/v/PELLWICK" + kAgentProgram.substr(8)}};
    const std::string expected = "/opt/v/" + kLibrary;
    libraries.loadable = {expected};
    versions.values[{expected, "PrivateBuild"}] = std::string(300, '8') + "\xFF";
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(path, expected);
    EXPECT_EQ(version, std::string(255, '8'));
    EXPECT_EQ(missingCount, 0u);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(VPILoader::GetSharedInstance()->VersionStringRef()).get()), version);
    EXPECT_THAT(trace.Text(), StartsWith("Entering first call to VPILoader::GetSharedInstance()\n"
                                         " Entering GetPathToRunningProcessExe('" +
                                         kAgentProgram +
                                         "', ...)\n"
                                         " GetPathToRunningProcessExe('" +
                                         kAgentProgram +
                                         "', '/opt/v/') returned 0\n"
                                         " SUCCESS: LoadLibraryA('" +
                                         expected + "') returned 0x"));
    EXPECT_THAT(trace.Text(), Not(HasSubstr("ERROR")));
    EXPECT_TRUE(processes.launchedCommandLines.empty());
}

TEST_F(VPILoaderTest, WithoutAgentAndLibraryAllFunctionsAreMissingForGood) {
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(missingCount, 88u);
    EXPECT_EQ(version, "");
    for (const std::string& line : {"LoadLibraryA('" + kLibrary + "') returned error code 0x00000002 (2)\n",
                                    "ERROR:  cannot find " + kLibrary + "\n"})
        EXPECT_THAT(trace.Text(), HasSubstr(line));
    EXPECT_THAT(trace.Text(),
                EndsWith("VPILoader::IsLoaded() returning false because all 88 functions are missing.\n"));
    libraries.loadable = {kLibrary};
    EXPECT_FALSE(IsLoaded()) << "a failed load is not tried again";
    EXPECT_FALSE(VPILoader::GetSharedInstance()->IsLoaded(&path, nullptr, &missingCount));
    EXPECT_THAT(trace.Text(),
                EndsWith("VPILoader::IsLoaded() returning false because it was called incorrectly.\n"));
}

TEST_F(VPILoaderTest, ALibraryInTheSearchPathServesWithoutAnAgent) {
    libraries.loadable = {kLibrary};
    for (const size_t length : {259, 260}) {  // a longer name does not fit
        libraries.pathOfLoaded = std::string(length, 'x');
        EXPECT_TRUE(IsLoaded());
        EXPECT_EQ(path, length < 260 ? libraries.pathOfLoaded : "");
        delete VPILoader::GetSharedInstance();
    }
    EXPECT_THAT(trace.Text(), HasSubstr("; path='xxx"));
    EXPECT_THAT(trace.Text(), HasSubstr("Failure in GetModuleFileNameA(0x"));
}

TEST_F(VPILoaderTest, TheTraceReachesTheFontManagersLogPieceByPiece) {
    libraries.loadable = {kLibrary};
    ASSERT_TRUE(IsLoaded());
    VPILoader::GetSharedInstance()->LogIntoFontManager();
    EnableLogging();
    LogMessage(1, "Entering");
    LogMessage(-1, "Exiting");
    EXPECT_EQ(library.log, "Entering\nExiting\n");
    EXPECT_EQ(library.CallsOf("Log"), 2);
    SetLogFile("host.log");
    EXPECT_EQ(library.logFile, "host.log");
}
