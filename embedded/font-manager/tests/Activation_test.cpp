// Fonts that become active for other programs, and the vault that they stand in.
#include "activation/Activation.h"

#include "activation/FontResources.h"
#include "activation/LinkFolder.h"
#include "agent/FontManager.h"
#include "platform/FontTable.h"
#include "platform/PrivateFolder.h"
#include "platform/Utf8Path.h"
#include "scan/Checksum.h"
#include "tests/support/StoreTest.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;
using Outcome = FontVault::Outcome;

constexpr HostProcess kHost{100, 1};
constexpr HostProcess kOtherHost{200, 1};
const StopFlag kGoesOn{false};

class FakeFontTable : public platform::FontTable {
public:
    bool IsFilledFromFolders() override { return false; }
    bool Add(const std::string& path) override {
        counts[path] += isFull ? 0 : 1;
        return !isFull;
    }
    bool Remove(const std::string& path) override {
        const auto found = counts.find(path);
        if (found == counts.end())
            return false;
        if (--found->second == 0) {
            takenOut.insert(path);
            counts.erase(found);
        }
        return true;
    }
    std::map<std::string, int> Added() override { return counts; }
    void AnnounceChange() override { ++announcements; }
    platform::VisibleFonts Visible() override { return {}; }

    using Counts = std::map<std::string, int>;
    Counts counts;  ///< how often each file is in it
    std::set<std::string> takenOut;
    int announcements = 0;
    bool isFull = false;
};

class VaultTest : public StoreTest {
protected:
    static FontFile FileOf(const std::string& content, const std::string& extension = ".ttf") {
        Checksum checksum;
        checksum.Append(content);
        return {0, checksum.Digits(), "font" + extension, extension, content.size()};
    }
    /// Writes the content where the vault has that file, whatever its checksum.
    void Put(const FontFile& file, const std::string& content) {
        mWorld.Write(mVault.PathOf(file).substr(mWorld.Path("").size()), content);
    }

    test::TestWorld mWorld{"Ein Ordner \u0448\u0440\u0438\u0444\u0442 \u5b57\u4f53 \U0001F600"};
    FontVault mVault{mWorld.Path("vault")};
};

/// A file of two faces, whose name has all that names may have, and a way of making it active.
class ActivationTest : public VaultTest {
protected:
    ActivationTest() {
        Put(mFile, mContent);
        FontFace second;
        second.face = 1;
        for (const Font& font : mFonts.FontsOfFile(mFonts.Add(mFile, {FontFace(), second})))
            mIDs.push_back(font.id);
        SetWay(false);
    }
    void SetWay(bool isLinks) {
        if (isLinks)
            mWay = std::make_unique<LinkFolder>(mWorld.Path("data/fonts"), mVault);
        else
            mWay = std::make_unique<FontResources>(mVault);
    }

    Font FontAt(size_t index) { return *mFonts.Find(mIDs[index]); }

    template <class Change>
    ActivationChanges Apply(Change change) {
        Activation activation(mDatabase, mFonts, mActivations, *mWay);
        change(activation);
        return activation.Commit();
    }
    ActivationChanges Lease(size_t index, const HostProcess& host) {
        return Apply([&](Activation& activation) { EXPECT_TRUE(activation.Lease(FontAt(index), {host})); });
    }
    bool TryToActivate() {
        bool isActive = false;
        Apply([&](Activation& activation) { isActive = activation.ActivateForUser(FontAt(0)); });
        return isActive;
    }
    ActivationChanges EndLeases(size_t index, const HostProcess& host) {
        return Apply([&](Activation& activation) {
            activation.EndLeases(mIDs[index], host, LeasePurpose::kDocument);
        });
    }
    bool IsVaultsFileActive() {
        return fs::equivalent(platform::Utf8Path(mWay->PathOf(mFile)),
                              platform::Utf8Path(mVault.PathOf(mFile)));
    }

    const std::string mContent = "pretend that this is a font";
    const FontFile mFile = FileOf(mContent, ".ttc");
    FakeFontTable mTable;
    const platform::ScopedOverride<platform::FontTable> mOverride{mTable};
    std::unique_ptr<ActiveFonts> mWay;
    std::vector<uint32_t> mIDs;
};

class EveryWay : public ActivationTest, public testing::WithParamInterface<bool> {
protected:
    EveryWay() { SetWay(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(LinksOrResources, EveryWay, testing::Bool());

class LinkFolderTest : public ActivationTest {
protected:
    LinkFolderTest() { SetWay(true); }

    const std::string mStray = "ab/ab" + std::string(62, '0') + ".ttf";
};

using FontResourcesTest = ActivationTest;

TEST_P(EveryWay, KeepsAFileActiveWhileAnyOfItsFontsIsHeldByAnybody) {
    EXPECT_EQ(Lease(0, kHost).activated, std::vector{mIDs[0]});
    EXPECT_TRUE(Lease(0, kOtherHost).activated.empty());
    EXPECT_EQ(Lease(1, kHost).activated, std::vector{mIDs[1]});
    EXPECT_TRUE(IsVaultsFileActive());
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_EQ(EndLeases(0, kOtherHost).deactivated, std::vector{mIDs[0]});
    EXPECT_TRUE(mWay->Has(mFile));
    EXPECT_EQ(EndLeases(1, kHost).deactivated, std::vector{mIDs[1]});
    EXPECT_FALSE(mWay->Has(mFile));
    EXPECT_TRUE(mWorld.FilesBelow("data/fonts").empty() && mTable.counts.empty());
}

TEST_P(EveryWay, APluginNeverTakesAwayWhatTheUserActivated) {
    EXPECT_TRUE(TryToActivate());
    EXPECT_TRUE(Lease(0, kHost).activated.empty());
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_TRUE(mWay->Has(mFile));
    Lease(0, kHost);
    Apply([&](Activation& activation) { activation.DeactivateForUser(mIDs[0]); });
    EXPECT_TRUE(mWay->Has(mFile));  // the document still needs it
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_ActivatedByPlugin);
}

TEST_P(EveryWay, WhatIsNotCommittedLeavesNoTrace) {
    EXPECT_TRUE(Activation(mDatabase, mFonts, mActivations, *mWay).Lease(FontAt(0), {kHost}));
    EXPECT_FALSE(mWay->Has(mFile));
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Inactive);
}

TEST_P(EveryWay, NotesAFileThatTheVaultHasLost) {
    ASSERT_FALSE(mVault.Remove(mFile));
    const ActivationChanges changes = Apply([&](Activation& activation) {
        for (const size_t font : {0, 1})
            EXPECT_FALSE(activation.Lease(FontAt(font), {kHost, LeasePurpose::kDesign}));
    });
    EXPECT_EQ(changes.missing, mIDs) << "each once";
    Put(mFile, "cut off");
    EXPECT_FALSE(TryToActivate());
    Put(mFile, mContent);
    EXPECT_EQ(Lease(0, kHost).activated, std::vector{mIDs[0]});
}

TEST_F(LinkFolderTest, RepairTakesAwayOnlyWhatTheFolderMadeItself) {
    for (const std::string& name : {std::string("zz/mine.ttf"), "cd" + mStray.substr(2)})
        mWorld.Write("data/fonts/" + name, "the user's own");
    EXPECT_EQ(mWay->Repair({}).removed, 0);
    EXPECT_EQ(mWorld.FilesBelow("data/fonts").size(), 2u);
    // A folder that the user put in the place of ours is the user's altogether.
    mWorld.Write("elsewhere/" + mStray, "the user's own");
    const fs::path folder = platform::Utf8Path(mWorld.Path("data/fonts"));
    fs::remove_all(folder);
    std::error_code failure;
    fs::create_directory_symlink(platform::Utf8Path(mWorld.Path("elsewhere")), folder, failure);
    if (failure)
        GTEST_SKIP() << "this user may not make symbolic links here";
    EXPECT_EQ(mWay->Repair({}).removed, 0);
}

TEST_F(LinkFolderTest, RepairMakesTheLinksAgreeWithTheRecords) {
    Lease(0, kHost);
    platform::RemoveFile(mWay->PathOf(mFile));
    mWorld.Write("data/fonts/" + mStray, "stray");
    const ActiveFonts::Repairs repairs = mWay->Repair(mFonts.ActiveFiles());
    EXPECT_EQ(std::pair(repairs.added, repairs.removed), std::pair(1, 1));
    EXPECT_EQ(mWorld.FilesBelow("data/fonts"), std::vector{mWay->PathOf(mFile)});

    platform::RemoveFile(mWay->PathOf(mFile));  // or the vault's file would be cut as well
    const std::string shard = "data/fonts/" + mFile.checksum.substr(0, 2);
    mWorld.Write(shard + "/" + mFile.checksum + ".ttc", "cut");
    mWay->Repair(mFonts.ActiveFiles());
    EXPECT_TRUE(IsVaultsFileActive());

    fs::remove_all(platform::Utf8Path(mWorld.Path("data/fonts")));
    mWorld.Write("data/fonts", "no folder");
    EXPECT_NE(mWay->Repair(mFonts.ActiveFiles()).problem, "");
    EXPECT_THROW(Lease(1, kHost), ActivationRefused);
    ASSERT_FALSE(mVault.Remove(mFile));
    EXPECT_EQ(mWay->Repair(mFonts.ActiveFiles()).missing.size(), 1u);
}

TEST_F(FontResourcesTest, TellsProgramsOnceACommandAndOnlyOfChanges) {
    const FontFile other = FileOf("another");
    Put(other, "another");
    const uint32_t otherID = mFonts.FontsOfFile(mFonts.Add(other, {FontFace{}})).front().id;
    Apply([&](Activation& activation) {
        for (const uint32_t id : {mIDs[0], otherID})
            EXPECT_TRUE(activation.Lease(*mFonts.Find(id), {kHost}));
    });
    EXPECT_EQ(mTable.announcements, 1);
    Lease(0, kOtherHost);
    EXPECT_EQ(mTable.counts, (FakeFontTable::Counts{{mWay->PathOf(mFile), 1}, {mWay->PathOf(other), 1}}));
    EndLeases(0, kOtherHost);
    EXPECT_EQ(mTable.announcements, 1);
    EndLeases(0, kHost);
    EXPECT_EQ(mTable.announcements, 2);
    mTable.isFull = true;
    EXPECT_FALSE(TryToActivate()) << "what the system does not take is not active";
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Inactive);
}

TEST_F(FontResourcesTest, RepairPutsEachActiveFileIntoTheTableOnce) {
    using Counts = FakeFontTable::Counts;
    const std::string stray =
        mWorld.Write("vault/" + std::string("ab/ab") + std::string(62, '0') + ".ttf", "");
    // What three agents left that died: one before it added the file, two after.
    for (const Counts& left : {Counts{}, Counts{{mVault.PathOf(mFile), 1}},
                               Counts{{mVault.PathOf(mFile), 3}, {stray, 2}, {"C:\\Fonts\\user.ttf", 1}}}) {
        mTable.counts = left;
        FontResources next(mVault);
        const ActiveFonts::Repairs repairs = next.Repair({mFile});
        EXPECT_EQ(repairs.added, left.empty() ? 1 : 0);
        EXPECT_EQ(repairs.removed, left.count(stray) != 0 ? 1 : 0);
        EXPECT_TRUE(next.Has(mFile));
        EXPECT_EQ(mTable.counts[mVault.PathOf(mFile)], 1);
        EXPECT_EQ(mTable.takenOut.count(mVault.PathOf(mFile)), 0u) << "programs show documents with it";
        EXPECT_EQ(mTable.counts.count(stray), 0u);
        EXPECT_EQ(mTable.counts.size(), left.size() > 2 ? 2u : 1u) << "the user's own stays";
    }
    ASSERT_FALSE(mVault.Remove(mFile));
    FontResources last(mVault);
    EXPECT_EQ(last.Repair({mFile}).missing.size(), 1u);
    EXPECT_FALSE(last.Has(mFile));
}

TEST_F(VaultTest, KeepsACopyOfAnySizeUnderItsChecksum) {
    EXPECT_EQ(FileOf("abc").checksum, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    for (const size_t size : {size_t{0}, size_t{1}, size_t{1} << 20, (size_t{2} << 20) + 7}) {
        const std::string content(size, 'x');
        const FontFile file = FileOf(content);
        ReceivedFile received;
        platform::ReadOnlyFile source;
        platform::SystemError error;
        ASSERT_FALSE(source.Open(mWorld.Write("source", content)));
        ASSERT_EQ(mVault.Receive(source, kGoesOn, received, error), Outcome::kReceived);
        EXPECT_EQ(received.checksum, file.checksum);
        EXPECT_EQ(received.size, size);
        ASSERT_FALSE(mVault.Place(received, file));
        EXPECT_TRUE(mVault.IsIntact(file, kGoesOn));
        // Links give other programs the very same file; none of them is to write to it by mistake.
        using fs::perms;
        const perms allowed = fs::status(platform::Utf8Path(mVault.PathOf(file))).permissions();
        EXPECT_EQ(allowed & (perms::owner_write | perms::group_write | perms::others_write), perms::none);
    }
    EXPECT_EQ(mWorld.FilesBelow("vault").size(), 4u);
}

TEST(FontManager, EndsTheLeasesOfDeadProcessesAndOfEarlierErasOnce) {
    const test::TestWorld world;
    const Locations places = Locations::OfThisUser();
    ASSERT_FALSE(platform::MakePrivateFolder(places.dataFolder));
    FontManager manager(places);
    manager.EndLeasesOfEarlierEra();
    const uint32_t font = manager.fonts.FontsOfFile(manager.fonts.Add({}, {FontFace{}})).front().id;
    const platform::ProcessId process = platform::CurrentProcessId();
    const HostProcess self{process, platform::ProcessStartTime(process)};
    ActivationStore& activations = manager.activations;
    // Of which one has another process's identifier by now.
    for (const HostProcess& host : {self, HostProcess{process, self.startTime + 1}, HostProcess{0, 0}}) {
        activations.AddLease(font, {host});
        activations.KeepAnswer(host, 1, "{}");
    }
    EXPECT_TRUE(manager.EndLeasesOfDeadProcesses().deactivated.empty());
    EXPECT_EQ(activations.Hosts(), std::vector{self});
    EXPECT_EQ(activations.HostsWithAnswers(), std::vector{self});

    const std::string era = platform::ProcessEra();
    for (const std::string& noted : {era, std::string(), std::string("another")}) {
        manager.settings.NoteEra(noted);  // an older version noted none
        manager.EndLeasesOfEarlierEra();
        EXPECT_EQ(manager.settings.Era(), era);
        EXPECT_EQ(activations.Hosts().empty(), noted == "another" && !era.empty()) << noted;
    }
    EXPECT_EQ(activations.HostsWithAnswers(), activations.Hosts());
}

}  // namespace
}  // namespace pellwick
