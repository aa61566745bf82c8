#include "TestProcess.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

constexpr std::chrono::seconds kPatience{60};

/// What comes from a stream, read at once, so that nobody waits for a test to read it.
class ReceivedText {
public:
    explicit ReceivedText(std::FILE* stream) : mReader([this, stream] { Receive(stream); }) {}

    /// Without its end. What there is when no line comes for a while, so that a test fails instead of hanging.
    std::string TakeLine() {
        std::unique_lock lock(mLock);
        mArrival.wait_for(lock, kPatience, [this] { return mIsOver || mText.find('\n') != mText.npos; });
        const std::string line = mText.substr(0, mText.find('\n'));
        mText.erase(0, line.size() + 1);
        return line;
    }
    std::string TakeRest() {
        mReader.join();
        return std::exchange(mText, {});
    }

private:
    void Receive(std::FILE* stream) {
        std::string line;
        for (int byte = 0; byte != EOF; line.clear()) {
            while (byte = std::getc(stream), byte != EOF && byte != '\n')
                line += static_cast<char>(byte);
            const std::lock_guard guard(mLock);
            mText += byte != EOF ? line + '\n' : line;
            mIsOver = byte == EOF;
            mArrival.notify_one();
        }
    }

    std::mutex mLock;
    std::condition_variable mArrival;
    std::string mText;
    bool mIsOver = false;
    std::jthread mReader;
};

}  // namespace

struct TestProcess::State {
    StartedProgram program;
    ReceivedText output{program.output.get()}, errors{program.errors.get()};
    bool isCollected = false;
};

TestProcess::TestProcess(const std::vector<std::string>& command)
    : mState(new State{StartedProgram(command)}) {}

TestProcess::~TestProcess() {
    if (!mState->isCollected) {
        Kill();
        mState->program.Collect();
    }
}

platform::ProcessId TestProcess::Id() const {
    return mState->program.id;
}

std::string TestProcess::ReadLine() {
    std::string line = mState->output.TakeLine();
    if (line.ends_with('\r'))
        line.pop_back();
    return line;
}

void TestProcess::WriteLine(const std::string& line) {
    std::FILE* const input = mState->program.input.get();
    ASSERT_GE(std::fputs((line + "\n").c_str(), input), 0);
    ASSERT_EQ(std::fflush(input), 0);
}

void TestProcess::CloseInput() {
    mState->program.input.reset();
}

ProgramResult TestProcess::Finish() {
    CloseInput();
    const std::string output = mState->output.TakeRest(), errors = mState->errors.TakeRest();
    mState->isCollected = true;
    return {mState->program.Collect(), output, errors};
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
