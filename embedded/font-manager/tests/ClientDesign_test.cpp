// Activation for design and for previews, and conflicts.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "common/Locations.h"
#include "platform/Utf8Path.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

using IDs = std::vector<int64_t>;

/// Two versions of Sample-Bold and of Sample-Italic, and a font of another family.
class DesignTest : public testing::Test {
protected:
    void SetUp() override {
        mLibrary.ResetPluginFacadeInstance();  // an earlier test may have left one without an agent
        mWorld.StartAgent();
        for (const char* name : {"Sample-Bold", "Sample-Italic"}) {
            for (const char* version : {"1.0", "2.0"})
                mIDs.push_back(Add(mWorld.WriteFont(name, version)));
        }
        mOther = Add(mWorld.WriteFont("Other-Regular"));
    }
    void TearDown() override { mLibrary.CleanUpOnShutdown(); }

    int64_t Add(const std::string& path) {
        return IntegerMember(mWorld.RunForJson({"add", path})["added"][0], kGS_DatabaseIDKey);
    }
    static IDs IDsOf(const CFRef<CFMutableArrayRef>& fonts) {
        IDs ids;
        for (CFIndex index = 0; index < cf::Count(fonts.get()); ++index)
            ids.push_back(*cf::GetInt64(cf::Get<CFDictionaryRef>(fonts.get(), index), kGS_DatabaseIDKey));
        return ids;
    }
    IDs ConflictsOf(const IDs& fonts) {
        const auto conflicts = cf::MutableArray();
        EXPECT_EQ(mLibrary.GetFontConflicts(mLibrary.Facade(), IDsArray(fonts).get(), conflicts.get()), 0u);
        return IDsOf(conflicts);
    }
    ErrorCode Enable(int64_t font, bool wholeFamily, bool enable, CFMutableArrayRef conflicts = nullptr) {
        return mLibrary.EnableDesignActivation(mLibrary.Facade(), static_cast<uint32_t>(font), wholeFamily,
                                               enable, conflicts);
    }
    ErrorCode Preview(const IDs& fonts, bool activate) {
        return mLibrary.PreviewActivateFonts(mLibrary.Facade(), IDsArray(fonts).get(), activate);
    }
    TestWorld mWorld;
    TestLibrary mLibrary;
    IDs mIDs;
    int64_t mOther = 0;
};

TEST_F(DesignTest, ConflictsAreActiveFontsOfTheNameInOtherFiles) {
    EXPECT_EQ(ConflictsOf({mIDs[0], mIDs[1], mOther, 999}), IDs());
    mWorld.RunForJson({"activate", std::to_string(mIDs[1])});
    EXPECT_EQ(ConflictsOf({mIDs[0]}), IDs{mIDs[1]});
    EXPECT_EQ(ConflictsOf({mIDs[0], mIDs[0], mIDs[2], mOther}), IDs{mIDs[1]});
    EXPECT_EQ(ConflictsOf({mIDs[1]}), IDs());  // no font conflicts with itself
    mWorld.RunForJson({"activate", std::to_string(mIDs[0])});
    EXPECT_EQ(ConflictsOf({mIDs[0], mIDs[1]}), (IDs{mIDs[0], mIDs[1]}));
}

TEST_F(DesignTest, HoldsAFontForDesignUntilItIsDisabledWhateverBecomesOfDocuments) {
    mWorld.RunForJson({"activate", std::to_string(mIDs[1])});
    const auto conflicts = cf::MutableArray();
    EXPECT_EQ(Enable(mIDs[0], false, true, conflicts.get()), 0u);
    EXPECT_EQ(IDsOf(conflicts), IDs{mIDs[1]});
    EXPECT_EQ(mLibrary.StateOf(mIDs[0]), kFontActivationState_ActivatedByPlugin);
    const auto document = IDsArray({mIDs[0]});
    ASSERT_EQ(mLibrary.ActivateFonts(mLibrary.Facade(), document.get(), CFSTR("/document"), nullptr, nullptr),
              0u);
    EXPECT_EQ(mLibrary.Deactivate({mIDs[0]}), 0u);
    EXPECT_EQ(mLibrary.StateOf(mIDs[0]), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(Enable(mIDs[0], false, false), 0u);
    EXPECT_EQ(mLibrary.StateOf(mIDs[0]), kFontActivationState_Inactive);
    EXPECT_EQ(mLibrary.StateOf(mIDs[1]), kFontActivationState_ActivatedByUser);
    EXPECT_EQ(Enable(999, false, true), CoreErrorCodes::kNotFound);
    mWorld.RunForJson({"logout"});
    EXPECT_EQ(Enable(mIDs[0], false, true), GZephyrinServerFacade::kNotLoggedIn);
    EXPECT_EQ(Enable(mIDs[0], false, false), 0u);
}

TEST_F(DesignTest, AFamilyComesInOneVersionOfEachFont) {
    EXPECT_EQ(Enable(mIDs[0], true, true), 0u);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u);
    EXPECT_EQ(mLibrary.StateOf(mIDs[0]), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(mLibrary.StateOf(mIDs[3]), kFontActivationState_ActivatedByPlugin);  // the newer one
    EXPECT_EQ(mLibrary.StateOf(mOther), kFontActivationState_Inactive);
    EXPECT_EQ(Enable(mIDs[0], true, false), 0u);
    EXPECT_TRUE(mWorld.ActiveFiles().empty());
}

TEST_F(DesignTest, APreviewHoldsItsFontsBesideWhateverElseDoes) {
    EXPECT_EQ(Enable(mIDs[0], false, true), 0u);
    EXPECT_EQ(Preview({mIDs[0], mOther, 999}, true), 0u);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u);
    EXPECT_EQ(Preview({mIDs[0], mOther}, false), 0u);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u);
    EXPECT_EQ(mLibrary.StateOf(mIDs[0]), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(Preview({999}, true), CoreErrorCodes::kNotFound);
    EXPECT_EQ(Preview({}, true), 0u);
}

TEST_F(DesignTest, AFontWhoseFileIsGoneIsRefused) {
    mWorld.EmptyVault();
    EXPECT_EQ(Enable(mIDs[0], false, true), error_codes::GZephyrinAssetManager::kFontMissing);
    EXPECT_EQ(Preview({mOther}, true), CoreErrorCodes::kNotFound);
    EXPECT_EQ(mLibrary.StateOf(mIDs[0]), kFontActivationState_Missing);
    EXPECT_EQ(mLibrary.StateOf(mOther), kFontActivationState_Missing);
}

}  // namespace
}  // namespace pellwick::test
