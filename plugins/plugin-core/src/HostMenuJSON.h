// The host's own menu as JSON text: an object below which, in arrays at any depth, the items stand as objects
// with "id" and "label".
#pragma once

#include <string>

#include "ErrorCodes.h"
#include "PluginCoreInterface.h"

namespace PluginCoreInterface {

struct MenuObject {
    std::string id;
    std::string label;
};

/// The names under which an item's members stand.
struct MenuMembers {
    const char* id = "id";
    const char* label = "label";
};

/// The first item whose identifier, a text or a number, is `selectedID`. kInvalidParam for text that is no
/// JSON object, kNotFound when there is no such item or its label is not text.
[[nodiscard]] ErrorCode GetMenuObjectFromRawJSON(const std::string& menusJSON, const std::string& selectedID,
                                                 MenuObject& item, const MenuMembers& members = {});

/// Calls `createItem` for every item, an item before those below it. What it answers other than 0 ends the
/// work and is the result. An item whose label is not text is passed over. kInvalidParam for text that is no
/// JSON object.
[[nodiscard]] ErrorCode CreateMenusFromJSONBuffer(const std::string& menusJSON,
                                                  PluginCoreMenuItemCallback createItem, void* context);

}  // namespace PluginCoreInterface
