#include "platform/Utf8Path.h"

#include "WideText.h"
#include "platform/Files.h"

namespace platform {

std::filesystem::path Utf8Path(std::string_view text) {
    // A part of a path stays one, however long.
    return IsFullPath(std::string(text)) ? std::filesystem::path(ToWidePath(text))
                                         : std::filesystem::path(ToWide(text)).make_preferred();
}

std::string Utf8Text(const std::filesystem::path& path) {
    constexpr std::wstring_view kPrefix = LR"(\\?\)";
    constexpr std::wstring_view kNetworkPrefix = LR"(\\?\UNC\)";
    const std::wstring_view text = path.native();
    if (text.starts_with(kNetworkPrefix))
        return R"(\\)" + ToUtf8(text.substr(kNetworkPrefix.size()));
    return ToUtf8(text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text);
}

}  // namespace platform
