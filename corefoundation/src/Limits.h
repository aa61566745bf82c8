// What property lists may be at most, and why.
#pragma once

#include <cstddef>

namespace corefoundation {

// Some hundred times the largest list of fonts that is in use; whoever sends more wants to exhaust memory.
inline constexpr size_t kMaximumPropertyListBytes = 64U << 20;

// Real lists nest three or four deep. Collections free what they hold by recursion, so depth costs stack.
inline constexpr size_t kMaximumPropertyListDepth = 128;

}  // namespace corefoundation
