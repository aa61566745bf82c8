#include "tests/windows/FrameworkDialogs.h"

#include <chrono>
#include <thread>

#include "platform/Folders.h"
#include "platform/Windowing.h"
#include "tests/DialogTestSupport.h"

namespace {

RecordList Workgroups() {
    return Records({WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(7, "Print"),
                    WorkgroupRecord(8, "Web & Screen"), WorkgroupRecord(9, "Corporate Design, Europe")});
}

/// Enough of them to scroll.
RecordList FontsToResolve() {
    RecordList fonts = cf::MutableArray();
    for (const char* name :
         {"AGaramondPro-Regular", "Helvetica", "Zapfino", "Helvetica-Bold", "Garamond", "Arial"}) {
        const bool isSerif = std::string(name).find("Garamond") != std::string::npos;
        cf::Append(fonts, name == std::string("Zapfino") ? FontRecord(name)
                          : isSerif ? FontRecord(name, {"EBGaramond-Regular", "CormorantGaramond-Regular"})
                                    : FontRecord(name, {"LiberationSans"}));
    }
    return fonts;
}

void ShowCommandBox(VantorixPluginFramework& framework) {
    const auto state = cf::MutableDictionary();
    cf::Set(state, "Workgroups", Workgroups());
    cf::Set(state, "CurrentWorkgroupID", 7);
    cf::Set(state, "ButtonsEnabled", true);
    cf::Set(state, "IsOnline", true);
    int32_t command = 0;
    framework.ShowCommandBox(state.get(), &command);
}

void ShowChooseFolder(VantorixPluginFramework& framework) {
    const auto initial = cf::String(
        platform::SystemDefault<platform::Folders>().PathOf(platform::KnownFolder::kAllUsersApplicationData));
    CFStringRef folder = nullptr;
    framework.ShowChooseFolder(CFSTR("Choose the destination for collecting fonts.  Collected fonts will be "
                                     "placed in a sub-folder there."),
                               initial.get(), &folder);
    const auto owned = AdoptCF(folder);
}

/// Until the user stops it.
void ShowProgress(VantorixPluginFramework& framework) {
    for (int32_t done = 0; framework.ShowProgress(204, done, 12); done = 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

}  // namespace

std::vector<FrameworkDialog> FrameworkDialogs(const std::string& libraryPath) {
    using Framework = VantorixPluginFramework;
    return {{"message", [](Framework& it) { it.ShowMessageBox(600, 601, MessageBoxButtons::kOk); }},
            {"question", [](Framework& it) { it.ShowMessageBox(604, 605, MessageBoxButtons::kYesNo); }},
            {"about", [](Framework& it) { it.ShowAbout(); }},
            {"preferences", [](Framework& it) { it.ShowPreferences(); }},
            {"select-workgroup",
             [](Framework& it) {
                 int32_t workgroup = 7;
                 it.ShowSelectWorkgroup(Workgroups().get(), &workgroup);
             }},
            {"command-box", ShowCommandBox},
            {"resolve-fonts",
             [](Framework& it) {
                 it.ShowResolveFonts(FontsToResolve().get(), cf::MutableArray().get(),
                                     cf::MutableArray().get());
             }},
            {"restricted-fonts", [](Framework& it) { it.ShowRestrictedFonts(FontsToResolve().get(), true); }},
            {"choose-folder", ShowChooseFolder},
            {"progress", ShowProgress},
            {"notice", [libraryPath](Framework&) {
                 platform::SystemDefault<platform::Windowing>().ShowStringResourceNotice(libraryPath, 105);
             }}};
}
