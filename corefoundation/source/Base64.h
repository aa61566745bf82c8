// Bytes as text: base64 as in RFC 4648, section 4.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "CoreFoundation/CFBase.h"

namespace corefoundation {

std::string EncodeBase64(std::span<const UInt8> bytes);

// Blanks and line ends are skipped; nothing for text with other foreign characters or of a wrong length or
// padding.
std::optional<std::vector<UInt8>> DecodeBase64(std::string_view text);

}  // namespace corefoundation
