#include "TextBuffer.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

#include <cstring>

TEST(TextBuffer, ATextMustBeShorterThanItsBuffer) {
    char buffer[16];
    for (const size_t size : {size_t{0}, size_t{1}, size_t{4}, size_t{5}}) {
        std::strcpy(buffer, "untouched");
        size_t inOut = size;
        EXPECT_EQ(CopyTextToBuffer("12345", buffer, &inOut), CoreErrorCodes::kIndexOutOfRange) << size;
        EXPECT_EQ(inOut, 5u) << "the length, without the terminating zero";
        EXPECT_STREQ(buffer, "untouched");
    }
    size_t size = 6;
    EXPECT_EQ(CopyTextToBuffer("12345", buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_STREQ(buffer, "12345");
    EXPECT_EQ(size, 6u);
}

TEST(TextBuffer, ANullListWritesNothing) {
    char buffer[] = "untouched";
    size_t size = 0;
    EXPECT_EQ(CopyFontsToBuffer(nullptr, buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_STREQ(buffer, "untouched");
    size = sizeof buffer;
    EXPECT_EQ(CopyFontsToBuffer(cf::MutableArray().get(), buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_STREQ(buffer, "[]");
}
