#include "GLogger.h"

#include <gtest/gtest.h>

#include <sstream>

#include "CapturedTrace.h"

namespace {

class LoggerTest : public testing::Test {
protected:
    LoggerTest() { logger.AddStream(stream); }

    GLogger logger;
    const std::shared_ptr<std::ostringstream> stream = std::make_shared<std::ostringstream>();
};

}  // namespace

TEST_F(LoggerTest, LevelsHaveNames) {
    const std::pair<const char*, int> names[] = {
        {"None", 0}, {"Error", 1}, {"Warning", 2}, {"Info", 3}, {"Debug", 4}};
    for (const auto& [name, level] : names) {
        EXPECT_EQ(GLogger::LevelFromString(name), level) << name;
        EXPECT_EQ(GLogger::LevelToString(level), name);
    }
    EXPECT_EQ(GLogger::LevelFromString("Warn"), 2);
    EXPECT_EQ(GLogger::LevelFromString("warn"), -1);
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
    stream->setstate(std::ios::badbit);  // as when the disk is full; it may have room again
    logger.Log("Other", GLogger::kError, "kept %d", 3);
    EXPECT_EQ(stream->str(),
              "[Panel]\t[Warning]\tkept 1\n[Other]\t[Debug]\tkept 2\n[Other]\t[Error]\tkept 3\n");
}

TEST(SharedLogger, WritesWholeLinesToTheDebuggerAndKeepsNothing) {
    CapturedTrace output;
    output.isListening = false;
    GLogger& shared = GLogger::GetSharedInstance();
    shared.Log("A", GLogger::kError, "unheard");
    output.isListening = true;
    shared.Log("A", GLogger::kError, "%s", std::string(100000, 'x').c_str());
    EXPECT_EQ(output.Text(), "[A]\t[Error]\t" + std::string(100000, 'x') + "\n");
}
