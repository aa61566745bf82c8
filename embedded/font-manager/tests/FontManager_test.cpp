#include "agent/FontManager.h"

#include <gtest/gtest.h>

#include "TestFonts.h"
#include "platform/PrivateFolder.h"
#include "platform/Processes.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

/// A host that lives and one that is gone, with a lease and an answer each.
class FontManagerTest : public testing::Test {
protected:
    FontManagerTest() {
        EXPECT_FALSE(platform::MakePrivateFolder(mPlaces.dataFolder));
        mManager = std::make_unique<FontManager>(mPlaces);
        mManager->EndLeasesOfEarlierEra();
        FontFile file;
        file.checksum = "checksum";
        file.extension = ".ttf";
        mFont = mManager->fonts.FontsOfFile(mManager->fonts.Add(file, {FontFace{}})).front().id;
    }

    void Lease(const HostProcess& host) {
        mManager->activations.AddLease(mFont, {host});
        mManager->activations.KeepAnswer(host, 1, "{}");
    }
    std::vector<HostProcess> Hosts() {
        const std::vector<HostProcess> hosts = mManager->activations.Hosts();
        EXPECT_EQ(mManager->activations.HostsWithAnswers(), hosts);
        return hosts;
    }

    TestWorld mWorld;
    const Locations mPlaces = Locations::OfThisUser();
    std::unique_ptr<FontManager> mManager;
    uint32_t mFont = 0;
    const HostProcess mSelf{platform::CurrentProcessId(),
                            platform::ProcessStartTime(platform::CurrentProcessId())};
};

TEST_F(FontManagerTest, EndsTheLeasesOfDeadProcessesAlone) {
    Lease(mSelf);
    Lease({mSelf.process, mSelf.startTime + 1});  // whose identifier is this process's now
    Lease({0, 0});
    EXPECT_EQ(mManager->EndLeasesOfDeadProcesses().deactivated, std::vector<uint32_t>{});
    EXPECT_EQ(Hosts(), std::vector{mSelf});
}

TEST_F(FontManagerTest, EndsAllLeasesOfAnotherEraOnce) {
    const std::string era = mManager->settings.Era();
    EXPECT_EQ(era, platform::ProcessEra());
    const auto isLeaseLeft = [&](const std::string& noted) {
        Lease(mSelf);
        mManager->settings.NoteEra(noted);
        mManager->EndLeasesOfEarlierEra();
        EXPECT_EQ(mManager->settings.Era(), era);
        return !Hosts().empty();
    };
    EXPECT_TRUE(isLeaseLeft(era));
    EXPECT_TRUE(isLeaseLeft("")) << "of an older version, which noted none";
    EXPECT_EQ(isLeaseLeft("another"), era.empty()) << "identifiers of processes are told from those before";
    EXPECT_TRUE(isLeaseLeft(era));
}

}  // namespace
}  // namespace pellwick::test
