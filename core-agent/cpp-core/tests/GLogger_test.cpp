#include "GLogger.h"

#include <gtest/gtest.h>

#include <sstream>

#include "CapturedTrace.h"

TEST(GLogger, WritesWhatItsLevelOrTheDefaultOneAdmits) {
    GLogger logger;
    const auto stream = std::make_shared<std::ostringstream>();
    logger.AddStream(stream);
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

TEST(GLogger, TheSharedOneWritesWholeLinesToTheDebuggerAndKeepsNothing) {
    CapturedTrace output;
    output.isListening = false;
    GLogger& shared = GLogger::GetSharedInstance();
    shared.Log("A", GLogger::kError, "unheard");
    output.isListening = true;
    shared.Log("A", GLogger::kError, "%s", std::string(100000, 'x').c_str());
    EXPECT_EQ(output.Text(), "[A]\t[Error]\t" + std::string(100000, 'x') + "\n");
}
