// The plug-in menu: described to the host, and carried out when the user chooses from it.
#pragma once

#include <cstddef>
#include <string>

#include "ErrorCodes.h"

namespace Menus {

/// Describes the menu as compact JSON, and keeps the text. `document`: empty when none is open.
///
/// An item is an object: "label" (its number as text; "0" and no title is a separator), "title", "checked",
/// "enabled", and "child", an array of items, where it has a submenu. The text is copied with its terminating
/// zero when its length is at most *size: the caller provides room for the zero. *size becomes the length.
ErrorCode GetMenus(const std::string& document, char* buffer, size_t* size);

/// Carries out the item `selectedID` of the host's menu (HostMenuJSON.h) or, when `menusJSON` is empty, the
/// item with that label of the menu that was described last. Always 0.
ErrorCode HandleMenuSelection(const std::string& document, const std::string& menusJSON,
                              const std::string& selectedID, const std::string& extra);

}  // namespace Menus
