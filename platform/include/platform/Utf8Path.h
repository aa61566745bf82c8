// Paths are UTF-8 text; these are the ways into and out of std::filesystem, whose own conversion from narrow
// text depends on the system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

inline std::filesystem::path Utf8Path(std::string_view text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string Utf8Text(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

}  // namespace platform
