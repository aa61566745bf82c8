#include "ErrorCodes.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST(ErrorCodes, CodesHaveTheirNumberAboveTheirNamespace) {
    EXPECT_EQ(GAgentIF::kShutdown, 0x0200200Du);
    EXPECT_EQ(GIPCClient::kServiceUnavailable, 0x0300100Eu);
    EXPECT_EQ(GZephyrinConfig::kAgentNotFound, 0x02002005u);
    EXPECT_EQ(CoreErrorCodes::kUnknownError, 0x15000000u);
    EXPECT_EQ(error_codes::GScopedXMPFile::kXMPError, 0x0300A002u);
    EXPECT_EQ(error_codes::GFontServerProxy::kTooManyRequests, 0x11004018u);
}

TEST(ErrorCodes, NamesAndCodesFindEachOther) {
    EXPECT_EQ(ErrorCodeToName(0), "CoreErrorCodes::kSuccess");
    EXPECT_EQ(ErrorCodeToName(0x01000000), "CoreErrorCodes::kError");
    EXPECT_EQ(ErrorNameToCode("GAgentIF::kShutdown"), 0x0200200Du);
    for (const char* name :
         {"GFile::kOpenFailed", "GZephyrinDataFacade::kCannotAddCloudFontsToSet",
          "GResultSpecVectorXMLParser::kInvalidResultSpecContents", "GHttpMessageHandler::kJSONException"})
        EXPECT_EQ(ErrorCodeToName(ErrorNameToCode(name)), name);
}

TEST(ErrorCodes, WhatIsNotInTheTableIsUnknown) {
    EXPECT_EQ(ErrorCodeToName(0x0B000000), "Unknown error code");  // a gap in the numbers
    EXPECT_EQ(ErrorCodeToName(0x01000001), "Unknown error code");
    EXPECT_EQ(ErrorNameToCode("gagentif::kshutdown"), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(ErrorNameToCode("kShutdown"), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(ErrorNameToCode(""), CoreErrorCodes::kUnknownError);
}

TEST(ErrorCodes, OneCodeCarriesAnotherNamespacesIdentifier) {
    EXPECT_EQ(ErrorCodeToName(0x07004005), "GFontToolResults::kFontAlreadyInDatabase");
    EXPECT_EQ(ErrorNameToCode("GFontToolResults::kFontAlreadyInDatabase"), 0x07004005u);
}

TEST(ErrorCodes, ManyThreadsMayAskFirst) {
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index)
        threads.emplace_back([] {
            EXPECT_EQ(ErrorCodeToName(error_codes::GFile::kFileNotOpen), "GFile::kFileNotOpen");
            EXPECT_EQ(ErrorNameToCode("GFile::kFileNotOpen"), error_codes::GFile::kFileNotOpen);
        });
    for (std::thread& thread : threads)
        thread.join();
}
