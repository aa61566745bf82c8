#include "Menus.h"

#include <cstring>
#include <nlohmann/json.hpp>

#include "FontManagerInterface.h"
#include "GJSONUtils.h"
#include "HostMenuJSON.h"
#include "MenuCommands.h"
#include "NoDestructor.h"
#include "TraceLog.h"

namespace {

using nlohmann::json;

std::string& LastMenuBuilt() {
    static NoDestructor<std::string> menu;
    return *menu;
}

json MenuItem(int32_t label, const std::string& title, bool isEnabled, bool isChecked = false) {
    LogMessage(0, "Adding menu '%s'", title.c_str());
    return {
        {"label", std::to_string(label)}, {"title", title}, {"checked", isChecked}, {"enabled", isEnabled}};
}

json MenuItem(MenuLabel label, bool isEnabled) {
    return MenuItem(static_cast<int32_t>(label), MenuCommands::TitleOf(label), isEnabled);
}

json Separator() {
    return MenuItem(static_cast<int32_t>(MenuLabel::kSeparator), "", false);
}

json WorkgroupItems() {
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    auto label = static_cast<int32_t>(MenuLabel::kFirstWorkgroup);
    json items = json::array();
    for (const Workgroup& workgroup : fontManager.WorkgroupsToChooseFrom()) {
        if (workgroup.id == kWorkgroupID_All)
            items.push_back(Separator());
        const bool isCurrent = fontManager.GetDefaultWorkgroupID() == workgroup.id;
        items.push_back(MenuItem(label++, workgroup.name, true, isCurrent));
    }
    return items;
}

json BuildMenu(const std::string& document) {
    const bool areCommandsAllowed = MenuCommands::AreAllowed(document);
    const bool isInAllWorkgroups =
        FontManagerInterface::GetSharedInstance().GetDefaultWorkgroupID() == kWorkgroupID_All;
    json root = MenuItem(MenuLabel::kRoot, true);
    json& items = root["child"] = json::array();
    for (const auto& [label, text] : kMenuItems) {
        if (label == MenuLabel::kRoot)
            continue;
        if (label == MenuLabel::kPreferences)
            items.push_back(Separator());
        const bool isEnabled = (areCommandsAllowed || !IsDocumentCommand(label)) &&
                               (label != MenuLabel::kCreateDocumentSet || !isInAllWorkgroups);
        items.push_back(MenuItem(label, isEnabled));
        if (label == MenuLabel::kWorkgroups)
            items.back()["child"] = WorkgroupItems();
    }
    return root;
}

void RunItem(const std::string& label, bool isLoggedIn, const std::string& document,
             const std::string& extra) {
    if (const auto command = MenuCommands::FromText(label))
        MenuCommands::Run(*command, isLoggedIn, document, extra);
    else
        MenuCommands::ChooseWorkgroup(label, isLoggedIn);
}

/// In the host's menu or, when the host gives none, in the menu that was described last.
ErrorCode FindItem(const std::string& menusJSON, const std::string& selectedID,
                   PluginCoreInterface::MenuObject& item) {
    if (!menusJSON.empty())
        return PluginCoreInterface::GetMenuObjectFromRawJSON(menusJSON, selectedID, item);
    return PluginCoreInterface::GetMenuObjectFromRawJSON("{\"menu\":[" + LastMenuBuilt() + "]}", selectedID,
                                                         item, {"label", "title"});
}

}  // namespace

ErrorCode Menus::GetMenus(const char* document, char* buffer, size_t* size) {
    constexpr char kName[] = "PluginCoreInterface::GetMenus";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s('%s', ...)", kName, OrNull(document));
    code = GJSONUtils::Serialise(BuildMenu(document != nullptr ? document : ""), LastMenuBuilt());
    if (code == CoreErrorCodes::kSuccess) {
        if (LastMenuBuilt().size() <= *size)
            std::memcpy(buffer, LastMenuBuilt().c_str(), LastMenuBuilt().size() + 1);
        else
            code = CoreErrorCodes::kIndexOutOfRange;
        *size = LastMenuBuilt().size();
    }
    return code;
}

ErrorCode Menus::HandleMenuSelection(const std::string& document, const std::string& menusJSON,
                                     const char* selectedID, const std::string& extra) {
    constexpr char kName[] = "PluginCoreInterface::HandleMenuSelection";
    constexpr ErrorCode kResult = CoreErrorCodes::kSuccess;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting %s(..., %s) with result %d", kName, OrNull(selectedID),
                       static_cast<int>(kResult));
        },
        "Entering %s(..., %s)", kName, OrNull(selectedID));
    FontManagerInterface::GetSharedInstance().OnUserAction();
    const bool isLoggedIn = FontManagerInterface::GetSharedInstance().IsLoggedIn();
    PluginCoreInterface::MenuObject item;
    if (selectedID != nullptr && FindItem(menusJSON, selectedID, item) == CoreErrorCodes::kSuccess)
        RunItem(item.label, isLoggedIn, document, extra);
    return kResult;
}
