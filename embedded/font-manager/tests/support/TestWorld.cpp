#include "tests/support/TestWorld.h"

#include <gtest/gtest.h>

#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "TestFiles.h"
#include "TestFonts.h"
#include "common/Locations.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick::test {
namespace fs = std::filesystem;

TestWorld::TestWorld(std::string name) : mName(std::move(name)) {
    const fs::path folder = platform::Utf8Path(mTemporaryFolder / mName);
    fs::create_directories(folder);
    fs::permissions(folder, fs::perms::owner_all);  // whatever the umask
}

TestWorld::~TestWorld() {
    if (mAgent) {
        mAgent->Resume();
        StopAgent();
    } else {  // one that the command line started
        const ProgramResult result = Run({"stop", "--json", "--no-start"});
        if (result.status == 0) {
            const auto agent = IntegerMember(Json::parse(result.output), "process");
            Eventually([agent] { return platform::ProcessStartTime(agent) == 0; });
        }
    }
}

std::string TestWorld::Path(const std::string& path) const {
    return mTemporaryFolder / (mName + "/" + path);
}

std::string TestWorld::Write(const std::string& path, const std::string& content) const {
    return mTemporaryFolder.Write(mName + "/" + path, content);
}

std::string TestWorld::WriteFont(const std::string& postScriptName, const std::string& version) const {
    const size_t hyphen = postScriptName.find('-');
    const std::string style = hyphen == std::string::npos ? "Regular" : postScriptName.substr(hyphen + 1);
    return Write("fonts/" + postScriptName + "-" + version + ".ttf",
                 MakeTestFont({postScriptName, postScriptName.substr(0, hyphen), style, version}));
}

void TestWorld::StartAgent() {
    mAgent = std::make_unique<TestProcess>(std::vector<std::string>{BuiltFile(PELLWICK_PROGRAM)});
    ASSERT_TRUE(Eventually([&] {
        return platform::ProcessStartTime(mAgent->Id()) != 0 && Run({"status", "--no-start"}).status == 0;
    })) << "the agent does not start";
}

void TestWorld::WaitForAgentToEnd() {
    EXPECT_EQ(mAgent->Finish().status, 0) << "the agent did not end in order";
    mAgent.reset();
}

void TestWorld::StopAgent() {
    const ProgramResult result = Run({"stop", "--no-start"});
    EXPECT_EQ(result.status, 0) << result.errors;
    if (result.status != 0)
        mAgent->Kill();
    WaitForAgentToEnd();
}

void TestWorld::KillAgent() {
    mAgent->Kill();
    mAgent->Finish();
    mAgent.reset();
}

ProgramResult TestWorld::Run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command = {BuiltFile(PELLWICK_PROGRAM)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return TestProcess(command).Finish();
}

Json TestWorld::RunForJson(std::vector<std::string> arguments) const {
    arguments.push_back("--json");
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.status, 0) << result.errors;
    return Json::parse(result.output, nullptr, false);
}

void TestWorld::EmptyVault() const {
    for (const std::string& file : VaultFiles())
        EXPECT_FALSE(platform::RemoveFile(file)) << file;
}

std::vector<std::string> TestWorld::FilesBelow(const std::string& path) const {
    const fs::path folder = platform::Utf8Path(Path(path));
    std::vector<std::string> files;
    std::error_code failure;
    fs::recursive_directory_iterator entry(folder, failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored))
            files.push_back(platform::Utf8Text(entry->path()));
    }
    // The agent may have removed a folder under our feet.
    return failure && fs::exists(folder) ? FilesBelow(path) : files;
}

std::string TestWorld::AgentLog() const {
    return ContentOf(Locations::OfThisUser().logFolder + "/Pellwick.log");
}

std::vector<std::string> NamesOf(const Json& fonts) {
    std::vector<std::string> names;
    for (const Json& font : fonts)
        names.push_back(StringMember(font, kGS_PostScriptNameKey));
    return names;
}

std::vector<std::string> WordsOf(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace pellwick::test
