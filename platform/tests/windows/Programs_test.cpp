// How programs are started, and what they are called then.
#include <gtest/gtest.h>

#include "TemporaryFolder.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

using namespace std::chrono_literals;

TEST(Programs, AProgramHasTheNameOfItsFileAndWorksInItsFolder) {
    const TemporaryFolder folder;
    ASSERT_FALSE(platform::CopyToNewFile(CHILD_PROGRAM, folder / "Photoshop.exe"));
    const std::string program = platform::AbsolutePath(folder / "PHOTOshop.EXE");
    platform::SystemError error;
    const auto child = platform::Current<platform::Processes>().Launch(
        program, "\"" + program + "\" tell \"" + folder / "told" + "\"", error);
    ASSERT_TRUE(child);
    child->WaitUntilIdle(10s);
    std::string told;
    ASSERT_FALSE(platform::ReadWholeFile(folder / "told", told, 1000));
    EXPECT_EQ(told, "Photoshop|" + platform::AbsolutePath(platform::Utf8Text(folder.Path())));
}
