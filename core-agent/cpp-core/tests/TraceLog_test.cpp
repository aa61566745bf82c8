#include "TraceLog.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "CapturedTrace.h"

namespace {

class RecordingSink : public TraceSink {
public:
    bool isReady = true;
    std::vector<std::string> pieces;
    std::string logFile;

    bool IsReady() override { return isReady; }
    void BeginLogging(const char* path) override { logFile = path; }
    void Log(const char* text) override { pieces.emplace_back(text); }

    RecordingSink() { SetTraceSink(this); }
    ~RecordingSink() override { SetTraceSink(nullptr); }
};

class DeafDebugOutput : public platform::DebugOutput {
public:
    void Write(const char*) noexcept override {}
    bool IsListening() noexcept override { return false; }
};

}  // namespace

TEST(TraceLog, LinesNestBetweenTheirOpeningAndClosingLine) {
    CapturedTrace trace;
    LogMessage(1, "Entering %s", "outer");
    LogMessage(1, "Entering %s", "inner");
    LogMessage(0, "plain %d\n", 7);
    LogMessage(-1, "Exiting inner");
    LogMessage(-1, "outer() returning %d", 3);
    LogMessage(0, "%s", "");
    LogMessage(0, nullptr);
    EXPECT_EQ(trace.Text(),
              "Entering outer\n Entering inner\n  plain 7\n Exiting inner\nouter() returning 3\n\n");
}

TEST(TraceLog, ANestedStepIsClosedWithItsResultWhateverLeavesIt) {
    CapturedTrace trace;
    const auto step = [](bool throws) {
        uint32_t code = 21;
        const TraceScope scope(ReturningCode("Step", code), "Entering %s('%s')", "Step", "a");
        LogMessage(0, "within");
        if (throws)
            throw std::runtime_error("");
        return code = 7;
    };
    EXPECT_EQ(step(false), 7u);
    EXPECT_THROW(step(true), std::runtime_error);
    LogMessage(0, "after");
    EXPECT_EQ(trace.Text(),
              "Entering Step('a')\n within\nStep() returning 7\n"
              "Entering Step('a')\n within\nStep() returning 21\nafter\n");
}

TEST(TraceLog, LongTextsAreCutAndTheLongestGetNoLineFeed) {
    CapturedTrace trace;
    const auto lengthOfLine = [&](size_t length) {
        trace.Clear();
        LogMessage(0, "%s", std::string(length, 'x').c_str());
        return trace.Text().size();
    };
    EXPECT_EQ(lengthOfLine(65533), 65534u);  // with its line feed
    EXPECT_EQ(lengthOfLine(65534), 65534u);
    EXPECT_EQ(lengthOfLine(65535), 65535u);
    EXPECT_EQ(lengthOfLine(100000), 65535u);
}

// One process per test case: the logging switch cannot be turned back.
TEST(TraceLog, TheSinkGetsEveryPieceOnceLoggingIsOn) {
    CapturedTrace trace;
    RecordingSink sink;
    LogMessage(0, "before");
    EXPECT_TRUE(sink.pieces.empty());
    EnableLogging();
    LogMessage(1, "Entering");
    LogMessage(1, "Entering");
    LogMessage(-1, "Exiting");
    EXPECT_EQ(sink.pieces, (std::vector<std::string>{"Entering\n", " ", "Entering\n", " ", "Exiting\n"}));
    sink.isReady = false;
    LogMessage(-1, "Exiting");
    EXPECT_EQ(sink.pieces.size(), 5u);
    EXPECT_EQ(trace.Text(), "before\nEntering\n Entering\n Exiting\nExiting\n");
}

TEST(TraceLog, ItIsHeardWhileAnyoneListens) {
    DeafDebugOutput deaf;
    const platform::ScopedOverride<platform::DebugOutput> override(deaf);
    EXPECT_FALSE(IsTraceHeard());
    RecordingSink sink;
    EnableLogging();
    EXPECT_TRUE(IsTraceHeard());
    sink.isReady = false;
    EXPECT_FALSE(IsTraceHeard());
    const CapturedTrace trace;
    EXPECT_TRUE(IsTraceHeard());
}

TEST(TraceLog, TheLogFileBeginsWithABannerThatOnlyTheSinkSees) {
    CapturedTrace trace;
    RecordingSink sink;
    SetLogFile("Illustrator2025.log");
    EXPECT_EQ(sink.logFile, "Illustrator2025.log");
    ASSERT_EQ(sink.pieces.size(), 1u);
    const std::string& banner = sink.pieces.front();
    EXPECT_EQ(banner.substr(0, 9), "\n=======\n");
    EXPECT_EQ(banner.substr(banner.size() - 9), "\n=======\n");
    EXPECT_EQ(trace.Text(), "");
}

TEST(TraceLog, NestingIsKeptWhileNobodyListens) {
    LogMessage(1, "unheard");
    CapturedTrace trace;
    LogMessage(0, "heard");
    EXPECT_EQ(trace.Text(), " heard\n");
}
