// Everything that the framework's library can show, each with something in it.
#pragma once

#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>

#include "TestFiles.h"
#include "platform/Environment.h"
#include "platform/Folders.h"
#include "platform/Windowing.h"
#include "tests/DialogTestSupport.h"
#include "tests/LoadedFramework.h"

namespace shown_dialogs {

using Framework = VantorixPluginFramework;

inline const std::string kLibrary = BuiltFile(FRAMEWORK_LIBRARY);

inline auto Workgroups() {
    return List(WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(7, "Print"),
                WorkgroupRecord(8, "Web & Screen"), WorkgroupRecord(9, "Corporate Design, Europe"));
}

/// Enough of them to scroll.
inline auto FontsToResolve() {
    return List(FontRecord("AGaramondPro-Regular", {"EBGaramond-Regular", "CormorantGaramond-Regular"}),
                FontRecord("Helvetica", {"LiberationSans"}), FontRecord("Zapfino"),
                FontRecord("Helvetica-Bold", {"LiberationSans"}),
                FontRecord("Garamond", {"EBGaramond-Regular", "CormorantGaramond-Regular"}),
                FontRecord("Arial", {"LiberationSans"}));
}

inline void ShowSelectWorkgroup(Framework& framework) {
    int32_t workgroup = 7;
    framework.ShowSelectWorkgroup(Workgroups().get(), &workgroup);
}

inline void ShowCommandBox(Framework& framework) {
    const auto state =
        Record("Workgroups", Workgroups(), "CurrentWorkgroupID", 7, "ButtonsEnabled", true, "IsOnline", true);
    int32_t command = 0;
    framework.ShowCommandBox(state.get(), &command);
}

inline void ShowResolveFonts(Framework& framework) {
    framework.ShowResolveFonts(FontsToResolve().get(), List().get(), List().get());
}

inline void ShowChooseFolder(Framework& framework) {
    const auto initial = cf::String(
        platform::SystemDefault<platform::Folders>().PathOf(platform::KnownFolder::kAllUsersApplicationData));
    CFStringRef folder = nullptr;
    framework.ShowChooseFolder(CFSTR("Choose the destination for collecting fonts.  Collected fonts will be "
                                     "placed in a sub-folder there."),
                               initial.get(), &folder);
    const auto owned = AdoptCF(folder);
}

inline void ShowProgress(Framework& framework) {
    for (int32_t done = 0; framework.ShowProgress(204, done, 12); done = 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

/// Everything that the library can show, by its name as part of a file's name, each with something in it.
inline const std::map<std::string, std::function<void(Framework&)>> kAll = {
    {"message", [](Framework& it) { it.ShowMessageBox(600, 601, MessageBoxButtons::kOk); }},
    {"question", [](Framework& it) { it.ShowMessageBox(604, 605, MessageBoxButtons::kYesNo); }},
    {"about", [](Framework& it) { it.ShowAbout(); }},
    {"preferences", [](Framework& it) { it.ShowPreferences(); }},
    {"select-workgroup", ShowSelectWorkgroup},
    {"command-box", ShowCommandBox},
    {"resolve-fonts", ShowResolveFonts},
    {"restricted-fonts", [](Framework& it) { it.ShowRestrictedFonts(FontsToResolve().get(), true); }},
    {"choose-folder", ShowChooseFolder},
    {"progress", ShowProgress},
    {"notice", [](Framework&) {
         platform::SystemDefault<platform::Windowing>().ShowStringResourceNotice(kLibrary, 105, "");
     }}};

/// The command that takes a picture of what is on the screen and gets the dialog's name; empty where nobody wants one.
inline const std::string kPictureCommand = platform::EnvironmentVariable("DIALOG_PICTURE");

inline bool AreToBePictured() {
    return !kPictureCommand.empty();
}

inline void TakePicture(const std::string& name) {
    EXPECT_EQ(std::system((kPictureCommand + " " + name).c_str()), 0) << kPictureCommand;
}

}  // namespace shown_dialogs
