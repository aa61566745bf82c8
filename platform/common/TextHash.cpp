#include "TextHash.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace platform {

std::string TextHash(std::string_view text) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
    return digits.data();
}

}  // namespace platform
