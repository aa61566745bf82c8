#include <gtest/gtest.h>

#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "TestFiles.h"
#include "platform/Utf8Path.h"
#include "tests/LoadedFramework.h"

namespace {

class FactoryTest : public testing::Test {
protected:
    static OwnedFramework Create(uint32_t version = VantorixPluginFramework::kInterfaceVersion) {
        return LoadFramework(BuiltFile(FRAMEWORK_LIBRARY), version);
    }

    TemporaryFolder mFolder;
    const std::string mPreferences = mFolder / "Vantorix/Preferences.json";
    ScopedVariable mConfiguration{"XDG_CONFIG_HOME", platform::Utf8Text(mFolder.Path())};
    ScopedVariable mLanguage{"LC_ALL", "en_US.UTF-8"};
    ScopedVariable mAnswers{"PLUGINCORE_ANSWERS", ""};
    ScopedVariable mAnswersLog{"PLUGINCORE_ANSWERS_LOG", ""};
    ScopedVariable mPresenter{"PLUGINCORE_PRESENTER", "silent"};
    ScopedVariable mDebugOutput{"PLUGINCORE_DEBUG_OUTPUT", ""};
};

TEST_F(FactoryTest, OnlyItsOwnVersionIsServed) {
    EXPECT_FALSE(Create(0));
    EXPECT_FALSE(Create(VantorixPluginFramework::kInterfaceVersion + 1));
    EXPECT_TRUE(Create());
    const auto create = FrameworkFactory(BuiltFile(FRAMEWORK_LIBRARY));
    EXPECT_TRUE(OwnedFramework(create(VantorixPluginFramework::kInterfaceVersion, nullptr, nullptr)));
}

TEST_F(FactoryTest, WithoutATerminalNothingIsWrittenToTheStandardStreams) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const OwnedFramework framework = Create();
    EXPECT_EQ(framework->ShowMessageBox(609, 610, MessageBoxButtons::kYesNo), 2);
    WriteText(mPreferences, "damaged");
    EXPECT_EQ(framework->GetIntPreference("Key"), 0);
    EXPECT_TRUE(framework->IsPreferenceStoreUsable());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(ContentOf(mPreferences + ".damaged-1"), "damaged");
}

}  // namespace
