#include "scan/CleanName.h"

#include <algorithm>

#include "StringConversion.h"
#include "common/Limits.h"

namespace pellwick {
namespace {

bool IsControl(char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
}

}  // namespace

std::string CleanName(const std::string& name) {
    std::string clean = ReplaceInvalidUtf8(name.substr(0, kMaxNameSize));
    clean.erase(std::remove_if(clean.begin(), clean.end(), IsControl), clean.end());
    const size_t first = clean.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return clean.substr(first, clean.find_last_not_of(' ') - first + 1);
}

}  // namespace pellwick
