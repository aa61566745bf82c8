#include "FindBytes.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr size_t kBlockSize = 64;

/// How often a byte turns up in documents, roughly: the smaller, the rarer.
int Frequency(char byte) {
    if ((byte >= 'A' && byte <= 'Z') || byte == '[' || byte == ']')
        return 0;
    if (byte >= 'a' && byte <= 'z')
        return 1;
    return byte == ' ' || byte == '0' || byte == '\0' ? 3 : 2;
}

/// Where the two rarest bytes of a pattern stand, different bytes where it has them.
struct Probes {
    explicit Probes(std::string_view pattern) {
        for (size_t index = 1; index < pattern.size(); ++index) {
            if (Frequency(pattern[index]) < Frequency(pattern[first]))
                first = index;
        }
        for (size_t index = 0; index < pattern.size(); ++index) {
            if (index != first && (second == first || Rank(pattern, index) < Rank(pattern, second)))
                second = index;
        }
    }

    size_t first = 0;
    size_t second = 0;

private:
    int Rank(std::string_view pattern, size_t index) const {
        return Frequency(pattern[index]) + (pattern[index] == pattern[first] ? 10 : 0);
    }
};

/// Whether a pattern may begin within the block: some byte has both probes at their distances. Compilers turn
/// the loop into vector instructions.
bool MayHoldAMatch(const char* block, const Probes& probes, char first, char second) {
    const char* firstBytes = block + probes.first;
    const char* secondBytes = block + probes.second;
    unsigned char hit = 0;
    for (size_t index = 0; index < kBlockSize; ++index) {
        hit |= static_cast<unsigned char>((firstBytes[index] == first) & (secondBytes[index] == second));
    }
    return hit != 0;
}

/// The offset of the first match that begins before `limit`.
size_t FindOneByOne(std::string_view bytes, size_t from, size_t limit, std::string_view pattern,
                    size_t probe) {
    while (from < limit) {
        const void* hit = std::memchr(bytes.data() + from + probe, pattern[probe], limit - from);
        if (hit == nullptr)
            return std::string_view::npos;
        const auto match = static_cast<size_t>(static_cast<const char*>(hit) - bytes.data()) - probe;
        if (std::memcmp(bytes.data() + match, pattern.data(), pattern.size()) == 0)
            return match;
        from = match + 1;
    }
    return std::string_view::npos;
}

}  // namespace

size_t FindBytes(std::string_view bytes, std::string_view pattern) {
    if (bytes.size() < pattern.size())
        return std::string_view::npos;
    const Probes probes(pattern);
    const char first = pattern[probes.first];
    const char second = pattern[probes.second];
    const size_t starts = bytes.size() - pattern.size() + 1;  // where a match can begin
    size_t position = 0;
    for (; position + kBlockSize <= starts; position += kBlockSize) {
        if (!MayHoldAMatch(bytes.data() + position, probes, first, second))
            continue;
        const size_t match = FindOneByOne(bytes, position, position + kBlockSize, pattern, probes.first);
        if (match != std::string_view::npos)
            return match;
    }
    return FindOneByOne(bytes, position, starts, pattern, probes.first);
}
