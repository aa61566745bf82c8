#include "WideText.h"

#include <windows.h>

#include <algorithm>

namespace platform {
namespace {

constexpr size_t kLongestName = 255;
/// From here on a path needs the prefix that lifts the limit: a folder must leave room for an 8.3 name.
constexpr size_t kShortPathLimit = MAX_PATH - 12;
constexpr std::wstring_view kLongPathPrefix = LR"(\\?\)";

bool IsDrivePath(std::wstring_view path) {
    return path.size() > 2 && path[1] == L':' && path[2] == L'\\';
}

bool HasTooLongName(std::wstring_view path) {
    for (size_t begin = 0; begin < path.size();) {
        const size_t end = std::min(path.find(L'\\', begin), path.size());
        if (end - begin > kLongestName)
            return true;
        begin = end + 1;
    }
    return false;
}

std::wstring Refused(DWORD reason) {
    SetLastError(reason);
    return {};
}

/// With the prefix the system takes a path as it stands, so it must not have ".", ".." or a relative part.
std::wstring WithoutLimit(const std::wstring& path) {
    std::wstring full = ReadWideText(
        [&](wchar_t* buffer, DWORD size) { return GetFullPathNameW(path.c_str(), size, buffer, nullptr); });
    if (full.empty() || full.starts_with(kLongPathPrefix))
        return full;
    if (IsDrivePath(full))
        return std::wstring(kLongPathPrefix) + full;
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : full;
}

}  // namespace

std::wstring ToWide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::vector<std::wstring> ToWide(const std::vector<std::string>& texts) {
    std::vector<std::wstring> wide;
    wide.reserve(texts.size());
    for (const std::string& text : texts)
        wide.push_back(ToWide(text));
    return wide;
}

std::string ToUtf8(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), length, nullptr, nullptr);
    return narrow;
}

std::wstring ToWidePath(std::string_view path) {
    if (path.empty())
        return Refused(ERROR_PATH_NOT_FOUND);
    if (path.find('\0') != std::string_view::npos)
        return Refused(ERROR_INVALID_NAME);
    const int size = static_cast<int>(path.size());
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path.data(), size, nullptr, 0);
    if (length <= 0)
        return Refused(ERROR_NO_UNICODE_TRANSLATION);
    std::wstring wide = ToWide(path);
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    if (HasTooLongName(wide))
        return Refused(ERROR_FILENAME_EXCED_RANGE);
    return wide.size() < kShortPathLimit ? wide : WithoutLimit(wide);
}

}  // namespace platform
