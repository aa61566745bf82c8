// A short name for a long text.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// 16 hexadecimal digits: FNV-1a, 64 bits (http://www.isthe.com/chongo/tech/comp/fnv/). It tells texts apart
/// that nobody chose to have the same.
std::string TextHash(std::string_view text);

}  // namespace platform
