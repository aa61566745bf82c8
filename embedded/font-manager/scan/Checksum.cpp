#include "scan/Checksum.h"

#include <nettle/sha2.h>

#include <array>

namespace pellwick {

struct Checksum::Context {
    sha256_ctx state;
};

Checksum::Checksum() : mContext(std::make_unique<Context>()) {
    sha256_init(&mContext->state);
}
Checksum::~Checksum() = default;

void Checksum::Append(std::string_view bytes) {
    sha256_update(&mContext->state, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
}

std::string Checksum::Digits() {
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&mContext->state, digest.size(), digest.data());
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : digest) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace pellwick
