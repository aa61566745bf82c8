#include "activation/LinkFolder.h"

#include <set>
#include <system_error>

#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

bool LinkOrCopy(const fs::path& source, const fs::path& target) {
    std::error_code failure;
    fs::create_hard_link(source, target, failure);
    if (!failure)
        return true;
    // A copy appears under its name when it is complete, so that nobody reads half a font.
    const fs::path temporary = fs::path(target) += ".part";
    fs::copy_file(source, temporary, fs::copy_options::overwrite_existing, failure);
    if (!failure)
        fs::rename(temporary, target, failure);
    if (failure) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
    }
    return !failure;
}

/// Whether the folder itself made a file of that name: two hexadecimal digits of a checksum, then the
/// checksum.
bool IsLinkName(const fs::path& path) {
    constexpr size_t kChecksumLength = 64;
    const std::string name = platform::Utf8Text(path.filename());
    const std::string shard = platform::Utf8Text(path.parent_path().filename());
    return name.size() > kChecksumLength && name[kChecksumLength] == '.' &&
           name.find_first_not_of("0123456789abcdef") == kChecksumLength && shard == name.substr(0, 2);
}

/// Files below the folder, folders left out. What cannot be read is as good as not there.
std::vector<std::string> FilesBelow(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code failure;
    fs::recursive_directory_iterator entry(platform::Utf8Path(folder),
                                           fs::directory_options::skip_permission_denied, failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        if (entry->is_symlink(ignored) || !entry->is_directory(ignored))
            files.push_back(platform::Utf8Text(entry->path()));
    }
    return files;
}

}  // namespace

bool LinkFolder::Has(const FontFile& file) const {
    uint64_t size = 0;
    return !platform::FileSize(PathOf(file), size) && size == file.size;
}

bool LinkFolder::IsInVault(const FontFile& file) const {
    return mVault.Has(file);
}

bool LinkFolder::Link(const FontFile& file) const {
    if (!mVault.Has(file))
        return false;
    if (Has(file))
        return true;
    const fs::path target = platform::Utf8Path(PathOf(file));
    std::error_code failure;
    fs::create_directories(target.parent_path(), failure);
    fs::remove(target, failure);  // one of the wrong size
    return LinkOrCopy(platform::Utf8Path(mVault.PathOf(file)), target);
}

void LinkFolder::Unlink(const FontFile& file) const {
    const fs::path target = platform::Utf8Path(PathOf(file));
    std::error_code failure;
    fs::remove(target, failure);
    fs::remove(target.parent_path(), failure);  // refused, and rightly, while there is more in it
}

LinkFolder::Repairs LinkFolder::Repair(const std::vector<FontFile>& activeFiles) const {
    Repairs repairs;
    std::set<std::string> wanted;
    for (const FontFile& file : activeFiles) {
        wanted.insert(PathOf(file));
        const bool wasThere = Has(file);
        if (!IsInVault(file))
            repairs.missing.push_back(file);
        else if (Link(file) && !wasThere)
            ++repairs.linked;
    }
    std::error_code failure;
    if (fs::is_symlink(platform::Utf8Path(mFolder), failure))
        return repairs;  // what stands where the user pointed is the user's
    for (const std::string& path : FilesBelow(mFolder)) {
        if (wanted.count(path) == 0 && IsLinkName(platform::Utf8Path(path)) &&
            fs::remove(platform::Utf8Path(path), failure))
            ++repairs.removed;
    }
    return repairs;
}

}  // namespace pellwick
