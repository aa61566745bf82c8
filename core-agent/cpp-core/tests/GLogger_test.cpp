#include "GLogger.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

TEST(GLogger, LevelsHaveNames) {
    EXPECT_EQ(GLogger::LevelFromString("Warn"), GLogger::kWarning);
    EXPECT_EQ(GLogger::LevelFromString("Warning"), 2);
    EXPECT_EQ(GLogger::LevelFromString("None"), 0);
    EXPECT_EQ(GLogger::LevelFromString("warn"), -1);
    EXPECT_EQ(GLogger::LevelFromString("Debugging"), -1);
    EXPECT_EQ(GLogger::LevelToString(2), "Warning");
    EXPECT_EQ(GLogger::LevelToString(0), "None");
    EXPECT_EQ(GLogger::LevelToString(-1), "");
    EXPECT_EQ(GLogger::LevelToString(5), "");
}

TEST(GLogger, ALoggerWithoutALevelHasTheDefaultOne) {
    GLogger logger;
    const auto stream = std::make_shared<std::ostringstream>();
    logger.AddStream(stream);
    logger.Log("Panel", GLogger::kInfo, "dropped");
    logger.Log("Panel", GLogger::kError, "kept %d", 1);
    EXPECT_EQ(stream->str(), "[Panel]\t[Error]\tkept 1\n");
    EXPECT_EQ(logger.GetLevel("Panel"), 2);
    logger.SetLevel("Panel", GLogger::kNone);
    logger.Log("Panel", GLogger::kError, "dropped");
    logger.SetLevel("default", GLogger::kDebug);
    logger.Log("Other", GLogger::kDebug, "kept 2");
    EXPECT_EQ(stream->str(), "[Panel]\t[Error]\tkept 1\n[Other]\t[Debug]\tkept 2\n");
}

TEST(GLogger, NothingIsWrittenAtLevelsThatAreNone) {
    GLogger logger;
    const auto stream = std::make_shared<std::ostringstream>();
    logger.AddStream(stream);
    logger.SetLevel("default", GLogger::kDebug);
    logger.Log("Panel", GLogger::kNone, "dropped");
    logger.Log("Panel", GLogger::kUnknown, "dropped");
    logger.SetLevel("Panel", GLogger::kUnknown);
    logger.Log("Panel", GLogger::kError, "dropped");
    EXPECT_EQ(stream->str(), "");
}

TEST(GLogger, EveryStreamGetsWholeLinesFromAllThreads) {
    GLogger logger;
    const auto first = std::make_shared<std::ostringstream>();
    const auto second = std::make_shared<std::ostringstream>();
    logger.AddStream(first);
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
    EXPECT_EQ(first->str(), second->str());
    std::istringstream lines(first->str());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_EQ(line, "[Thread]\t[Info]\t0123456789");
    EXPECT_EQ(count, 200);
}
