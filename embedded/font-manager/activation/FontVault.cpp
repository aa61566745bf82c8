#include "activation/FontVault.h"

#include <nettle/sha2.h>

#include <array>
#include <set>
#include <system_error>

#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

constexpr size_t kChecksumLength = 2 * SHA256_DIGEST_SIZE;

/// Two hexadecimal digits of a checksum, then the checksum and an extension.
bool IsShardedName(const fs::path& path) {
    const std::string name = platform::Utf8Text(path.filename());
    const std::string shard = platform::Utf8Text(path.parent_path().filename());
    return name.size() > kChecksumLength && name[kChecksumLength] == '.' &&
           name.find_first_not_of("0123456789abcdef") == kChecksumLength && shard == name.substr(0, 2);
}

/// A temporary name has one more extension behind the font's own.
bool IsTemporaryName(const fs::path& path) {
    return platform::Utf8Text(path.filename()).find('.', kChecksumLength + 1) != std::string::npos;
}

}  // namespace

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

std::vector<std::string> ShardedFiles(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code failure;
    if (fs::is_symlink(platform::Utf8Path(folder), failure))
        return files;
    fs::recursive_directory_iterator entry(platform::Utf8Path(folder),
                                           fs::directory_options::skip_permission_denied, failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        const bool isFolder = entry->is_directory(ignored) && !entry->is_symlink(ignored);
        if (!isFolder && IsShardedName(entry->path()))
            files.push_back(platform::Utf8Text(entry->path()));
    }
    return files;
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
        fs::permissions(platform::Utf8Path(path), fs::perms::owner_read, failure);
    return error;
}

void FontVault::Remove(const FontFile& file) const {
    platform::RemoveFile(PathOf(file));
}

bool FontVault::IsEmpty() const {
    return ShardedFiles(mFolder).empty();
}

int FontVault::Sweep(const std::vector<FontFile>& known, bool keepUnknown) const {
    std::set<std::string> wanted;
    for (const FontFile& file : known)
        wanted.insert(PathOf(file));
    int removed = 0;
    for (const std::string& path : ShardedFiles(mFolder)) {
        const bool isLeftOver = IsTemporaryName(platform::Utf8Path(path)) || !keepUnknown;
        if (wanted.count(path) == 0 && isLeftOver && !platform::RemoveFile(path))
            ++removed;
    }
    return removed;
}

}  // namespace pellwick
