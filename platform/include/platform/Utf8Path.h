// Paths are UTF-8 text; these are the ways into and out of std::filesystem, whose own conversion from narrow
// text depends on the system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

/// Windows: also for paths beyond 260 characters, whatever the program declares. Empty for text that cannot be a path.
std::filesystem::path Utf8Path(std::string_view text);
/// The path as people write it.
std::string Utf8Text(const std::filesystem::path& path);

}  // namespace platform
