#include "tests/support/TestWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "TestFonts.h"
#include "common/Locations.h"
#include "platform/Utf8Path.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;

constexpr char kAgentProgram[] = PELLWICK_PROGRAM;
constexpr std::chrono::seconds kPatience{60};

/// Waits for something to read or the end; false when nothing comes, so that a test fails instead of hanging.
bool IsReadable(int file) {
    pollfd wanted{file, POLLIN, 0};
    return poll(&wanted, 1, static_cast<int>(std::chrono::milliseconds(kPatience).count())) == 1;
}

std::string ReadToEnd(int descriptor) {
    std::string text;
    char piece[4096];
    for (ssize_t size = 0; (size = read(descriptor, piece, sizeof piece)) > 0;)
        text.append(piece, static_cast<size_t>(size));
    return text;
}

int ExitStatus(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void Close(int& descriptor) {
    if (descriptor >= 0)
        close(descriptor);
    descriptor = -1;
}

}  // namespace

TestWorld::TestWorld(const std::string& name) {
    std::string pattern = testing::TempDir() + "/pellwick-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    mFolder = pattern + "/" + name;
    fs::create_directories(platform::Utf8Path(mFolder));
    const std::map<std::string, std::string> variables = {
        {"HOME", mFolder},       {"XDG_DATA_HOME", mFolder + "/data"}, {"XDG_CACHE_HOME", mFolder + "/cache"},
        {"XDG_RUNTIME_DIR", ""}, {"TMPDIR", mFolder + "/tmp"},         {"USER", "tester"}};
    for (const auto& [variable, value] : variables) {
        const char* saved = std::getenv(variable.c_str());
        mSavedVariables[variable] = saved != nullptr ? saved : "";
        setenv(variable.c_str(), value.c_str(), 1);
    }
}

TestWorld::~TestWorld() {
    if (mAgent == 0) {  // one that the command line started
        const ProgramResult result = Run({"stop", "--json", "--no-start"});
        if (result.status == 0)
            mAgent = IntegerMember(Json::parse(result.output), "process");
    } else {
        SignalAgent(SIGCONT);
        KillAgent(SIGTERM);
    }
    Eventually([this] { return mAgent == 0 || platform::ProcessStartTime(mAgent) == 0; });
    for (const auto& [variable, value] : mSavedVariables)
        setenv(variable.c_str(), value.c_str(), 1);
    std::error_code ignored;
    fs::remove_all(platform::Utf8Path(mFolder).parent_path(), ignored);
}

std::string TestWorld::Write(const std::string& path, const std::string& content) const {
    const fs::path target = platform::Utf8Path(Path(path));
    fs::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary) << content;
    return platform::Utf8Text(target);
}

std::string TestWorld::WriteFont(const std::string& postScriptName, const std::string& version) const {
    const size_t hyphen = postScriptName.find('-');
    const std::string style = hyphen == std::string::npos ? "Regular" : postScriptName.substr(hyphen + 1);
    return Write("fonts/" + postScriptName + "-" + version + ".ttf",
                 MakeTestFont({postScriptName, postScriptName.substr(0, hyphen), style, version}));
}

void TestWorld::StartAgent() {
    pid_t child = 0;
    std::string program = kAgentProgram;
    char* arguments[] = {program.data(), nullptr};
    ASSERT_EQ(posix_spawn(&child, kAgentProgram, nullptr, nullptr, arguments, environ), 0);
    mAgent = child;
    ASSERT_TRUE(Eventually([&] {
        return waitpid(child, nullptr, WNOHANG) == 0 && Run({"status", "--no-start"}).status == 0;
    })) << "the agent does not start";
}

void TestWorld::KillAgent(int signal) {
    SignalAgent(signal);
    int status = 0;
    waitpid(static_cast<pid_t>(mAgent), &status, 0);
    mAgent = 0;
    if (signal == SIGTERM) {
        EXPECT_EQ(status, 0) << "the agent did not end in order";
    }
}

void TestWorld::SignalAgent(int signal) const {
    kill(static_cast<pid_t>(mAgent), signal);
}

ProgramResult TestWorld::Run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command = {kAgentProgram};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return TestProcess(command).Finish();
}

Json TestWorld::RunForJson(std::vector<std::string> arguments) const {
    arguments.push_back("--json");
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.status, 0) << result.errors;
    return Json::parse(result.output, nullptr, false);
}

std::vector<std::string> TestWorld::LinkedFiles() const {
    std::vector<std::string> files;
    std::error_code failure;
    fs::recursive_directory_iterator entry(platform::Utf8Path(Path("data/fonts")), failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored))
            files.push_back(platform::Utf8Text(entry->path()));
    }
    const bool isThere = fs::exists(platform::Utf8Path(Path("data/fonts/Vantorix")));
    return failure && isThere ? LinkedFiles() : files;  // the agent has removed a folder under our feet
}

TestProcess::TestProcess(const std::vector<std::string>& command) {
    int input[2];
    int output[2];
    int errors[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0 || pipe2(errors, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
    std::vector<std::string> words = command;
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = 0;
    const int failure = posix_spawn(&child, words[0].c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    for (int* theirs : {&input[0], &output[1], &errors[1]})
        Close(*theirs);
    mInput = input[1];
    mOutput = output[0];
    mErrors = errors[0];
    if (failure != 0)
        throw std::runtime_error("cannot start " + command[0]);
    mProcess = child;
}

TestProcess::~TestProcess() {
    if (!mIsCollected) {
        Signal(SIGKILL);
        waitpid(static_cast<pid_t>(mProcess), nullptr, 0);
    }
    for (int* descriptor : {&mInput, &mOutput, &mErrors})
        Close(*descriptor);
}

std::string TestProcess::ReadLine() {
    char character = 0;
    std::string line;
    while (IsReadable(mOutput) && read(mOutput, &character, 1) == 1 && character != '\n')
        line += character;
    return line;
}

void TestProcess::WriteLine(const std::string& line) {
    const std::string text = line + "\n";
    ASSERT_EQ(write(mInput, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void TestProcess::CloseInput() {
    Close(mInput);
}

void TestProcess::Signal(int signal) const {
    kill(static_cast<pid_t>(mProcess), signal);
}

ProgramResult TestProcess::Finish() {
    CloseInput();
    ProgramResult result;
    std::thread errors([&] { result.errors = ReadToEnd(mErrors); });
    result.output = ReadToEnd(mOutput);
    errors.join();
    int status = 0;
    waitpid(static_cast<pid_t>(mProcess), &status, 0);
    mIsCollected = true;
    result.status = ExitStatus(status);
    return result;
}

bool Eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

}  // namespace pellwick::test
