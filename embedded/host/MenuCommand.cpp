#include <fmt/core.h>

#include <nlohmann/json.hpp>

#include "Commands.h"
#include "FoundFonts.h"
#include "OpenedDocument.h"
#include "Output.h"
#include "platform/Files.h"

namespace {

using nlohmann::json;

constexpr size_t kMenuSize = size_t{1} << 20;
constexpr int kFirstWorkgroupLabel = 8;

/// An empty object after an error line.
json ReadMenu(const CoreLibrary& core, const std::string& document) {
    std::string text(kMenuSize, '\0');
    size_t size = text.size() - 1;
    const uint32_t code = core.GetMenus(document.c_str(), text.data(), &size);
    json menu = json::parse(text.c_str(), nullptr, false);
    if (code == PLUGINCORE_SUCCESS && menu.is_object())
        return menu;
    PrintError("the menu cannot be read: " + ResultName(code));
    return json::object();
}

bool IsSeparator(const json& item) {
    return item.value("label", "") == "0";
}

/// The item and all below it, indented by their depth.
void PrintItem(const json& item, int depth) {
    const std::string indent(static_cast<size_t>(depth) * 2, ' ');
    if (IsSeparator(item)) {
        fmt::print("    {}---\n", indent);
        return;
    }
    PrintLine(fmt::format("{:>3} {}{}{}{}", item.value("label", ""), indent,
                          item.value("checked", false) ? "* " : "", item.value("title", ""),
                          item.value("enabled", false) ? "" : "  (not available)"));
    for (const json& child : item.value("child", json::array()))
        PrintItem(child, depth + 1);
}

/// The first item with that label or title, or null.
const json* FindItem(const json& item, const std::string& choice) {
    if (!IsSeparator(item) && (item.value("label", "") == choice || item.value("title", "") == choice))
        return &item;
    if (!item.contains("child"))
        return nullptr;
    for (const json& child : item["child"]) {
        if (const json* found = FindItem(child, choice))
            return found;
    }
    return nullptr;
}

/// As a host keeps its menu: its own identifiers beside the texts. A workgroup is the current one afterwards.
int SelectItem(const CoreLibrary& core, const json& item, const std::string& document) {
    const std::string label = item.at("label");
    const json hostMenu{{"items", {{{"id", label}, {"label", item.at("title")}}}}};
    core.HandleMenuSelection(document.c_str(), hostMenu.dump().c_str(), label.c_str(), nullptr);
    if (!item.contains("checked") || std::stoi(label) < kFirstWorkgroupLabel)
        return exit_status::kDone;
    const json menu = ReadMenu(core, document);
    const json* now = FindItem(menu, label);
    if (now != nullptr && now->value("checked", false)) {
        PrintLine("done: the current workgroup is " + now->value("title", ""));
        return exit_status::kDone;
    }
    PrintError("the current workgroup is another one; 'menu' shows it");
    return exit_status::kFailed;
}

int Choose(const CoreLibrary& core, const json& menu, const std::string& document,
           const std::string& choice) {
    const json* item = FindItem(menu, choice);
    if (item == nullptr || item->contains("child")) {
        PrintError("the menu has nothing to choose named " + choice + "; 'menu' alone shows it");
        return exit_status::kFailed;
    }
    if (!item->value("enabled", false)) {
        PrintError(choice + " is not available now" +
                   (document.empty() ? "; name a document with --document" : ""));
        return exit_status::kFailed;
    }
    return SelectItem(core, *item, document);
}

}  // namespace

int RunMenu(const HostOptions& host, const MenuOptions& options) {
    if (!options.document.empty() && !platform::IsExistingFile(options.document)) {
        PrintError(options.document + " was not found; give the path of a document");
        return exit_status::kFailed;
    }
    HostSession session;
    if (const int startStatus = session.Start(host, HostSession::Needs::kPreferencesAlone))
        return startStatus;
    const std::string document = platform::AbsolutePath(options.document);
    if (!document.empty())
        OpenDocument(session.Core(), document, FontFinder().FindForCore(document));
    const json menu = ReadMenu(session.Core(), document);
    if (menu.empty())
        return exit_status::kFailed;
    if (!options.choice.empty())
        return Choose(session.Core(), menu, document, options.choice);
    if (options.json)
        PrintJson(menu.dump());
    else
        PrintItem(menu, 0);
    return exit_status::kDone;
}
