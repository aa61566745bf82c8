#include <windows.h>

#include "WideText.h"
#include "platform/Files.h"

namespace platform {

// The system knows what a share, a device and a drive of its own current folder are; the C++ library does
// not.
std::string AbsolutePath(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return {};
    const std::wstring wide = ToWide(path);
    return ToUtf8(ReadWideText(
        [&](wchar_t* buffer, DWORD size) { return GetFullPathNameW(wide.c_str(), size, buffer, nullptr); }));
}

bool IsFullPath(const std::string& path) {
    const bool isOnDrive = path.size() > 2 && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
    return (isOnDrive || path.starts_with(R"(\\)")) && path.find('\0') == std::string::npos;
}

}  // namespace platform
