#include "scan/CleanName.h"

#include <algorithm>

#include "PrintableText.h"
#include "common/FontManagerLimits.h"

namespace pellwick {
namespace {

/// The text without unprintable characters or blanks at the ends.
std::string Clean(const std::string& text, size_t limit) {
    // The replacement for invalid bytes is longer than they are.
    const std::string clean = FirstBytes(WithoutUnprintables(FirstBytes(text, limit)), limit);
    const size_t first = clean.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return clean.substr(first, clean.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string CleanName(const std::string& name) {
    return Clean(name, kMaxNameSize);
}

std::string CleanText(std::string text, size_t limit) {
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return byte == '\n' || byte == '\r' || byte == '\t'; },
        ' ');
    return Clean(text, limit);
}

}  // namespace pellwick
