#include "FaultyStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "TarnwickPluginInterface.h"
#include "common/Locations.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "store/Database.h"
#include "tests/support/VaultFiles.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t kSizeLimit = 1 << 24;

std::string ContentOf(const std::string& path) {
    std::string content;
    platform::ReadWholeFile(path, content, kSizeLimit);
    return content;
}

/// Folders and regular files; a killed agent leaves its socket as well.
void CopyFolder(const std::string& from, const std::string& to) {
    fs::remove_all(platform::Utf8Path(to));
    fs::create_directories(platform::Utf8Path(to));
    for (const auto& entry : fs::recursive_directory_iterator(platform::Utf8Path(from))) {
        const fs::path target = platform::Utf8Path(to) / fs::relative(entry.path(), platform::Utf8Path(from));
        if (entry.is_directory())
            fs::create_directory(target, entry.path());
        else if (entry.is_regular_file())
            fs::copy_file(entry.path(), target);
    }
}

/// Whose content changes with every run, or matters to nobody.
bool IsOfTheAgentItself(const std::string& name) {
    static const std::set<std::string> kNames = {"fonts.sqlite", "fonts.sqlite-wal", "fonts.sqlite-shm",
                                                 "agent.lock",   "agent.address",    "Pellwick.log"};
    return kNames.count(name) != 0;
}

}  // namespace

FaultyStore::FaultyStore() : mFaults(mWorld.Write("plan", "")) {
    fs::create_directories(platform::Utf8Path(mWorld.Path("data")));
    Keep();
}

bool FaultyStore::StartAgent(std::string& problem) {
    {
        const FaultyStart start(mFaults, mWorld.Path("data"));
        mAgent = std::make_unique<TestProcess>(std::vector<std::string>{PELLWICK_PROGRAM});
    }
    const bool isServing = Eventually([this] {
        Json status;
        return !IsAgentAlive() ||
               AgentConnection(std::chrono::seconds(30)).Call(method::kGetStatus, Json::object(), status) ==
                   0;
    });
    if (isServing && IsAgentAlive())
        return true;
    problem = CollectAgent().errors;
    return false;
}

void FaultyStore::StartAgent() {
    std::string problem;
    if (!StartAgent(problem))
        ADD_FAILURE() << "the agent does not start: " << problem;
}

bool FaultyStore::IsAgentAlive() const {
    return mAgent != nullptr && platform::ProcessStartTime(mAgent->Id()) != 0;
}

void FaultyStore::StopAgent() {
    const ProgramResult result = mWorld.Run({"stop", "--no-start"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(CollectAgent().status, 0);
}

void FaultyStore::KillAgent() {
    mAgent->Kill();
    CollectAgent();
}

ProgramResult FaultyStore::CollectAgent() {
    if (!mAgent)
        return {};
    ProgramResult result = mAgent->Finish();
    mAgent.reset();
    return result;
}

void FaultyStore::Keep() {
    CopyFolder(mWorld.Path("data"), mWorld.Path("kept"));
}

void FaultyStore::BringBack() {
    if (mAgent)
        KillAgent();
    CopyFolder(mWorld.Path("kept"), mWorld.Path("data"));
}

Json FaultyStore::Ask(const char* method, const Json& arguments) {
    Json answer;
    const ErrorCode code = AgentConnection(std::chrono::seconds(30)).Call(method, arguments, answer);
    EXPECT_EQ(code, 0u) << method << ": " << FailureText(code, answer);
    return answer;
}

Json FaultyStore::Fonts(const Json& filter) {
    Json fonts = Ask(method::kListFonts, filter)["fonts"];
    for (Json& font : fonts) {
        font.erase(kGS_DatabaseIDKey);
        font.erase(kGS_WorkgroupIDKey);
        font.erase(kGS_OutlineFileNameKey);  // one that was taken back has lost it
    }
    std::sort(fonts.begin(), fonts.end());
    return fonts;
}

Json FaultyStore::Records() {
    Json records = {{"fonts", Fonts({{"after", 0}})},
                    {"sets", Json::array()},
                    {"workgroups", Json::array()},
                    {"smartLists", Json::array()}};
    const Json sets = Ask(method::kListSets, Json::object());
    for (const Json& set : ArrayMember(sets, "sets"))
        records["sets"].push_back(
            {set[member::kName], set[kGS_WorkgroupNameKey], Fonts({{"after", 0}, {"set", set["id"]}})});
    const Json workgroups = Ask(method::kListWorkgroups, Json::object());
    for (const Json& workgroup : ArrayMember(workgroups, "workgroups"))
        records["workgroups"].push_back(workgroup[kGS_WorkgroupNameKey]);
    const Json lists = Ask(method::kListSmartLists, Json::object());
    for (const Json& list : ArrayMember(lists, kGS_SmartListsKey))
        records["smartLists"].push_back(list[kGS_SmartListNameKey]);
    const Json status = Ask(method::kGetStatus, Json::object());
    for (const char* member : {"userName", "standalone", "workgroup", "hosts", "activeFiles"})
        records["status"][member] = status[member];
    return records;
}

Json FaultyStore::Files() const {
    Json files = Json::array();
    for (const std::string& path : mWorld.FilesBelow("data")) {
        const std::string name = platform::NamePart(path);
        if (IsOfTheAgentItself(name))
            continue;
        // A font's file is named by what is in it.
        const std::string content = ContentOf(path);
        const bool isWhole = name.substr(0, name.find('.')) == ChecksumOf(content);
        files.push_back({path, isWhole ? "whole" : ChecksumOf(content)});
    }
    std::sort(files.begin(), files.end());
    return files;
}

Json FaultyStore::State() {
    Json state = Records();
    state["files"] = Files();
    return state;
}

size_t FaultyStore::FailureLines() const {
    std::istringstream log(ContentOf(Locations::OfThisUser().logFolder + "/Pellwick.log"));
    size_t count = 0;
    for (std::string line; std::getline(log, line);) {
        const bool isOfStartOrEnd =
            line.starts_with("Pellwick") || line.find(" put right: ") != std::string::npos;
        count += isOfStartOrEnd ? 0 : 1;
    }
    return count;
}

bool FaultyStore::IsEndLogged() const {
    return ContentOf(Locations::OfThisUser().logFolder + "/Pellwick.log").ends_with(" ends\n");
}

std::string FaultyStore::CheckDatabase() const {
    Database database(Locations::OfThisUser().databasePath);
    Statement check = database.Prepare("PRAGMA integrity_check");
    std::string findings = check.Step() ? check.Text(0) : "no answer";
    if (database.Prepare("PRAGMA foreign_key_check").Step())
        findings += ", and a row refers to one that is not there";
    return findings;
}

ErrorCode FaultyStore::TryToWrite() {
    AgentConnection connection(std::chrono::seconds(30));
    Json answer;
    const ErrorCode code = connection.Call(method::kSetGoogleWebFonts, {{"on", true}}, answer);
    return code != 0 ? code : connection.Call(method::kSetGoogleWebFonts, {{"on", false}}, answer);
}

}  // namespace pellwick::test
