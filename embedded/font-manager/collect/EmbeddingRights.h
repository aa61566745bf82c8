// Whether a font may go into documents (https://learn.microsoft.com/typography/opentype/spec/os2#fstype).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pellwick {

/// The rights in a few words, as in "editable, no subsetting"; "unknown" where a font does not say.
std::string EmbeddingText(std::optional<uint16_t> embedding);

/// Whether the font must not be embedded without its owner's leave.
bool ForbidsEmbedding(std::optional<uint16_t> embedding);

}  // namespace pellwick
