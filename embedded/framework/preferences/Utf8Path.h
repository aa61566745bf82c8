// Between UTF-8 text and std::filesystem, whose own conversion from narrow text depends on the system.
#pragma once

#include <filesystem>
#include <string>

inline std::filesystem::path Utf8Path(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}
