#include "activation/LinkFolder.h"

#include <set>
#include <system_error>

#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

std::error_code LinkOrCopy(const fs::path& source, const fs::path& target) {
    std::error_code failure;
    fs::create_hard_link(source, target, failure);
    if (!failure)
        return {};
    // A copy appears under its name when it is complete, so that nobody reads half a font. Its temporary name is one that
    // Repair looks at, as those of platform::CopyToNewFile are not.
    const fs::path temporary = fs::path(target) += ".part";
    fs::copy_file(source, temporary, fs::copy_options::overwrite_existing, failure);
    if (!failure)
        fs::rename(temporary, target, failure);
    if (failure) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
    }
    return failure;
}

}  // namespace

bool LinkFolder::Has(const FontFile& file) const {
    uint64_t size = 0;
    return !platform::FileSize(PathOf(file), size) && size == file.size;
}

bool LinkFolder::Add(const FontFile& file) {
    if (!IsInVault(file))
        return false;
    if (Has(file))
        return true;
    const fs::path target = platform::Utf8Path(PathOf(file));
    platform::SystemError error = platform::MakeFolders(platform::Utf8Text(target.parent_path()), true);
    platform::RemoveFile(PathOf(file));  // one of the wrong size
    if (!error)
        error.code = LinkOrCopy(platform::Utf8Path(Vault().PathOf(file)), target).value();
    if (!error)
        return true;
    Remove(file);  // the shard, if it is empty
    throw ActivationRefused(platform::WriteFailureText(PathOf(file), error));
}

void LinkFolder::Remove(const FontFile& file) {
    platform::RemoveFile(PathOf(file));
    std::error_code failure;
    fs::remove(platform::Utf8Path(PathOf(file)).parent_path(),
               failure);  // refused, and rightly, while there is more in it
}

bool LinkFolder::TryToAdd(const FontFile& file, std::string& problem) {
    try {
        return Add(file);
    } catch (const ActivationRefused& refusal) {
        problem = refusal.what();
        return false;
    }
}

ActiveFonts::Repairs LinkFolder::Repair(const std::vector<FontFile>& activeFiles) {
    Repairs repairs;
    std::set<std::string> wanted;
    for (const FontFile& file : activeFiles) {
        wanted.insert(PathOf(file));
        const bool wasThere = Has(file);
        if (!IsInVault(file))
            repairs.missing.push_back(file);
        else if (TryToAdd(file, repairs.problem) && !wasThere)
            ++repairs.added;
    }
    for (const std::string& path : ShardedFiles(mFolder)) {
        if (wanted.count(path) == 0 && !platform::RemoveFile(path))
            ++repairs.removed;
    }
    return repairs;
}

}  // namespace pellwick
