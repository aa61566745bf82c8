#include "VPILoader.h"

#include "FacadeTest.h"

using testing::HasSubstr, testing::IsEmpty, testing::Not;

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
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        trace.Clear();
        libraries.symbols.erase(kTable[index]);
        libraries.symbols.erase(kTable[(index + 1) % std::size(kTable)]);
        ASSERT_FALSE(IsLoaded()) << kTable[index];
        ASSERT_EQ(missingCount, 2u) << kTable[index];
        ASSERT_THAT(trace.Text(), HasSubstr("'" + std::string(kTable[index]) + "') returned 0x00000000\n"));
        const std::string invalid = "ERROR:  this->pf" + std::string(kTable[index]) + " is NULL.\n";
        ASSERT_EQ(trace.Text().find(invalid) != std::string::npos, index < kValidated);
        EXPECT_FALSE(fontManager.CompatibleFontManagerIsRunning());
        EXPECT_EQ(fontManager.GetFontManager(), nullptr);
        EXPECT_EQ(fontManager.ActivateDocumentFonts("/a.ai", {}), kErrorMarquellNotRunning);
        EXPECT_FALSE(fontManager.IsLoggedIn());
        SetLogFile("host.log");
        ASSERT_THAT(library.calls, IsEmpty()) << kTable[index];
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
    EXPECT_THAT(trace.Text(), HasSubstr("'" + kAgentProgram + "', '/opt/v/') returned 0\n"));
    EXPECT_THAT(trace.Text(), Not(HasSubstr("ERROR")));
    EXPECT_TRUE(processes.launchedCommandLines.empty());
}

TEST_F(VPILoaderTest, AnAgentThatDoesNotRunIsStartedAndItsLibraryBound) {
    const TemporaryFolder folder;
    InstallAgent(folder, folders);
    const std::string expected = folder / ("agent/" + kLibrary);
    libraries.loadable = {expected};
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(path, expected);
    EXPECT_EQ(processes.launchedCommandLines.size(), 1u);
}

TEST_F(VPILoaderTest, WithoutAnAgentALibraryThatTheSystemFindsIsBound) {
    libraries.loadable = {kLibrary};
    EXPECT_TRUE(IsLoaded());
    EXPECT_EQ(path, "/system/library.so");
}

TEST_F(VPILoaderTest, WithoutAgentAndLibraryAllFunctionsAreMissingForGood) {
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(missingCount, 88u);
    EXPECT_EQ(version, "");
    EXPECT_THAT(trace.Text(), HasSubstr("ERROR:  cannot find " + kLibrary + "\n"));
    libraries.loadable = {kLibrary};
    EXPECT_FALSE(IsLoaded()) << "a failed load is not tried again";
}
