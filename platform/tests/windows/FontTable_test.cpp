#include "platform/FontTable.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"
#include "TestFonts.h"
#include "platform/Files.h"
#include "platform/Processes.h"

namespace platform {
namespace {

/// A font of a name that nobody else's has, in a file whose path has all that paths may have.
class FontTableTest : public testing::TestWithParam<size_t> {
protected:
    FontTable& mTable = Current<FontTable>();
    const std::string mFamily = "Table" + std::to_string(CurrentProcessId());
    const std::string mName = mFamily + "-Bold";
    TemporaryFolder mFolder;
    const std::string mPath =
        mFolder.Write(std::string(GetParam(), 'x') + "/" + std::string(GetParam(), 'y') + "/font.ttf",
                      MakeTestFont({mName, mFamily, "Bold", "1.0"}));

    bool IsVisible() { return mTable.Visible().Offers("", mName); }
};

// The second has more characters than paths in the system's old functions.
INSTANTIATE_TEST_SUITE_P(PathLengths, FontTableTest, testing::Values(4, 120));

TEST_P(FontTableTest, AFontIsVisibleUntilItWasRemovedAsOftenAsItWasAdded) {
    EXPECT_FALSE(IsVisible());
    EXPECT_FALSE(mTable.Remove(mPath));
    ASSERT_TRUE(mTable.Add(mPath));
    ASSERT_TRUE(mTable.Add(mPath));
    EXPECT_TRUE(IsVisible());
    EXPECT_EQ(mTable.Added()[mPath], 2);
    EXPECT_TRUE(mTable.Remove(mPath));
    EXPECT_TRUE(IsVisible());
    EXPECT_EQ(mTable.Added()[mPath], 1);
    EXPECT_TRUE(mTable.Remove(mPath));
    EXPECT_FALSE(mTable.Remove(mPath));
    EXPECT_FALSE(IsVisible());
    EXPECT_FALSE(mTable.Added().contains(mPath));
    EXPECT_FALSE(RemoveFile(mPath)) << "nothing holds the file any more";
    EXPECT_FALSE(mTable.Add(mPath));
    EXPECT_FALSE(mTable.Add(mFolder.Write("text.ttf", "no font at all")));
}

}  // namespace
}  // namespace platform
