#include "platform/Utf8Path.h"

namespace platform {

std::filesystem::path Utf8Path(std::string_view text) {
    return {text};
}

std::string Utf8Text(const std::filesystem::path& path) {
    return path.native();
}

}  // namespace platform
