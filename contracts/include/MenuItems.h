// The items of the plug-in menu, and of the dialog that stands in for it.
#pragma once

#include <cstdint>

#include "LocalizedStrings.h"

/// X(name, label, text), in the order of the menu. The label is the item's number.
#define MENU_ITEMS(X)                                           \
    X(kRoot, 1, kProductName)           /* holds the others */  \
    X(kWorkgroups, 2, kSelectWorkgroup) /* or kSelectLibrary */ \
    X(kCollectFonts, 3, kCollectFonts)                          \
    X(kCreateDocumentSet, 4, kCreateDocumentSet)                \
    X(kCheckFonts, 5, kCheckFonts)                              \
    X(kPreferences, 6, kPreferences)                            \
    X(kAbout, 7, kAbout)

enum class MenuLabel : int32_t {
    kSeparator = 0,
#define MENU_ITEM_LABEL(name, label, text) name = label,
    MENU_ITEMS(MENU_ITEM_LABEL)
#undef MENU_ITEM_LABEL
        kFirstWorkgroup = 8  ///< one for each workgroup from here on
};

struct MenuItem {
    MenuLabel label;
    localized::StringID text;
};

inline constexpr MenuItem kMenuItems[] = {
#define MENU_ITEM_ROW(name, label, text) {MenuLabel::name, localized::text},
    MENU_ITEMS(MENU_ITEM_ROW)
#undef MENU_ITEM_ROW
};

/// Whether the item stands for something to be done, other than the choice of a workgroup.
constexpr bool IsCommand(MenuLabel label) {
    return label >= MenuLabel::kCollectFonts && label < MenuLabel::kFirstWorkgroup;
}
/// Whether it is done with the document in front.
constexpr bool IsDocumentCommand(MenuLabel label) {
    return IsCommand(label) && label <= MenuLabel::kCheckFonts;
}
