#include "TextBuffer.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

TEST(TextBuffer, ATextMustBeShorterThanItsBuffer) {
    for (const size_t room : {0, 4, 5, 6}) {
        char buffer[16] = "untouched";
        size_t size = room;
        EXPECT_EQ(CopyTextToBuffer("12345", buffer, &size), room > 5 ? 0 : CoreErrorCodes::kIndexOutOfRange);
        EXPECT_STREQ(buffer, room > 5 ? "12345" : "untouched");
        EXPECT_EQ(size, room > 5 ? room : 5) << "the length, without the terminating zero";
    }
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
