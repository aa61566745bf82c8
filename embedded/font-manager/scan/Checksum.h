// The checksum that identifies a font file.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace pellwick {

/// SHA-256 (FIPS 180-4) of bytes that come piece by piece.
class Checksum {
public:
    Checksum();
    ~Checksum();
    Checksum(const Checksum&) = delete;
    Checksum& operator=(const Checksum&) = delete;

    void Append(std::string_view bytes);
    /// 64 lower-case hexadecimal digits. To be called once.
    std::string Digits();

private:
    struct Context;
    const std::unique_ptr<Context> mContext;
};

constexpr size_t kChecksumLength = 64;

}  // namespace pellwick
