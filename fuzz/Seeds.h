// Inputs to begin with. They are made by code and come in among the changed inputs, so that a target needs no
// folder of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

/// For a target's LLVMFuzzerCustomMutator: now and then one of the seeds that are no longer than `maxSize`,
/// else the input changed as libFuzzer does it. The new size.
inline size_t MutateOrSeed(const std::vector<std::string>& seeds, uint8_t* data, size_t size, size_t maxSize,
                           unsigned random) {
    constexpr unsigned kSeedInterval = 64;
    const std::string& seed = seeds[random / kSeedInterval % seeds.size()];
    if (random % kSeedInterval != 0 || seed.size() > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::memcpy(data, seed.data(), seed.size());
    return seed.size();
}
