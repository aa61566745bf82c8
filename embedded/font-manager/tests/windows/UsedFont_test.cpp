// Fonts that programs show text with, which Windows neither deletes nor replaces.
#include <gtest/gtest.h>
#include <windows.h>

#include "activation/FontVault.h"
#include "platform/Utf8Path.h"
#include "scan/Checksum.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

TEST(UsedFont, IsTakenForItselfWhenItIsAddedAgain) {
    test::TestWorld world;
    const FontVault vault(world.Path("vault"));
    const std::string content = "pretend that this is a font";
    Checksum checksum;
    checksum.Append(content);
    const FontFile file{0, checksum.Digits(), "font.ttf", ".ttf", content.size()};
    const auto add = [&] {
        ReceivedFile received;
        platform::ReadOnlyFile source;
        platform::SystemError error = source.Open(world.Write("source", content));
        EXPECT_FALSE(error);
        EXPECT_EQ(vault.Receive(source, StopFlag(false), received, error), FontVault::Outcome::kReceived);
        return vault.Place(received, file);
    };
    ASSERT_FALSE(add());
    const HANDLE used = CreateFileW(platform::Utf8Path(vault.PathOf(file)).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(used, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(vault.Remove(file));
    EXPECT_FALSE(add());
    CloseHandle(used);
    EXPECT_FALSE(vault.Remove(file));
}

}  // namespace
}  // namespace pellwick
