// The facade's workgroups: which there are, and which one is worked in.
#include <algorithm>
#include <utility>

#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "Preferences.h"
#include "ScopeExit.h"
#include "TraceLog.h"

namespace {

bool Holds(const std::vector<Workgroup>& workgroups, int32_t id) {
    return std::any_of(workgroups.begin(), workgroups.end(),
                       [id](const Workgroup& workgroup) { return workgroup.id == id; });
}

std::vector<Workgroup> OwnWorkgroups(std::vector<Workgroup> workgroups) {
    std::erase_if(workgroups, [](const Workgroup& each) { return each.id == kWorkgroupID_All; });
    return workgroups;
}

}  // namespace

void FontManagerInterface::InitializeDefaultWorkgroup() {
    // Whatever the checks before found: a workgroup can be chosen from here on.
    MarquellGlobals::SetPluginFunctionalityEnabled(true);
    if (!sm_pFontManager) {
        LogMessage(0, "Exiting because FontManager is not running.");
        return;
    }
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    if (!preferences->IsMade())
        return;
    LogMessage(0, "CloseFontsOnDocClose=%d",
               preferences->GetBoolPreference(preferences::CloseFontsOnDocClose));
    if (mDefaultWorkgroupID || !MarquellGlobals::IsPluginFunctional() ||
        !preferences->GetBoolPreference(preferences::EnablePlugin))
        return;
    CoreAgentInterface* const agent = sm_pFontManager;  // a dialog may outlast it
    if (agent->IsLoggedIn() || agent->IsRunningStandalone())
        OpenSelectWorkgroupDialog();
}

void FontManagerInterface::OpenSelectWorkgroupDialog() {
    if (mSelectWorkgroupDialog.IsTaken()) {
        LogMessage(0,
                   "*** UH-OH, can't display Select Workgroup dialog, because it's already being displayed!");
        return;
    }
    HandleSelectWorkgroup();
}

void FontManagerInterface::HandleSelectWorkgroup() {
    const TurnHolder turn(mSelectWorkgroupDialog);
    if (!turn) {
        LogMessage(0,
                   "*** FontManagerInterface::HandleSelectWorkgroup -- OOPS, Select Workgroup dialog is "
                   "already being displayed!");
        return;
    }
    const TraceScope trace([] { LogMessage(-1, "Exiting FontManagerInterface::HandleSelectWorkgroup"); },
                           "Entering FontManagerInterface::HandleSelectWorkgroup");
    LogMessage(0, "HandleSelectWorkgroup:  Setting PluginServicesEnabled false");
    MarquellGlobals::SetPluginServicesEnabled(false);
    if (const auto chosen = ChooseWorkgroup())
        SetCurrentWorkgroup(*chosen);
}

std::optional<int32_t> FontManagerInterface::ChooseWorkgroup() {
    VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
    std::vector<Workgroup> workgroups;
    if (ListWorkgroups(workgroups) != CoreErrorCodes::kSuccess)
        return mDefaultWorkgroupID;  // nobody can tell that it is gone
    if (workgroups.empty())
        return std::nullopt;
    const int64_t lastTime = framework->GetIntPreference(preferences::CurrentWorkgroup);
    if (lastTime != 0 && std::in_range<int32_t>(lastTime) &&
        Holds(workgroups, static_cast<int32_t>(lastTime)))
        return static_cast<int32_t>(lastTime);
    const std::vector<Workgroup> own = OwnWorkgroups(workgroups);
    if (own.size() == 1)
        return own.front().id;
    int32_t chosen = own.empty() ? workgroups.front().id : own.front().id;
    return framework->ShowSelectWorkgroup(WorkgroupRecords(workgroups).get(), chosen) ? std::optional(chosen)
                                                                                      : std::nullopt;
}

void FontManagerInterface::SetCurrentWorkgroup(int32_t workgroupID) {
    SetDefaultWorkgroupID(workgroupID);
    MarquellGlobals::GetSharedVPFInterface()->SetIntPreference(preferences::CurrentWorkgroup, workgroupID);
    // They are off while there is no workgroup to work in; for other reasons they stay off.
    if (!MarquellGlobals::ArePluginServicesEnabled() && MarquellGlobals::IsConnectedToCore() &&
        MarquellGlobals::IsLoggedIn())
        MarquellGlobals::SetPluginServicesEnabled(true);
}

void FontManagerInterface::SetDefaultWorkgroupID(int32_t workgroupID) {
    LogMessage(0, "Calling FontManagerInterface::SetDefaultWorkgroupID(workgroupID=%d)", workgroupID);
    mDefaultWorkgroupID = workgroupID;
}

void FontManagerInterface::ForgetWorkgroupThatIsGone() {
    std::vector<Workgroup> workgroups;
    if (mDefaultWorkgroupID && ListWorkgroups(workgroups) == CoreErrorCodes::kSuccess &&
        !Holds(workgroups, *mDefaultWorkgroupID))
        mDefaultWorkgroupID.reset();
}

ErrorCode FontManagerInterface::SetCurrentWorkgroup(CFStringRef name) {
    const auto workgroupID = FindWorkgroupID(cf::ToUtf8(name));
    if (!workgroupID)
        return CoreErrorCodes::kNotFound;
    SetCurrentWorkgroup(*workgroupID);
    return CoreErrorCodes::kSuccess;
}

std::optional<int32_t> FontManagerInterface::FindWorkgroupID(const std::string& name) {
    for (const Workgroup& workgroup : WorkgroupsToChooseFrom()) {
        if (workgroup.name == name)
            return workgroup.id;
    }
    LogMessage(0, "There is no workgroup named '%s'", name.c_str());
    return std::nullopt;
}

std::vector<Workgroup> FontManagerInterface::WorkgroupsToChooseFrom() {
    std::vector<Workgroup> workgroups;
    return ListWorkgroups(workgroups) == CoreErrorCodes::kSuccess ? workgroups : std::vector<Workgroup>();
}

ErrorCode FontManagerInterface::ListWorkgroups(std::vector<Workgroup>& workgroups) {
    WorkgroupFilter filter;
    filter.includeAllWorkgroup = true;
    return sm_pFontManager != nullptr ? sm_pFontManager->GetAllWorkgroupsForUser(filter, workgroups)
                                      : kErrorMarquellNotRunning;
}

bool FontManagerInterface::IsWorkgroupAvailable() {
    std::vector<Workgroup> workgroups;
    return sm_pFontManager &&
           sm_pFontManager->GetAllWorkgroupsForUser({}, workgroups) == CoreErrorCodes::kSuccess &&
           !workgroups.empty();
}

bool FontManagerInterface::IsValidWorkgroupForUser(int32_t workgroupID) {
    constexpr char kName[] = "FontManagerInterface::IsValidWorkgroupForUser";
    bool isValid = false;
    const TraceScope trace([&] { LogMessage(-1, "%s returning %d", kName, isValid); },
                           "Entering %s(workgroupID=%d)", kName, workgroupID);
    return isValid = Holds(WorkgroupsToChooseFrom(), workgroupID);
}

std::string FontManagerInterface::FindWorkgroupIDGetName(int32_t inWorkgroupID,
                                                         const std::vector<Workgroup>& workgroups) {
    constexpr char kName[] = "FontManagerInterface::FindWorkgroupIDGetName";
    bool isFound = false;
    const TraceScope trace([&] { LogMessage(-1, "%s returning %d", kName, isFound); },
                           "Entering %s(inWorkgroupID=%d)", kName, inWorkgroupID);
    const auto found = std::find_if(workgroups.begin(), workgroups.end(),
                                    [=](const Workgroup& each) { return each.id == inWorkgroupID; });
    isFound = found != workgroups.end();
    return isFound ? found->name : std::string();
}

std::string FontManagerInterface::GetWorkgroupNameFromID(int32_t inWorkgroupID) {
    constexpr char kName[] = "FontManagerInterface::GetWorkgroupNameFromID";
    bool isFound = false;
    const TraceScope trace([&] { LogMessage(-1, "%s returning %d", kName, isFound); },
                           "Entering %s(inWorkgroupID=%d)", kName, inWorkgroupID);
    std::string name = FindWorkgroupIDGetName(inWorkgroupID, WorkgroupsToChooseFrom());
    isFound = !name.empty();
    return name;
}

void FontManagerInterface::AddWorkgroupNamesToFonts(CFMutableArrayRef fonts) {
    constexpr char kName[] = "FontManagerInterface::AddWorkgroupNamesToFonts";
    int named = 0;
    const TraceScope trace([&] { LogMessage(-1, "%s returning %d", kName, named); },
                           "Entering %s(CFArrayGetCount(fonts)=%d)", kName,
                           static_cast<int>(cf::Count(fonts)));
    const std::vector<Workgroup> workgroups = WorkgroupsToChooseFrom();
    for (CFIndex index = 0; index < cf::Count(fonts); ++index) {
        const auto font = cf::Get<CFDictionaryRef>(fonts, index);
        const auto workgroupID = cf::GetInt64(font, kGS_WorkgroupIDKey);
        if (!workgroupID || !std::in_range<int32_t>(*workgroupID))
            continue;
        const std::string name = FindWorkgroupIDGetName(static_cast<int32_t>(*workgroupID), workgroups);
        if (name.empty())
            continue;
        const auto copy = AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, font));
        cf::Set(copy, kGS_WorkgroupNameKey, name);
        CFArraySetValueAtIndex(fonts, index, copy.get());
        ++named;
    }
}
