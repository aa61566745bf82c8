// Finding a short pattern in many bytes.
#pragma once

#include <cstddef>
#include <string_view>

/// The offset of the first `pattern` (not empty) in `bytes`, std::string_view::npos when there is none.
/// Blocks are passed over by two of the pattern's bytes at a time, the ones that documents hold least, at the
/// speed of memory.
size_t FindBytes(std::string_view bytes, std::string_view pattern);
