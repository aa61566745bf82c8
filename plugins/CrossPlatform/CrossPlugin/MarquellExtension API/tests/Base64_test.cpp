#include "Base64.h"

#include <gtest/gtest.h>

using namespace std::string_view_literals;

TEST(Base64, EncodesAsTheStandardsExamples) {
    // RFC 4648, 10
    EXPECT_EQ(Base64Lines(""), "");
    EXPECT_EQ(Base64Lines("f"), "Zg==\n");
    EXPECT_EQ(Base64Lines("fo"), "Zm8=\n");
    EXPECT_EQ(Base64Lines("foo"), "Zm9v\n");
    EXPECT_EQ(Base64Lines("foobar"), "Zm9vYmFy\n");
    EXPECT_EQ(Base64Lines("\0\xFB\xFF"sv), "APv/\n") << "bytes, not characters";
}

TEST(Base64, LinesHaveUpTo76Characters) {
    const std::string line = std::string(76, 'Y').replace(0, 76, [] {
        std::string text;
        for (int group = 0; group < 19; ++group)
            text += "YWFh";
        return text;
    }());
    EXPECT_EQ(Base64Lines(std::string(57, 'a')), line + "\n");
    EXPECT_EQ(Base64Lines(std::string(58, 'a')), line + "\nYQ==\n");
    EXPECT_EQ(Base64Lines(std::string(114, 'a')), line + "\n" + line + "\n");
}
