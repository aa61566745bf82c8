// Text at the border of Windows: UTF-8 inside, UTF-16 outside.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What is not well-formed UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view text);
std::vector<std::wstring> ToWide(const std::vector<std::string>& texts);
/// A surrogate that stands alone becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

/// The path as the file functions take it, also one of more than 260 characters or with slashes. Empty, with
/// the last error set, when it is not UTF-8, has a zero in it, or one of its names is longer than any file
/// system takes.
std::wstring ToWidePath(std::string_view path);

/// What a system call of the kind "buffer and its size in, length out" writes, however long it is. `fill`
/// returns the length without the closing zero, the size of the buffer or more when that was too small, and 0
/// when it failed.
template <class Fill>
std::wstring ReadWideText(Fill fill) {
    std::wstring text(260, L'\0');
    for (;;) {
        const size_t length = fill(text.data(), static_cast<unsigned long>(text.size()));
        if (length < text.size()) {
            text.resize(length);
            return text;
        }
        text.resize(length > text.size() ? length + 1 : text.size() * 2);
    }
}

}  // namespace platform
