// Font lists as they cross the exports: JSON text outside, CoreFoundation arrays of font records inside.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

#include "ErrorCodes.h"

enum class FontListForm {
    kArray,         ///< a JSON array of font objects
    kArrayOrObject  ///< or an object that holds such an array under "DocumentFonts"
};

/// Appends the fonts to `fonts`; what is not an object among them is passed over. kInvalidParam, with nothing
/// appended, for text that is not JSON or not of that form.
[[nodiscard]] ErrorCode AppendFontsFromJSON(const std::string& text, FontListForm form,
                                            CFMutableArrayRef fonts);

/// Compact JSON text of an array of font records.
[[nodiscard]] ErrorCode FontsToJSON(CFArrayRef fonts, std::string& text);
