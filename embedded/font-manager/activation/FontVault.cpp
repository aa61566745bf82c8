#include "activation/FontVault.h"

#include <nettle/sha2.h>

#include <array>
#include <system_error>

#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {

std::string Sha256(const std::string& content) {
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, content.size(), reinterpret_cast<const uint8_t*>(content.data()));
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&context, digest.size(), digest.data());
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : digest) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::string ShardedPath(const std::string& folder, const FontFile& file) {
    return folder + platform::kPathSeparator + file.checksum.substr(0, 2) + platform::kPathSeparator +
           file.checksum + file.extension;
}

bool FontVault::Has(const FontFile& file) const {
    uint64_t size = 0;
    return !platform::FileSize(PathOf(file), size) && size == file.size;
}

platform::SystemError FontVault::Store(const FontFile& file, const std::string& content) const {
    const std::string path = PathOf(file);
    if (const auto error =
            platform::MakeFolders(platform::Utf8Text(platform::Utf8Path(path).parent_path()), true))
        return error;
    const auto error = platform::WriteWholeFile(path, content);
    // Links give other programs the very same file; none of them is to write to it by mistake.
    std::error_code failure;
    if (!error)
        std::filesystem::permissions(platform::Utf8Path(path), std::filesystem::perms::owner_read, failure);
    return error;
}

void FontVault::Remove(const FontFile& file) const {
    std::error_code failure;
    std::filesystem::remove(platform::Utf8Path(PathOf(file)), failure);
}

}  // namespace pellwick
