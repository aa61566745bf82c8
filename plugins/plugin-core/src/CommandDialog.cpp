#include "CommandDialog.h"

#include <CoreFoundation++/CFRef.h>

#include "CallScopes.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "MenuCommands.h"
#include "VantorixPluginFramework.h"

namespace {

CFRef<CFMutableDictionaryRef> StateOfCommandBox(const std::string& document,
                                                const std::vector<Workgroup>& workgroups) {
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    CoreAgentInterface* agent = fontManager.GetFontManager();
    CFRef<CFMutableDictionaryRef> state = cf::MutableDictionary();
    const bool isStandalone = agent != nullptr && agent->IsRunningStandalone();
    cf::Set(state, command_box::kIsLocalPersonal, isStandalone);
    cf::Set(state, command_box::kWorkgroups, WorkgroupRecords(workgroups));
    if (const auto current = fontManager.GetDefaultWorkgroupID())
        cf::Set(state, command_box::kCurrentWorkgroupID, *current);
    cf::Set(state, command_box::kButtonsEnabled, MenuCommands::AreAllowed(document));
    cf::Set(state, command_box::kIsOnline, MarquellGlobals::IsConnectedToCore() && !isStandalone);
    return state;
}

void CarryOut(int32_t command, const std::string& document, const std::vector<Workgroup>& workgroups) {
    const bool isLoggedIn = FontManagerInterface::GetSharedInstance().IsLoggedIn();
    const int64_t position = int64_t{command} - static_cast<int32_t>(MenuLabel::kFirstWorkgroup);
    if (position < 0)
        MenuCommands::Run(static_cast<MenuLabel>(command), isLoggedIn, document, "");
    else if (position < static_cast<int64_t>(workgroups.size()))
        MenuCommands::ChooseWorkgroup(workgroups[static_cast<size_t>(position)], isLoggedIn);
}

ErrorCode ShowCommandBox(const std::string& document) {
    VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
    if (framework->Framework() == nullptr)
        return CoreErrorCodes::kInvalidParam;
    const std::vector<Workgroup> workgroups =
        FontManagerInterface::GetSharedInstance().WorkgroupsToChooseFrom();
    int32_t command = 0;
    if (framework->ShowCommandBox(StateOfCommandBox(document, workgroups).get(), command))
        CarryOut(command, document, workgroups);
    return CoreErrorCodes::kSuccess;
}

}  // namespace

ErrorCode CommandDialog::InvokeCommandDialog(const char* document) {
    constexpr char kName[] = "PluginCoreInterface::InvokeCommandDialog";
    static Turn showing;
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName,
                           OrNull(document));
    if (const DialogTurn turn(showing, kName); turn) {
        FontManagerInterface::GetSharedInstance().OnUserAction();
        result = ShowCommandBox(document != nullptr ? document : "");
    }
    return result;
}
