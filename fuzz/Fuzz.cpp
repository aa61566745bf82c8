#include "Fuzz.h"

#include <cstdint>
#include <cstring>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

/// Now and then one of the seeds that are no longer than `maxSize`, else the input changed as libFuzzer does it.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned random) {
    static const auto& seeds = *new std::vector<std::string>(Seeds());
    constexpr unsigned kSeedInterval = 64;
    if (seeds.empty() || random % kSeedInterval != 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::string& seed = seeds[random / kSeedInterval % seeds.size()];
    if (seed.size() > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::memcpy(data, seed.data(), seed.size());
    return seed.size();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TryInput({reinterpret_cast<const char*>(data), size});
    return 0;
}
