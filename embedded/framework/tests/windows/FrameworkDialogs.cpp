#include "tests/windows/FrameworkDialogs.h"

#include <chrono>
#include <thread>

#include "platform/DynamicLibrary.h"
#include "platform/Folders.h"
#include "platform/Windowing.h"
#include "tests/DialogTestSupport.h"

namespace {

RecordList Workgroups() {
    return Records({WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(7, "Print"),
                    WorkgroupRecord(8, "Web & Screen"), WorkgroupRecord(9, "Corporate Design, Europe")});
}

Record FontOf(const char* name, const char* family, const char* foundry) {
    auto record = cf::MutableDictionary();
    cf::Set(record, kGS_PostScriptNameKey, name);
    cf::Set(record, kGS_FamilyKey, family);
    cf::Set(record, kGS_FoundryKey, foundry);
    cf::Set(record, kGS_VersionKey, "1.001");
    return record;
}

Record MissingFont(const char* name, const std::vector<Record>& candidates) {
    auto record = FontOf(name, name, "");
    const auto replacements = cf::MutableDictionary();
    for (const Record& candidate : candidates)
        cf::Set(replacements, cf::GetString(candidate.get(), kGS_PostScriptNameKey).c_str(), candidate);
    cf::Set(record, kGS_PossibleReplacementsKey, replacements);
    return record;
}

/// Enough of them to scroll.
RecordList FontsToResolve() {
    const std::vector<Record> serifs = {
        FontOf("EBGaramond-Regular", "EB Garamond", "Georg Duffner"),
        FontOf("CormorantGaramond-Regular", "Cormorant Garamond", "Catharsis Fonts")};
    const std::vector<Record> sans = {FontOf("LiberationSans", "Liberation Sans", "Ascender")};
    return Records({MissingFont("AGaramondPro-Regular", serifs), MissingFont("Helvetica", sans),
                    MissingFont("Zapfino", {}), MissingFont("Helvetica-Bold", sans),
                    MissingFont("AGaramondPro-Italic", serifs), MissingFont("Garamond", serifs),
                    MissingFont("Arial", sans)});
}

void ShowSelectWorkgroup(VantorixPluginFramework& framework) {
    int32_t workgroup = 7;
    framework.ShowSelectWorkgroup(Workgroups().get(), &workgroup);
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

void ShowResolveFonts(VantorixPluginFramework& framework) {
    framework.ShowResolveFonts(FontsToResolve().get(), cf::MutableArray().get(), cf::MutableArray().get());
}

void ShowRestrictedFonts(VantorixPluginFramework& framework) {
    framework.ShowRestrictedFonts(Records({FontRecord("Didot"), FontRecord("BodoniURW-Regular"),
                                           FontRecord("Frutiger-Black"), FontRecord("OptimaNova-Medium")})
                                      .get(),
                                  true);
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

OwnedFramework LoadFramework(const std::string& libraryPath) {
    auto& libraries = platform::SystemDefault<platform::DynamicLibraries>();
    platform::SystemError error;
    const platform::LibraryHandle library = libraries.LoadFromPath(libraryPath, error);
    if (library == nullptr)
        return nullptr;
    const auto create = reinterpret_cast<CreateVantorixPluginFrameworkFunction>(
        libraries.FindSymbol(library, kCreateVantorixPluginFramework));
    const auto identification = cf::MutableDictionary();
    cf::Set(identification, "HostApp", "Illustrator2025");
    cf::Set(identification, "PluginVersion", "8.0.0");
    return OwnedFramework(
        create(VantorixPluginFramework::kInterfaceVersion, "com.vantorix.Plugin", identification.get()));
}

std::vector<FrameworkDialog> FrameworkDialogs(const std::string& libraryPath) {
    using Framework = VantorixPluginFramework;
    return {{"message", [](Framework& it) { it.ShowMessageBox(600, 601, MessageBoxButtons::kOk); }},
            {"question", [](Framework& it) { it.ShowMessageBox(604, 605, MessageBoxButtons::kYesNo); }},
            {"about", [](Framework& it) { it.ShowAbout(); }},
            {"preferences", [](Framework& it) { it.ShowPreferences(); }},
            {"select-workgroup", ShowSelectWorkgroup},
            {"command-box", ShowCommandBox},
            {"resolve-fonts", ShowResolveFonts},
            {"restricted-fonts", ShowRestrictedFonts},
            {"choose-folder", ShowChooseFolder},
            {"progress", ShowProgress},
            {"notice", [libraryPath](Framework&) {
                 platform::SystemDefault<platform::Windowing>().ShowStringResourceNotice(libraryPath, 105);
             }}};
}
