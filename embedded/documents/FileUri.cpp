#include "FileUri.h"

#include <algorithm>
#include <charconv>

namespace documents {
namespace {

/// Escapes that are none stay as they are: letters that should be escaped seldom are.
std::string Unescaped(std::string_view text) {
    std::string unescaped;
    while (!text.empty()) {
        unsigned char letter = 0;
        const char* const digits = text.data() + 1;
        const bool isEscape = text.size() > 2 && text[0] == '%' &&
                              std::from_chars(digits, digits + 2, letter, 16).ptr == digits + 2 &&
                              letter != 0;
        unescaped += isEscape ? static_cast<char>(letter) : text[0];
        text.remove_prefix(isEscape ? 3 : 1);
    }
    return unescaped;
}

}  // namespace

std::string PathOfUri(std::string_view uri) {
    const size_t schemeEnd = uri.find_first_of(":/#");
    if (schemeEnd != std::string_view::npos && schemeEnd > 0 && uri[schemeEnd] == ':') {
        if (uri.substr(0, schemeEnd) != "file")
            return {};
        uri.remove_prefix(schemeEnd + 1);
    }
    if (uri.starts_with("//")) {
        const size_t hostEnd = std::min(uri.find('/', 2), uri.size());
        const std::string_view host = uri.substr(2, hostEnd - 2);
        if (!host.empty() && host != "localhost")
            return {};
        uri.remove_prefix(hostEnd);
    }
    uri = uri.substr(0, uri.find('#'));
    const bool hasDrive = uri.size() > 2 && uri[0] == '/' && uri[2] == ':';
    uri.remove_prefix(hasDrive ? 1 : 0);
    return Unescaped(uri);
}

}  // namespace documents
