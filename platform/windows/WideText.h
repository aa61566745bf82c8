// The border between UTF-8 and the wide text of the system.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What is no UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view utf8);
std::vector<std::wstring> ToWide(const std::vector<std::string>& texts);
/// Unpaired surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view wide);

}  // namespace platform
