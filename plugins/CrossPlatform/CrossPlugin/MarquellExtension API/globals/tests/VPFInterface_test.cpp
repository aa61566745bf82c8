#include "VPFInterface.h"

#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "FakeFramework.h"
#include "FakePlatform.h"
#include "HostPatience.h"

namespace {

FakeFramework* frameworkToCreate = nullptr;

VantorixPluginFramework* Create(uint32_t, const char*, CFDictionaryRef) {
    return frameworkToCreate;
}

const VPFInterface::Identity kIdentity{"Illustrator2025", "8.0", "com.vantorix.X", "8.1"};

class VPFInterfaceTest : public testing::Test {
protected:
    VPFInterfaceTest() { frameworkToCreate = &framework; }

    CapturedTrace trace;
    FakeLibraries libraries;
    FakeFramework framework;
};

}  // namespace

TEST_F(VPFInterfaceTest, EachWayToFailHasItsState) {
    EXPECT_EQ(VPFInterface(VPFInterface::Identity{}).GetFrameworkState(), VPFInterface::kIdentityUnknown);
    EXPECT_EQ(VPFInterface(kIdentity).GetFrameworkState(), VPFInterface::kLibraryNotFound);
    libraries.loadable = {fake_paths::kFramework};
    EXPECT_EQ(VPFInterface(kIdentity).GetFrameworkState(), VPFInterface::kFactoryUnusable);
    libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(Create);
    EXPECT_EQ(VPFInterface(kIdentity).GetFrameworkState(), VPFInterface::kBound);
    EXPECT_TRUE(framework.isReleased);
    frameworkToCreate = nullptr;
    EXPECT_EQ(VPFInterface(kIdentity).GetFrameworkState(), VPFInterface::kFactoryUnusable);
}

TEST_F(VPFInterfaceTest, WithoutAFrameworkEverythingAnswersAsIfNoUserWereThere) {
    VPFInterface unbound(kIdentity, nullptr);
    VPFInterface notMade;
    EXPECT_TRUE(unbound.IsMade() && !notMade.IsMade());
    for (VPFInterface* interface : {&unbound, &notMade}) {
        int32_t number = 7;
        std::string folder = "kept";
        EXPECT_FALSE(interface->GetBoolPreference("E") || interface->SetBoolPreference("E", true) ||
                     interface->SetIntPreference("W", 1) || interface->SetStringPreference("S", "") ||
                     interface->GetIntPreference("W") != 0 ||
                     interface->GetStringPreference("S") + interface->LocalizedString(600) != "" ||
                     interface->AskYesNo(message_boxes::kRelaunchAgent) || interface->ShowAbout() ||
                     interface->ShowPreferences() || interface->ShowSelectWorkgroup(nullptr, number) ||
                     interface->ShowCommandBox(nullptr, number) ||
                     interface->ShowResolveFonts(nullptr, nullptr, nullptr) ||
                     interface->ShowRestrictedFonts(nullptr, true) ||
                     interface->ChooseFolder("", "", folder));
        EXPECT_TRUE(interface->ShowProgress(1, 0, 2)) << "nobody stops it";
        interface->ShowMessageBox(message_boxes::kNotLoggedIn);
        interface->ShowMessageAbout(message_boxes::kDocumentNotOpen, "x");
        interface->SetParentWindowForUi(nullptr);
        EXPECT_EQ(std::to_string(number) + folder, "7kept");
    }
}

TEST_F(VPFInterfaceTest, AHostWhoseUserReadADialogIsPatientAnew) {
    FakeClock clock;
    VPFInterface interface(kIdentity, &framework);
    for (const uint32_t shown : {0, 200}) {
        const HostPatience::Call call;
        clock.ticks += 3000;
        framework.whileDialogShows = [&] { clock.ticks += shown; };
        interface.ShowAbout();
        EXPECT_EQ(HostPatience::AllowsRequest(), shown == 200);
    }
}
