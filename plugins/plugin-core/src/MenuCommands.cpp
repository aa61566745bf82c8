#include "MenuCommands.h"

#include "CommonFunctionality.h"
#include "DocumentCommands.h"
#include "FontManagerInterface.h"
#include "GeneralInterface.h"
#include "LocalizedStrings.h"
#include "MarquellGlobals.h"
#include "Preferences.h"
#include "ScopeExit.h"
#include "TraceLog.h"

namespace {

/// In the user's language, else in English, the language of hosts that do not translate.
std::string Localized(localized::StringID text) {
    const std::string localizedText = MarquellGlobals::GetSharedVPFInterface()->LocalizedString(text);
    return localizedText.empty() ? std::string(localized::EnglishText(text)) : localizedText;
}

bool IsRunningStandalone() {
    CoreAgentInterface* agent = FontManagerInterface::GetSharedInstance().GetFontManager();
    return agent != nullptr && agent->IsRunningStandalone();
}

/// Tells a user who is not logged in so.
bool MayWork(bool isLoggedIn) {
    if (!isLoggedIn)
        CommonFunctionality::ShowNotLoggedInMessage();
    return isLoggedIn;
}

void ShowPreferences(VPFInterface& framework) {
    if (!framework.ShowPreferences())
        return;
    if (framework.GetBoolPreference(preferences::EnableLogging))
        EnableLogging();
    if (GeneralInterface* hostApp = CommonFunctionality::SharedHostAppInterface())
        hostApp->Refresh(true, true);
}

void Dispatch(MenuLabel command, const std::string& document, const std::string& extra) {
    VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
    switch (command) {
        case MenuLabel::kAbout:
            framework->ShowAbout();
            break;
        case MenuLabel::kPreferences:
            ShowPreferences(*framework);
            break;
        // The commands tell the user themselves what comes of them.
        case MenuLabel::kCollectFonts:
            DocumentCommands::HandleExportDocumentFonts(document);
            break;
        case MenuLabel::kCreateDocumentSet:
            DocumentCommands::HandleCreateDocumentSet(document);
            break;
        case MenuLabel::kCheckFonts:
            DocumentCommands::HandleCheckDocumentFonts(document, extra);
            break;
        case MenuLabel::kSeparator:
        case MenuLabel::kRoot:
        case MenuLabel::kWorkgroups:
        case MenuLabel::kFirstWorkgroup:
            break;
    }
}

}  // namespace

namespace MenuCommands {

std::string TitleOf(MenuLabel label) {
    if (label == MenuLabel::kWorkgroups && IsRunningStandalone())
        return Localized(localized::kSelectLibrary);
    for (const MenuItem& each : kMenuItems) {
        if (each.label == label)
            return Localized(each.text);
    }
    return {};
}

std::optional<MenuLabel> FromText(const std::string& text) {
    for (const MenuItem& each : kMenuItems) {
        if (IsCommand(each.label) &&
            (text == localized::EnglishText(each.text) || text == Localized(each.text)))
            return each.label;
    }
    return std::nullopt;
}

void Run(MenuLabel command, bool isLoggedIn, const std::string& document, const std::string& extra) {
    static Turn running;
    const DialogTurn turn(running, "MenuCommands::Run");
    if (turn && (command == MenuLabel::kAbout || MayWork(isLoggedIn)))
        Dispatch(command, document, extra);
}

void ChooseWorkgroup(const std::string& name, bool isLoggedIn) {
    if (!MayWork(isLoggedIn))
        return;
    LogMessage(0, "Setting current workgroup name to '%s'", name.c_str());
    // A name that no workgroup has was logged, and nothing changes.
    static_cast<void>(FontManagerInterface::GetSharedInstance().SetCurrentWorkgroup(cf::String(name).get()));
}

void ChooseWorkgroup(const Workgroup& workgroup, bool isLoggedIn) {
    if (!MayWork(isLoggedIn))
        return;
    LogMessage(0, "Setting current workgroup name to '%s'", workgroup.name.c_str());
    FontManagerInterface::GetSharedInstance().SetCurrentWorkgroup(workgroup.id);
}

bool AreAllowed(const std::string& document) {
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    return !document.empty() && preferences->IsValid() &&
           preferences->GetBoolPreference(preferences::EnablePlugin);
}

}  // namespace MenuCommands
