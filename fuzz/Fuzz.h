// What all targets have in common. Each defines TryInput and Seeds; Fuzz.cpp runs them.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

void TryInput(const std::string& input);
/// Inputs to begin with, which come in among the changed inputs, so that a target needs no folder of them.
std::vector<std::string> Seeds();

/// What has to hold for every input. Ends the process as a crash would, so that the fuzzer keeps the input, and
/// says what does not hold.
inline void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
