#include <filesystem>

#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace platform {

std::string AbsolutePath(const std::string& path) {
    std::error_code failure;
    return Utf8Text(std::filesystem::absolute(Utf8Path(path), failure).lexically_normal());
}

bool IsFullPath(const std::string& path) {
    return path.starts_with('/') && path.find('\0') == std::string::npos;
}

}  // namespace platform
