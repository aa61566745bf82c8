#include "activation/FontResources.h"

#include "platform/FontTable.h"

namespace pellwick {
namespace {

// How many earlier agents may have died and left a file in the table, each adding it once.
constexpr int kMostAdds = 64;

platform::FontTable& Table() {
    return platform::Current<platform::FontTable>();
}

/// Removes the file from the table as often as it is there, and returns how often that was.
int TakeOut(const std::string& path) {
    int count = 0;
    while (count < kMostAdds && Table().Remove(path))
        ++count;
    return count;
}

}  // namespace

bool FontResources::Add(const FontFile& file) {
    if (!IsInVault(file))
        return false;
    if (Has(file))
        return true;
    if (!Table().Add(PathOf(file)))
        return false;
    mAdded.insert(PathOf(file));
    mHasChanged = true;
    return true;
}

void FontResources::Remove(const FontFile& file) {
    if (mAdded.erase(PathOf(file)) == 0)
        return;
    Table().Remove(PathOf(file));
    mHasChanged = true;
}

void FontResources::AnnounceChanges() {
    if (mHasChanged)
        Table().AnnounceChange();
    mHasChanged = false;
}

/// The table cannot be listed. So everything that may be in it is removed first.
ActiveFonts::Repairs FontResources::Repair(const std::vector<FontFile>& activeFiles) {
    Repairs repairs;
    std::set<std::string> left;
    for (const std::string& path : ShardedFiles(Vault().Folder())) {
        if (TakeOut(path) != 0)
            left.insert(path);
    }
    mAdded.clear();
    for (const FontFile& file : activeFiles) {
        const bool wasThere = left.erase(PathOf(file)) != 0;
        if (!IsInVault(file))
            repairs.missing.push_back(file);
        else if (Add(file) && !wasThere)
            ++repairs.added;
    }
    repairs.removed = static_cast<int>(left.size());
    mHasChanged = mHasChanged || repairs.removed != 0;
    AnnounceChanges();
    return repairs;
}

}  // namespace pellwick
