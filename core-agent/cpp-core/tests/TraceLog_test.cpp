#include "TraceLog.h"

#include <gtest/gtest.h>

#include <stdexcept>
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

uint32_t Step(bool throws) {
    uint32_t code = 21;
    const TraceScope scope(ReturningCode("Step", code), "Entering %s('%s')", "Step", "a");
    LogMessage(0, "within %d\n", 7);
    if (throws)
        throw std::runtime_error("");
    return code = 7;
}

}  // namespace

TEST(TraceLog, LinesNestBetweenTheirOpeningAndClosingLineWhateverLeavesTheStep) {
    CapturedTrace trace;
    LogMessage(1, "Entering %s", "outer");
    EXPECT_EQ(Step(false), 7u);
    EXPECT_THROW(Step(true), std::runtime_error);
    LogMessage(-1, "Exiting outer");
    LogMessage(0, "%s", "");
    LogMessage(0, nullptr);
    EXPECT_EQ(trace.Text(),
              "Entering outer\n Entering Step('a')\n  within 7\n Step() returning 7\n"
              " Entering Step('a')\n  within 7\n Step() returning 21\nExiting outer\n\n");
}

TEST(TraceLog, NoArgumentBeginsALineOfItsOwn) {
    CapturedTrace trace;
    LogMessage(0, "opening '%s'", "a\nReturning 0\r\nb");
    LogLines(0, "a file: %s", "one\ntwo\n");
    EXPECT_EQ(trace.Text(), "opening 'a Returning 0  b'\na file: one\ntwo\n");
}

TEST(TraceLog, LongTextsAreCutAndTheLongestGetNoLineFeed) {
    CapturedTrace trace;
    const std::pair<size_t, size_t> lengths[] = {
        {65533, 65534}, {65534, 65534}, {65535, 65535}, {100000, 65535}};  // of texts and of lines
    for (const auto& [text, line] : lengths) {
        trace.Clear();
        LogMessage(0, "%s", std::string(text, 'x').c_str());
        EXPECT_EQ(trace.Text().size(), line);
    }
}

// The logging switch cannot be turned back.
TEST(TraceLog, IsHeardByTheDebuggerAndOnceLoggingIsOnByTheSink) {
    CapturedTrace trace;
    trace.isListening = false;
    EXPECT_FALSE(IsTraceHeard());
    LogMessage(1, "nesting is kept while nobody listens");
    RecordingSink sink;
    const bool wasLoggingOn = IsTraceHeard();
    trace.isListening = true;
    EXPECT_TRUE(IsTraceHeard());
    LogMessage(0, "before");
    EXPECT_EQ(sink.pieces.empty(), !wasLoggingOn);
    sink.pieces.clear();
    EnableLogging();
    LogMessage(1, "Entering");
    LogMessage(-1, "Exiting");
    const std::vector<std::string> pieces{" ", "Entering\n", " ", "Exiting\n"};
    EXPECT_EQ(sink.pieces, pieces);
    trace.isListening = false;
    EXPECT_TRUE(IsTraceHeard());
    sink.isReady = false;
    EXPECT_FALSE(IsTraceHeard());
    trace.isListening = true;
    LogMessage(-1, "Exiting");
    EXPECT_EQ(sink.pieces, pieces);
    EXPECT_EQ(trace.Text(), " before\n Entering\n Exiting\nExiting\n");
}

TEST(TraceLog, TheLogFileBeginsWithABannerThatOnlyTheSinkSees) {
    CapturedTrace trace;
    RecordingSink sink;
    SetLogFile("Illustrator2025.log");
    EXPECT_EQ(sink.logFile, "Illustrator2025.log");
    ASSERT_EQ(sink.pieces.size(), 1u);
    EXPECT_TRUE(sink.pieces[0].starts_with("\n=======\n"));
    EXPECT_EQ(trace.Text(), "");
}
