// The dialogs in which the user decides about fonts: what replaces those that are missing, and whether those
// may be used whose use is restricted.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <string>

#include "ErrorCodes.h"

namespace FontDialogs {

/// How many of the font records come with replacements to choose from.
CFIndex CountResolvable(CFArrayRef fonts);

/// Lets the user choose replacements; `resolvedFonts` and `skippedFonts` as for
/// VantorixPluginFramework::ShowResolveFonts. kUnknownError, and nothing is appended, without the framework
/// and while the dialog shows already, which is logged as an error of `caller`.
ErrorCode ShowResolveFonts(const char* caller, CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                           CFMutableArrayRef skippedFonts);

// The exports of the same names come here with their pointers checked; sizes and codes are told in
// PluginCoreInterface.h.
ErrorCode InvokeResolveDialog(bool onlyIfResolvable, const std::string& fontsJSON, char* resultBuffer,
                              size_t* resultSize, char* skippedBuffer, size_t* skippedSize);
ErrorCode InvokeRestrictedFontsDialog(bool onlyNew, const std::string& fontsJSON);

}  // namespace FontDialogs
