#include "scan/CleanName.h"

#include "PrintableText.h"
#include "common/FontManagerLimits.h"

namespace pellwick {
namespace {

/// The text cut to the length of a name, without half a character at its end.
std::string Cut(const std::string& text) {
    constexpr size_t kMaxFollowingBytes = 3;  // of one character
    if (text.size() <= kMaxNameSize)
        return text;
    size_t end = kMaxNameSize;
    while (end > kMaxNameSize - kMaxFollowingBytes && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

}  // namespace

std::string CleanName(const std::string& name) {
    // The replacement for invalid bytes is longer than they are.
    const std::string clean = Cut(WithoutUnprintables(Cut(name)));
    const size_t first = clean.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return clean.substr(first, clean.find_last_not_of(' ') - first + 1);
}

}  // namespace pellwick
