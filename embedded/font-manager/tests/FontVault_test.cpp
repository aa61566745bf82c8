#include "activation/FontVault.h"

#include <gtest/gtest.h>

#include "common/FontManagerLimits.h"
#include "tests/support/TestWorld.h"
#include "tests/support/VaultFiles.h"

namespace pellwick {
namespace {

using Outcome = FontVault::Outcome;

const StopFlag kGoesOn{false};

class FontVaultTest : public testing::Test {
protected:
    Outcome Receive(const std::string& content, ReceivedFile& received, const StopFlag& flag = kGoesOn) {
        platform::ReadOnlyFile source;
        EXPECT_FALSE(source.Open(world.Write("source", content)));
        platform::SystemError error;
        return vault.Receive(source, flag, received, error);
    }
    static FontFile FileOf(const std::string& content) {
        FontFile file;
        file.checksum = test::ChecksumOf(content);
        file.extension = ".ttf";
        file.size = content.size();
        return file;
    }

    test::TestWorld world{"\u0448\u0440\u0438\u0444\u0442 \u5b57\u4f53"};
    FontVault vault{world.Path("vault")};
};

TEST_F(FontVaultTest, KeepsACopyOfAnySizeUnderItsChecksum) {
    for (const size_t size : {size_t{0}, size_t{1}, size_t{1} << 20, (size_t{2} << 20) + 7}) {
        const std::string content(size, 'x');
        const FontFile file = FileOf(content);
        ReceivedFile received;
        ASSERT_EQ(Receive(content, received), Outcome::kReceived);
        EXPECT_EQ(received.checksum, file.checksum);
        EXPECT_EQ(received.size, size);
        ASSERT_FALSE(vault.Place(received, file));
        EXPECT_TRUE(vault.IsIntact(file, kGoesOn));
        // Links give other programs the very same file; none of them is to write to it by mistake.
        using std::filesystem::perms;
        const perms allowed = std::filesystem::status(platform::Utf8Path(vault.PathOf(file))).permissions();
        EXPECT_EQ(allowed & (perms::owner_write | perms::group_write | perms::others_write), perms::none);
    }
    EXPECT_EQ(world.FilesBelow("vault").size(), 4u);
    EXPECT_EQ(world.FilesBelow("vault/incoming").size(), 0u);
}

TEST_F(FontVaultTest, SeesOtherBytesOfTheSameNumber) {
    const FontFile file = FileOf("abc");
    ASSERT_TRUE(test::PutIntoVault(vault, file, "abd"));
    EXPECT_TRUE(vault.Has(file));
    EXPECT_FALSE(vault.IsIntact(file, kGoesOn));
    const std::string aside = vault.SetAside(vault.PathOf(file));
    EXPECT_TRUE(platform::IsExistingFile(aside));
    EXPECT_FALSE(vault.Has(file));
    EXPECT_TRUE(vault.LookAround({}).unknown.empty()) << "nobody takes it for a font of the vault";
}

TEST_F(FontVaultTest, LooksAroundForWhatIsMissingUnknownOrLeftHalfWay) {
    const FontFile known = FileOf("known");
    const FontFile cut = FileOf("cut");
    const FontFile gone = FileOf("gone");
    const FontFile unknown = FileOf("unknown");
    ASSERT_TRUE(test::PutIntoVault(vault, known, "known"));
    ASSERT_TRUE(test::PutIntoVault(vault, cut, "c"));
    ASSERT_TRUE(test::PutIntoVault(vault, unknown, "unknown"));
    world.Write("vault/incoming/a1B2c3", "half");
    FontFile left = known;
    left.extension = ".ttf.a1B2c3";
    ASSERT_TRUE(test::PutIntoVault(vault, left, "half"));
    const std::string foreign = world.Write("vault/zz/mine.ttf", "the user's own");

    const FontVault::Survey survey = vault.LookAround({known, cut, gone});
    EXPECT_EQ(survey.unknown, std::vector{vault.PathOf(unknown)});
    ASSERT_EQ(survey.missing.size(), 2u);
    EXPECT_EQ(survey.missing[0].checksum, cut.checksum);
    EXPECT_EQ(survey.removed, 2);
    EXPECT_TRUE(platform::IsExistingFile(foreign));
}

}  // namespace
}  // namespace pellwick
