#include "FontManagerInterface.h"

#include <gtest/gtest.h>

#include "VersionsAreCompatible.h"

TEST(VersionsAreCompatible, TheFirstThreeComponentsMustAgree) {
    EXPECT_TRUE(VersionsAreCompatible("5.1.2.100", "5.1.2.7"));
    EXPECT_FALSE(VersionsAreCompatible("5.1.2.1", "5.1.3.1"));
    EXPECT_TRUE(VersionsAreCompatible("5.1", "5.1.2.0"));
    EXPECT_TRUE(VersionsAreCompatible("5.1.2.0", "5.1"));
    EXPECT_FALSE(VersionsAreCompatible("5.1", "5.12.0.0"));
    EXPECT_FALSE(VersionsAreCompatible("5.1.2", "5.1.20"));
    EXPECT_TRUE(VersionsAreCompatible("5.1.2.", "5.1.2.9"));
    EXPECT_TRUE(VersionsAreCompatible("1.0.0.0", "9.9"));
    EXPECT_TRUE(VersionsAreCompatible("9.9", "1.0.0.0"));
    EXPECT_TRUE(VersionsAreCompatible("", "9.9"));
    EXPECT_TRUE(VersionsAreCompatible("x.x.x.x", "x.x.x.x"));
    EXPECT_FALSE(VersionsAreCompatible("x.x.x.x", "8.0.0.0"));
}
