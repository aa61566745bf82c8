// Paths are UTF-8 text; these are the ways into and out of std::filesystem, whose own conversion from narrow
// text depends on the system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

/// Windows: a full path beyond 247 characters gets the prefix that files need there, whatever the program declares; the
/// library lists no folder of such a path. Empty for a full path that cannot be one.
std::filesystem::path Utf8Path(std::string_view text);
/// The path as people write it.
std::string Utf8Text(const std::filesystem::path& path);

}  // namespace platform
