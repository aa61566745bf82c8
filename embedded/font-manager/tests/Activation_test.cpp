#include "activation/Activation.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "FontRecordKeys.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "store/Schema.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

constexpr HostProcess kHost{100, 1};
constexpr HostProcess kOtherHost{200, 1};

/// A store with one file of two faces, whose name has all that names may have.
class ActivationTest : public testing::Test {
protected:
    ActivationTest() {
        PrepareSchema(mDatabase);
        mFile.checksum = Sha256(mContent);
        mFile.name = "font.ttc";
        mFile.extension = ".ttc";
        mFile.size = mContent.size();
        EXPECT_FALSE(mVault.Store(mFile, mContent));
        FontFace first;
        FontFace second;
        second.face = 1;
        for (const Font& font : mFonts.FontsOfFile(mFonts.Add(mFile, {first, second})))
            mIDs.push_back(font.id);
    }

    Font FontAt(size_t index) { return *mFonts.Find(mIDs[index]); }

    template <class Change>
    ActivationChanges Apply(Change change) {
        Activation activation(mDatabase, mFonts, mActivations, mLinks);
        change(activation);
        return activation.Commit();
    }

    ActivationChanges Lease(size_t index, const HostProcess& host,
                            LeasePurpose purpose = LeasePurpose::kDocument) {
        return Apply(
            [&](Activation& activation) { EXPECT_TRUE(activation.Lease(FontAt(index), host, purpose)); });
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
    LinkFolder mLinks{mWorld.Path("data/fonts"), mVault};
    FontFile mFile;
    std::vector<uint32_t> mIDs;
};

TEST(Sha256, IsThatOfTheStandard) {
    EXPECT_EQ(Sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST_F(ActivationTest, KeepsAFileLinkedWhileAnyOfItsFontsIsHeldByAnybody) {
    EXPECT_EQ(Lease(0, kHost).activated, std::vector{mIDs[0]});
    EXPECT_TRUE(Lease(0, kOtherHost).activated.empty());
    EXPECT_EQ(Lease(1, kHost).activated, std::vector{mIDs[1]});
    EXPECT_TRUE(std::filesystem::equivalent(platform::Utf8Path(mLinks.PathOf(mFile)),
                                            platform::Utf8Path(mVault.PathOf(mFile))));
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_EQ(EndLeases(0, kOtherHost).deactivated, std::vector{mIDs[0]});
    EXPECT_TRUE(mLinks.Has(mFile));
    EXPECT_EQ(EndLeases(1, kHost).deactivated, std::vector{mIDs[1]});
    EXPECT_TRUE(mWorld.LinkedFiles().empty());
}

TEST_F(ActivationTest, NobodyWritesToAFontByMistake) {
    Lease(0, kHost);
    EXPECT_EQ(std::filesystem::status(platform::Utf8Path(mLinks.PathOf(mFile))).permissions(),
              std::filesystem::perms::owner_read);
}

TEST_F(ActivationTest, APluginNeverTakesAwayWhatTheUserActivated) {
    Apply([&](Activation& activation) { EXPECT_TRUE(activation.ActivateForUser(FontAt(0))); });
    EXPECT_TRUE(Lease(0, kHost).activated.empty());
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_TRUE(mLinks.Has(mFile));
    Lease(0, kHost);
    Apply([&](Activation& activation) { EXPECT_TRUE(activation.DeactivateForUser(mIDs[0])); });
    EXPECT_TRUE(mLinks.Has(mFile));  // the document still needs it
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_ActivatedByPlugin);
}

TEST_F(ActivationTest, WhatIsNotCommittedLeavesNoTrace) {
    {
        Activation activation(mDatabase, mFonts, mActivations, mLinks);
        EXPECT_TRUE(activation.Lease(FontAt(0), kHost, LeasePurpose::kDocument, "document"));
        EXPECT_TRUE(mLinks.Has(mFile));
    }
    EXPECT_FALSE(mLinks.Has(mFile));
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Inactive);
}

TEST_F(ActivationTest, NotesAFileThatTheVaultHasLost) {
    mVault.Remove(mFile);
    const ActivationChanges changes = Apply([&](Activation& activation) {
        EXPECT_FALSE(activation.Lease(FontAt(0), kHost, LeasePurpose::kDesign));
        EXPECT_FALSE(activation.Lease(FontAt(1), kHost, LeasePurpose::kDesign));
    });
    EXPECT_EQ(changes.missing, mIDs);  // each once
    Apply([&](Activation& activation) {
        EXPECT_FALSE(activation.Lease(FontAt(0), kHost, LeasePurpose::kDocument, "document"));
    });
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_Missing);
    ASSERT_FALSE(mVault.Store(mFile, "cut off"));
    Apply([&](Activation& activation) { EXPECT_FALSE(activation.ActivateForUser(FontAt(0))); });
    ASSERT_FALSE(mVault.Store(mFile, mContent));
    EXPECT_EQ(Lease(0, kHost).activated, std::vector{mIDs[0]});
    EXPECT_EQ(FontAt(0).activationState, kFontActivationState_ActivatedByPlugin);
}

TEST_F(ActivationTest, TellsLeasesOfOneHostApartByTheirPurpose) {
    Lease(0, kHost);
    Lease(0, kHost, LeasePurpose::kDesign);
    EXPECT_TRUE(EndLeases(0, kHost).deactivated.empty());
    EXPECT_TRUE(EndLeases(0, kHost, LeasePurpose::kPreview).deactivated.empty());
    EXPECT_EQ(EndLeases(0, kHost, LeasePurpose::kDesign).deactivated, std::vector{mIDs[0]});
}

TEST_F(ActivationTest, EndsTheLeasesOfHostsThatAreGone) {
    Lease(0, kHost);
    Lease(0, kOtherHost);
    Lease(1, kOtherHost, LeasePurpose::kPreview);
    Activation activation(mDatabase, mFonts, mActivations, mLinks);
    const ActivationChanges changes =
        EndLeasesOfDeadHosts(mActivations, activation, [](const HostProcess& host) { return host == kHost; });
    EXPECT_EQ(changes.deactivated, std::vector{mIDs[1]});
    EXPECT_EQ(mActivations.Hosts(), std::vector{kHost});
    EXPECT_TRUE(mLinks.Has(mFile));
}

TEST_F(ActivationTest, RepairTakesAwayOnlyWhatTheFolderMadeItself) {
    const std::string stray = "ab/ab" + std::string(62, '0') + ".ttf";
    for (const std::string& name :
         {std::string("zz/mine.ttf"), std::string("notes.txt"), "cd" + stray.substr(2)})
        mWorld.Write("data/fonts/" + name, "the user's own");
    EXPECT_EQ(mLinks.Repair({}).removed, 0);
    EXPECT_EQ(mWorld.LinkedFiles().size(), 3u);
    // A folder that the user put in the place of ours is the user's altogether.
    mWorld.Write("elsewhere/" + stray, "the user's own");
    std::filesystem::remove_all(platform::Utf8Path(mWorld.Path("data/fonts")));
    std::filesystem::create_directory_symlink(platform::Utf8Path(mWorld.Path("elsewhere")),
                                              platform::Utf8Path(mWorld.Path("data/fonts")));
    EXPECT_EQ(mLinks.Repair({}).removed, 0);
}

TEST_F(ActivationTest, SweepTakesFromTheVaultWhatNoRecordKnows) {
    const std::string unknown = "vault/ab/ab" + std::string(62, '0') + ".ttf";
    const std::string own = "vault/" + mFile.checksum.substr(0, 2) + "/" + mFile.checksum + ".ttc";
    for (const std::string& name : {unknown, own + ".Qw3rTy", std::string("vault/zz/mine.ttf")})
        mWorld.Write(name, "content");
    EXPECT_EQ(mVault.Sweep(mFonts.Files(), true), 1);  // half a file, whoever made it
    EXPECT_TRUE(platform::IsExistingFile(mWorld.Path(unknown)));
    EXPECT_EQ(mVault.Sweep(mFonts.Files(), false), 1);
    EXPECT_FALSE(platform::IsExistingFile(mWorld.Path(unknown)));
    EXPECT_TRUE(platform::IsExistingFile(mWorld.Path("vault/zz/mine.ttf")));
    EXPECT_TRUE(mVault.Has(mFile));
}

TEST_F(ActivationTest, RepairMakesTheLinksAgreeWithTheRecords) {
    Lease(0, kHost);
    std::filesystem::remove(platform::Utf8Path(mLinks.PathOf(mFile)));
    mWorld.Write("data/fonts/ab/ab" + std::string(62, '0') + ".ttf", "stray");
    LinkFolder::Repairs repairs = mLinks.Repair(mFonts.ActiveFiles());
    EXPECT_EQ(repairs.linked, 1);
    EXPECT_EQ(repairs.removed, 1);
    EXPECT_EQ(mWorld.LinkedFiles(), std::vector{mLinks.PathOf(mFile)});

    std::filesystem::remove(
        platform::Utf8Path(mLinks.PathOf(mFile)));  // or the vault's file would be cut as well
    mWorld.Write("data/fonts/" + mFile.checksum.substr(0, 2) + "/" + mFile.checksum + ".ttc", "cut");
    mLinks.Repair(mFonts.ActiveFiles());
    EXPECT_TRUE(std::filesystem::equivalent(platform::Utf8Path(mLinks.PathOf(mFile)),
                                            platform::Utf8Path(mVault.PathOf(mFile))));

    mVault.Remove(mFile);
    std::filesystem::remove(platform::Utf8Path(mLinks.PathOf(mFile)));
    EXPECT_EQ(mLinks.Repair(mFonts.ActiveFiles()).missing.size(), 1u);
}

}  // namespace
}  // namespace pellwick
