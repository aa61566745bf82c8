#include "activation/Activation.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "FontRecordKeys.h"
#include "activation/FontResources.h"
#include "activation/LinkFolder.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "store/Schema.h"
#include "tests/support/FakeFontTable.h"
#include "tests/support/TestWorld.h"
#include "tests/support/VaultFiles.h"

namespace pellwick {
namespace {

constexpr HostProcess kHost{100, 1};
constexpr HostProcess kOtherHost{200, 1};

using MakeWay = std::unique_ptr<ActiveFonts> (*)(const std::string& folder, const FontVault& vault);

std::unique_ptr<ActiveFonts> MakeLinks(const std::string& folder, const FontVault& vault) {
    return std::make_unique<LinkFolder>(folder, vault);
}

std::unique_ptr<ActiveFonts> MakeResources(const std::string&, const FontVault& vault) {
    return std::make_unique<FontResources>(vault);
}

/// A store with one file of two faces, whose name has all that names may have, and a way of making it active.
class Store {
protected:
    explicit Store(MakeWay makeWay) : mWay(makeWay(mWorld.Path("data/fonts"), mVault)) {
        PrepareSchema(mDatabase);
        mFile.checksum = test::ChecksumOf(mContent);
        mFile.name = "font.ttc";
        mFile.extension = ".ttc";
        mFile.size = mContent.size();
        EXPECT_TRUE(test::PutIntoVault(mVault, mFile, mContent));
        FontFace first;
        FontFace second;
        second.face = 1;
        for (const Font& font : mFonts.FontsOfFile(mFonts.Add(mFile, {first, second})))
            mIDs.push_back(font.id);
    }

    Font FontAt(size_t index) { return *mFonts.Find(mIDs[index]); }

    template <class Change>
    ActivationChanges Apply(Change change) {
        Activation activation(mDatabase, mFonts, mActivations, *mWay);
        change(activation);
        return activation.Commit();
    }

    ActivationChanges Lease(size_t index, const HostProcess& host,
                            LeasePurpose purpose = LeasePurpose::kDocument) {
        return Apply([&](Activation& activation) {
            EXPECT_TRUE(activation.Lease(FontAt(index), {host, purpose}));
        });
    }

    ActivationChanges EndLeases(size_t index, const HostProcess& host,
                                LeasePurpose purpose = LeasePurpose::kDocument) {
        return Apply([&](Activation& activation) { activation.EndLeases(mIDs[index], host, purpose); });
    }

    test::TestWorld mWorld{"Ein Ordner \u0448\u0440\u0438\u0444\u0442 \u5b57\u4f53 \U0001F600"};
    const std::string mContent = "pretend that this is a font";
    Database mDatabase{":memory:"};
    FontStore mFonts{mDatabase};
    ActivationStore mActivations{mDatabase};
    FontVault mVault{mWorld.Path("vault")};
    test::FakeFontTable mTable;
    const platform::ScopedOverride<platform::FontTable> mOverride{mTable};
    const std::unique_ptr<ActiveFonts> mWay;
    FontFile mFile;
    std::vector<uint32_t> mIDs;
};

class ActivationTest : public Store, public testing::TestWithParam<const char*> {
protected:
    ActivationTest() : Store(GetParam() == kLinks ? MakeLinks : MakeResources) {}

    static constexpr std::string_view kLinks = "links";
};

INSTANTIATE_TEST_SUITE_P(EveryWay, ActivationTest, testing::Values("links", "resources"));

class LinkFolderTest : public Store, public testing::Test {
protected:
    LinkFolderTest() : Store(MakeLinks) {}
};

class FontResourcesTest : public Store, public testing::Test {
protected:
    FontResourcesTest() : Store(MakeResources) {}

    using Counts = std::map<std::string, int>;
};

TEST(Checksum, IsThatOfTheStandard) {
    EXPECT_EQ(test::ChecksumOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST_P(ActivationTest, KeepsAFileActiveWhileAnyOfItsFontsIsHeldByAnybody) {
    EXPECT_EQ(Lease(0, kHost).activated, std::vector{mIDs[0]});
    EXPECT_TRUE(Lease(0, kOtherHost).activated.empty());
    EXPECT_EQ(Lease(1, kHost).activated, std::vector{mIDs[1]});
    EXPECT_TRUE(std::filesystem::equivalent(platform::Utf8Path(mWay->PathOf(mFile)),
                                            platform::Utf8Path(mVault.PathOf(mFile))));
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_EQ(EndLeases(0, kOtherHost).deactivated, std::vector{mIDs[0]});
    EXPECT_TRUE(mWay->Has(mFile));
    EXPECT_EQ(EndLeases(1, kHost).deactivated, std::vector{mIDs[1]});
    EXPECT_FALSE(mWay->Has(mFile));
    EXPECT_TRUE(mWorld.FilesBelow("data/fonts").empty() && mTable.counts.empty());
}

TEST_P(ActivationTest, APluginNeverTakesAwayWhatTheUserActivated) {
    Apply([&](Activation& activation) { EXPECT_TRUE(activation.ActivateForUser(FontAt(0))); });
    EXPECT_TRUE(Lease(0, kHost).activated.empty());
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_TRUE(mWay->Has(mFile));
    Lease(0, kHost);
    Apply([&](Activation& activation) { activation.DeactivateForUser(mIDs[0]); });
    EXPECT_TRUE(mWay->Has(mFile));  // the document still needs it
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_ActivatedByPlugin);
}

TEST_P(ActivationTest, WhatIsNotCommittedLeavesNoTrace) {
    {
        Activation activation(mDatabase, mFonts, mActivations, *mWay);
        EXPECT_TRUE(activation.Lease(FontAt(0), {kHost, LeasePurpose::kDocument, "document"}));
        EXPECT_TRUE(mWay->Has(mFile));
    }
    EXPECT_FALSE(mWay->Has(mFile));
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Inactive);
}

TEST_P(ActivationTest, NotesAFileThatTheVaultHasLost) {
    ASSERT_FALSE(mVault.Remove(mFile));
    const ActivationChanges changes = Apply([&](Activation& activation) {
        EXPECT_FALSE(activation.Lease(FontAt(0), {kHost, LeasePurpose::kDesign}));
        EXPECT_FALSE(activation.Lease(FontAt(1), {kHost, LeasePurpose::kDesign}));
    });
    EXPECT_EQ(changes.missing, mIDs);  // each once
    Apply([&](Activation& activation) {
        EXPECT_FALSE(activation.Lease(FontAt(0), {kHost, LeasePurpose::kDocument, "document"}));
    });
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Missing);
    ASSERT_TRUE(test::PutIntoVault(mVault, mFile, "cut off"));
    Apply([&](Activation& activation) { EXPECT_FALSE(activation.ActivateForUser(FontAt(0))); });
    ASSERT_TRUE(test::PutIntoVault(mVault, mFile, mContent));
    EXPECT_EQ(Lease(0, kHost).activated, std::vector{mIDs[0]});
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_ActivatedByPlugin);
}

TEST_P(ActivationTest, EndsTheLeasesOfHostsThatAreGone) {
    Lease(0, kHost);
    Lease(0, kOtherHost);
    Lease(1, kOtherHost, LeasePurpose::kPreview);
    Activation activation(mDatabase, mFonts, mActivations, *mWay);
    const ActivationChanges changes =
        EndLeasesOfDeadHosts(mActivations, activation, [](const HostProcess& host) { return host == kHost; });
    EXPECT_EQ(changes.deactivated, std::vector{mIDs[1]});
    EXPECT_EQ(mActivations.Hosts(), std::vector{kHost});
    EXPECT_TRUE(mWay->Has(mFile));
}

TEST_F(LinkFolderTest, RepairTakesAwayOnlyWhatTheFolderMadeItself) {
    const std::string stray = "ab/ab" + std::string(62, '0') + ".ttf";
    for (const std::string& name :
         {std::string("zz/mine.ttf"), std::string("notes.txt"), "cd" + stray.substr(2)})
        mWorld.Write("data/fonts/" + name, "the user's own");
    EXPECT_EQ(mWay->Repair({}).removed, 0);
    EXPECT_EQ(mWorld.FilesBelow("data/fonts").size(), 3u);
    // A folder that the user put in the place of ours is the user's altogether.
    mWorld.Write("elsewhere/" + stray, "the user's own");
    std::filesystem::remove_all(platform::Utf8Path(mWorld.Path("data/fonts")));
    std::error_code failure;
    std::filesystem::create_directory_symlink(platform::Utf8Path(mWorld.Path("elsewhere")),
                                              platform::Utf8Path(mWorld.Path("data/fonts")), failure);
    if (failure)
        GTEST_SKIP() << "this user may not make symbolic links here";
    EXPECT_EQ(mWay->Repair({}).removed, 0);
}

TEST_F(LinkFolderTest, RepairMakesTheLinksAgreeWithTheRecords) {
    Lease(0, kHost);
    platform::RemoveFile(mWay->PathOf(mFile));
    mWorld.Write("data/fonts/ab/ab" + std::string(62, '0') + ".ttf", "stray");
    ActiveFonts::Repairs repairs = mWay->Repair(mFonts.ActiveFiles());
    EXPECT_EQ(repairs.added, 1);
    EXPECT_EQ(repairs.removed, 1);
    EXPECT_EQ(mWorld.FilesBelow("data/fonts"), std::vector{mWay->PathOf(mFile)});

    platform::RemoveFile(mWay->PathOf(mFile));  // or the vault's file would be cut as well
    mWorld.Write("data/fonts/" + mFile.checksum.substr(0, 2) + "/" + mFile.checksum + ".ttc", "cut");
    mWay->Repair(mFonts.ActiveFiles());
    EXPECT_TRUE(std::filesystem::equivalent(platform::Utf8Path(mWay->PathOf(mFile)),
                                            platform::Utf8Path(mVault.PathOf(mFile))));

    ASSERT_FALSE(mVault.Remove(mFile));
    platform::RemoveFile(mWay->PathOf(mFile));
    EXPECT_EQ(mWay->Repair(mFonts.ActiveFiles()).missing.size(), 1u);
}

TEST_F(FontResourcesTest, TellsProgramsOnceACommandAndOnlyOfChanges) {
    FontFile other = mFile;
    other.checksum = test::ChecksumOf("another");
    ASSERT_TRUE(test::PutIntoVault(mVault, other, mContent));
    const uint32_t otherID = mFonts.FontsOfFile(mFonts.Add(other, {FontFace{}})).front().id;
    Apply([&](Activation& activation) {
        EXPECT_TRUE(activation.Lease(FontAt(0), {kHost, LeasePurpose::kDocument}));
        EXPECT_TRUE(activation.Lease(*mFonts.Find(otherID), {kHost, LeasePurpose::kDocument}));
    });
    EXPECT_EQ(mTable.announcements, 1);
    Lease(0, kOtherHost);
    EXPECT_EQ(mTable.announcements, 1);
    EXPECT_EQ(mTable.counts, (Counts{{mWay->PathOf(mFile), 1}, {mWay->PathOf(other), 1}}));
    EndLeases(0, kOtherHost);
    EXPECT_EQ(mTable.announcements, 1);
    EndLeases(0, kHost);
    EXPECT_EQ(mTable.announcements, 2);
}

TEST_F(FontResourcesTest, WhatTheSystemDoesNotTakeIsNotActive) {
    mTable.isFull = true;
    Apply([&](Activation& activation) { EXPECT_FALSE(activation.ActivateForUser(FontAt(0))); });
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Inactive);
}

TEST_F(FontResourcesTest, RepairPutsEachActiveFileIntoTheTableOnce) {
    Lease(0, kHost);
    const std::string stray = mWorld.Write("vault/ab/ab" + std::string(62, '0') + ".ttf", "not recorded");
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
        EXPECT_EQ(mTable.counts.count(stray), 0u);
        EXPECT_EQ(mTable.counts.size(), left.size() > 2 ? 2u : 1u) << "the user's own stays";
    }
    ASSERT_FALSE(mVault.Remove(mFile));
    FontResources last(mVault);
    EXPECT_EQ(last.Repair({mFile}).missing.size(), 1u);
    EXPECT_FALSE(last.Has(mFile));
}

}  // namespace
}  // namespace pellwick
