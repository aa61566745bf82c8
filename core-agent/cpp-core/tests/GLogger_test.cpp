#include "GLogger.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "CapturedTrace.h"

namespace {

class LoggerTest : public testing::Test {
protected:
    LoggerTest() { logger.AddStream(stream); }

    GLogger logger;
    const std::shared_ptr<std::ostringstream> stream = std::make_shared<std::ostringstream>();
};

/// Takes nothing while it is full.
class FullBuffer : public std::stringbuf {
public:
    bool isFull = true;

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        return isFull ? 0 : std::stringbuf::xsputn(text, size);
    }
};

class DeafDebugOutput : public platform::DebugOutput {
public:
    void Write(const char* text) noexcept override { written += text; }
    bool IsListening() noexcept override { return isListening; }

    bool isListening = false;
    std::string written;

private:
    platform::ScopedOverride<platform::DebugOutput> mOverride{*this};
};

}  // namespace

TEST_F(LoggerTest, LevelsHaveNames) {
    const std::pair<const char*, int> names[] = {{"Error", 1}, {"Warning", 2},    {"Warn", 2},
                                                 {"Info", 3},  {"Debug", 4},      {"None", 0},
                                                 {"warn", -1}, {"Debugging", -1}, {"", -1}};
    for (const auto& [name, level] : names) {
        EXPECT_EQ(GLogger::LevelFromString(name), level) << name;
        const std::string written = GLogger::LevelToString(level);
        EXPECT_EQ(written, level < 0 ? "" : level == 2 ? "Warning" : name);
    }
    EXPECT_EQ(GLogger::LevelToString(5), "");
}

TEST_F(LoggerTest, WritesWhatItsLevelOrTheDefaultOneAdmits) {
    logger.Log("Panel", GLogger::kInfo, "dropped");
    logger.Log("Panel", GLogger::kWarning, "kept %d", 1);
    logger.SetLevel("default", GLogger::kDebug);
    logger.Log("Other", GLogger::kDebug, "kept %d", 2);
    for (const int level : {GLogger::kNone, GLogger::kUnknown}) {
        logger.Log("Other", level, "dropped");
        logger.SetLevel("Panel", level);
        logger.Log("Panel", GLogger::kError, "dropped");
    }
    EXPECT_EQ(stream->str(), "[Panel]\t[Warning]\tkept 1\n[Other]\t[Debug]\tkept 2\n");
}

TEST_F(LoggerTest, EveryStreamGetsWholeLinesFromAllThreads) {
    const auto second = std::make_shared<std::ostringstream>();
    logger.AddStream(second);
    const auto write = [&] {
        for (int index = 0; index < 100; ++index) {
            logger.SetLevel("Thread", GLogger::kInfo);
            logger.Log("Thread", GLogger::kInfo, "%s", "0123456789");
        }
    };
    std::thread other(write);
    write();
    other.join();
    EXPECT_EQ(stream->str(), second->str());
    std::istringstream lines(stream->str());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_EQ(line, "[Thread]\t[Info]\t0123456789");
    EXPECT_EQ(count, 200);
}

TEST_F(LoggerTest, AStreamThatFailsHarmsNoOtherLine) {
    FullBuffer buffer;
    const auto full = std::make_shared<std::ostream>(&buffer);
    const auto last = std::make_shared<std::ostringstream>();
    logger.AddStream(full);
    logger.AddStream(last);
    logger.Log("A", GLogger::kError, "one");
    full->clear();
    full->exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_NO_THROW(logger.Log("A", GLogger::kError, "two"));
    buffer.isFull = false;
    logger.Log("A", GLogger::kError, "three");
    EXPECT_EQ(buffer.str(), "[A]\t[Error]\tthree\n");
    EXPECT_EQ(last->str(), "[A]\t[Error]\tone\n[A]\t[Error]\ttwo\n[A]\t[Error]\tthree\n");
}

TEST(SharedLogger, WritesWholeLinesToTheDebuggerAndKeepsNothing) {
    DeafDebugOutput output;
    GLogger& shared = GLogger::GetSharedInstance();
    shared.Log("A", GLogger::kError, "unheard");
    output.isListening = true;
    shared.Log("A", GLogger::kError, "%s", std::string(100000, 'x').c_str());
    EXPECT_EQ(output.written, "[A]\t[Error]\t" + std::string(100000, 'x') + "\n");
}
