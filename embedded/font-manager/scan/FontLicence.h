// What a font says of who may do what with it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pellwick {

struct FontLicence {
    /// The flags fsType of the OS/2 table (https://learn.microsoft.com/typography/opentype/spec/os2#fstype), or
    /// those that a PostScript font has in their place; nothing where the font does not say.
    std::optional<uint16_t> embedding{};
    std::string text{};  ///< of the licence, or about it, in one line; UTF-8 of at most kMaxLicenceSize
    std::string url{};   ///< where more is said
};

}  // namespace pellwick
