// Database IDs of fonts, 32 bits unsigned, as they stand in the font manager's dictionaries.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <optional>
#include <utility>

/// Nothing for what is no such ID: cut to 32 bits it would name some other font.
inline std::optional<uint32_t> FontIDFrom(CFTypeRef number) {
    const auto value = cf::ToInt64(number);
    return value && std::in_range<uint32_t>(*value) ? std::optional(static_cast<uint32_t>(*value))
                                                    : std::nullopt;
}

inline std::optional<uint32_t> FontIDIn(CFDictionaryRef dictionary, const char* key) {
    return FontIDFrom(cf::Get(dictionary, key));
}
