// make-large-document FILE MEBIBYTES: a document in the likeness of those that Illustrator writes: compressed
// streams between objects, and a font descriptor every few of them.

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

namespace {

constexpr size_t kStreamSize = 60000;

/// Bytes as a good compressor leaves them.
std::string CompressedStream(std::mt19937_64& random) {
    std::string bytes(kStreamSize, '\0');
    for (size_t at = 0; at + sizeof(uint64_t) <= bytes.size(); at += sizeof(uint64_t)) {
        const uint64_t value = random();
        bytes.replace(at, sizeof value, reinterpret_cast<const char*>(&value), sizeof value);
    }
    return bytes;
}

}  // namespace

int main(int argc, char** argv) {
    const uint64_t size = argc == 3 ? std::strtoull(argv[2], nullptr, 10) << 20 : 0;
    std::ofstream stream(argc == 3 ? argv[1] : "", std::ios::binary);
    if (size == 0 || !stream) {
        std::cerr << "usage: make-large-document FILE MEBIBYTES\n";
        return 2;
    }
    std::mt19937_64 random(1);
    stream << "%PDF-1.6\n%\xE2\xE3\xCF\xD3\n";
    for (uint64_t object = 1; static_cast<uint64_t>(stream.tellp()) < size; ++object) {
        stream << object << " 0 obj\n<</Filter/FlateDecode/Length " << kStreamSize << ">>stream\n"
               << CompressedStream(random) << "\nendstream\nendobj\n";
        if (object % 50 == 0)
            stream << object
                   << " 0 obj\n<</Ascent 750/CapHeight 662/Descent -250/Flags 34/FontName /ABCDEF+Bench"
                   << object % 200 << "-Regular/ItalicAngle 0/StemV 80/Type/FontDescriptor>>\nendobj\n";
    }
    return stream.flush() ? 0 : 1;
}
