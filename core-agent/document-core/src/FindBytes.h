// Finding a short pattern in many bytes.
#pragma once

#include <cstddef>
#include <string_view>

/// The offset of the first `pattern` (not empty) in `bytes`, std::string_view::npos when there is none.
/// Fast where the pattern is rare: blocks are skipped unless they hold both of its two rarest bytes at their
/// distance.
size_t FindBytes(std::string_view bytes, std::string_view pattern);
