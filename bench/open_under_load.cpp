// open-under-load FONTS COMMAND...: opens and closes documents, of five of the first FONTS fonts of
// make-test-fonts each, for as long as the command runs, and prints how long the agent took to open them,
// what memory it took, and how many processes it started.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "common/Protocol.h"
#include "ipc/AgentConnection.h"

namespace {

using Clock = std::chrono::steady_clock;
using pellwick::AgentConnection;
using pellwick::Json;
namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kPause{1};
constexpr int kFontsPerDocument = 5;

class Command {
public:
    /// What it says goes nowhere.
    explicit Command(char** words) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        mIsStarted = posix_spawnp(&mProcess, words[0], &actions, nullptr, words, environ) == 0;
        posix_spawn_file_actions_destroy(&actions);
    }
    bool IsStarted() const { return mIsStarted; }
    bool IsRunning() const {
        int status = 0;
        return waitpid(mProcess, &status, WNOHANG) == 0;
    }

private:
    pid_t mProcess = 0;
    bool mIsStarted = false;
};

/// Looks every millisecond which children the process has. One that comes and goes in between is not seen.
class ChildCounter {
public:
    explicit ChildCounter(long long process)
        : mFolder("/proc/" + std::to_string(process) + "/task"), mThread([this] { Run(); }) {}
    ~ChildCounter() { Stop(); }
    ChildCounter(const ChildCounter&) = delete;
    ChildCounter& operator=(const ChildCounter&) = delete;

    size_t Stop() {
        mIsOver = true;
        if (mThread.joinable())
            mThread.join();
        return mChildren.size();
    }

private:
    void Run() {
        for (; !mIsOver; std::this_thread::sleep_for(kPause)) {
            std::error_code failure;
            for (const auto& thread : fs::directory_iterator(mFolder, failure)) {
                std::ifstream children(thread.path() / "children");
                for (long long child = 0; children >> child;)
                    mChildren.insert(child);
            }
        }
    }

    const fs::path mFolder;
    std::set<long long> mChildren;
    std::atomic<bool> mIsOver{false};
    std::thread mThread;
};

Json Call(AgentConnection& connection, const char* method, const Json& arguments) {
    Json result;
    const ErrorCode code = connection.Call(method, arguments, result);
    if (code != CoreErrorCodes::kSuccess) {
        std::fprintf(stderr, "%s: %s\n", method, pellwick::FailureText(code, result).c_str());
        std::exit(1);
    }
    return result;
}

Json FontsOfDocument(int document, int fonts) {
    Json names = Json::array();
    for (int index = 0; index < kFontsPerDocument; ++index) {
        char name[32];
        std::snprintf(name, sizeof name, "Bench%04d-Regular", (document * kFontsPerDocument + index) % fonts);
        names.push_back(name);
    }
    return names;
}

/// The milliseconds that it took to open one document; it is closed again.
double OpenAndClose(AgentConnection& connection, const Json& fonts) {
    const auto begin = Clock::now();
    const Json opened = Call(connection, pellwick::method::kActivateDocumentFonts,
                             {{"fonts", fonts}, {"document", "/bench"}});
    const std::chrono::duration<double, std::milli> length = Clock::now() - begin;
    if (opened["matched"].size() != fonts.size()) {
        std::fprintf(stderr, "a document's fonts were not found\n");
        std::exit(1);
    }
    Call(connection, pellwick::method::kDeactivateFonts, {{"fonts", opened["matched"]}});
    return length.count();
}

long long PeakMemory(long long process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::atoll(line.c_str() + 6) / 1024;
    }
    return -1;
}

void PrintTimes(std::vector<double>& times) {
    std::sort(times.begin(), times.end());
    const auto at = [&](double part) {
        return times[static_cast<size_t>(static_cast<double>(times.size() - 1) * part)];
    };
    std::printf("opened %zu documents: p50 %.1f ms, p99 %.1f ms, p99.9 %.1f ms, slowest %.1f ms\n",
                times.size(), at(0.5), at(0.99), at(0.999), times.back());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: open-under-load FONTS COMMAND...\n");
        return 2;
    }
    AgentConnection connection(std::chrono::seconds(30));
    const auto process =
        Call(connection, pellwick::method::kGetStatus, Json::object())["process"].get<long long>();
    ChildCounter children(process);
    std::vector<double> times;
    const Command command(argv + 2);
    if (!command.IsStarted())
        return 1;
    for (int document = 0; command.IsRunning(); ++document) {
        times.push_back(OpenAndClose(connection, FontsOfDocument(document, std::atoi(argv[1]))));
        std::this_thread::sleep_for(kPause);
    }
    PrintTimes(times);
    AgentConnection later(std::chrono::seconds(30));
    const bool isSame = Call(later, pellwick::method::kGetStatus, Json::object())["process"] == process;
    std::printf("the agent is %s; peak memory %lld MiB; %zu processes that read fonts seen\n",
                isSame ? "the same process" : "ANOTHER PROCESS", PeakMemory(process), children.Stop());
    return isSame ? 0 : 1;
}
