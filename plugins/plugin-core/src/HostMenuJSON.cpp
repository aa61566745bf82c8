#include "HostMenuJSON.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "GJSONUtils.h"
#include "TraceLog.h"

namespace {

using nlohmann::json;
using PluginCoreInterface::MenuMembers;
using PluginCoreInterface::MenuObject;

/// Parses the text of a menu: an object.
ErrorCode ParseMenu(const std::string& text, json& menu) {
    if (const ErrorCode code = GJSONUtils::Parse(text, menu))
        return code;
    if (menu.is_object())
        return CoreErrorCodes::kSuccess;
    LogMessage(0, "The root element is not an object.");
    return CoreErrorCodes::kInvalidParam;
}

/// Calls `visit` for every object in an array, until one of the calls answers other than 0. Without
/// recursion: the text is the host's and may be nested to any depth.
template <class Visit>
ErrorCode VisitItems(const json& menu, Visit visit) {
    struct Place {
        const json* value;
        bool isInArray;
    };
    std::vector<Place> pending{{&menu, false}};
    while (!pending.empty()) {
        const auto [value, isInArray] = pending.back();
        pending.pop_back();
        if (isInArray && value->is_object()) {
            if (const ErrorCode code = visit(*value))
                return code;
        }
        for (auto child = value->rbegin(); child != value->rend(); ++child) {
            if (child->is_structured())
                pending.push_back({&*child, value->is_array()});
        }
    }
    return CoreErrorCodes::kSuccess;
}

/// Nothing for an object that is not an item.
std::optional<std::string> IdentifierOf(const json& object, const char* member) {
    const auto id = object.find(member);
    if (id == object.end() || !(id->is_string() || id->is_number()))
        return std::nullopt;
    return id->is_string() ? id->get<std::string>() : id->dump();
}

std::optional<std::string> LabelOf(const json& object, const char* member) {
    const auto label = object.find(member);
    if (label != object.end() && label->is_string())
        return label->get<std::string>();
    LogMessage(0, "How could '%s' not be a string?", member);
    return std::nullopt;
}

ErrorCode CreateMenuItemsFromJSONArray(const json& menu, PluginCoreMenuItemCallback createItem,
                                       void* context) {
    constexpr char kName[] = "PluginCoreInterface::CreateMenuItemsFromJSONArray";
    constexpr MenuMembers kMembers;
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s()", kName);
    code = VisitItems(menu, [&](const json& object) -> ErrorCode {
        const auto id = IdentifierOf(object, kMembers.id);
        const auto label = id ? LabelOf(object, kMembers.label) : std::nullopt;
        return label ? createItem(id->c_str(), label->c_str(), context) : CoreErrorCodes::kSuccess;
    });
    return code;
}

ErrorCode FindMenuObject(const std::string& menusJSON, const std::string& selectedID,
                         const MenuMembers& members, MenuObject& item) {
    json menu;
    if (const ErrorCode code = ParseMenu(menusJSON, menu))
        return code;
    ErrorCode result = CoreErrorCodes::kNotFound;
    static_cast<void>(VisitItems(menu, [&](const json& object) -> ErrorCode {
        if (IdentifierOf(object, members.id) != selectedID)
            return CoreErrorCodes::kSuccess;
        if (const auto label = LabelOf(object, members.label)) {
            item = {selectedID, *label};
            result = CoreErrorCodes::kSuccess;
        }
        return CoreErrorCodes::kError;  // found: no need to look further
    }));
    return result;
}

}  // namespace

namespace PluginCoreInterface {

ErrorCode GetMenuObjectFromRawJSON(const std::string& menusJSON, const std::string& selectedID,
                                   MenuObject& item, const MenuMembers& members) {
    constexpr char kName[] = "PluginCoreInterface::GetMenuObjectFromRawJSON";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s(..., %s, ...)", kName,
                           selectedID.c_str());
    return code = FindMenuObject(menusJSON, selectedID, members, item);
}

ErrorCode CreateMenusFromJSONBuffer(const std::string& menusJSON, PluginCoreMenuItemCallback createItem,
                                    void* context) {
    json menu;
    if (const ErrorCode code = ParseMenu(menusJSON, menu))
        return code;
    return CreateMenuItemsFromJSONArray(menu, createItem, context);
}

}  // namespace PluginCoreInterface
