// What has to hold for every input.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process as a crash would, so that the fuzzer keeps the input, and says what does not hold.
inline void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
