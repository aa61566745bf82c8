#include "activation/FontResources.h"

#include "platform/FontTable.h"

namespace pellwick {
namespace {

// The agents before this one that died with a file in the table, each of which added it once.
constexpr int kMostAdds = 64;

platform::FontTable& Table() {
    return platform::Current<platform::FontTable>();
}

/// Takes the file out of the table, however often it is in it; how often that was.
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

/// Nobody can be asked what is in the table, and how often. So all that may be in it is taken out first.
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
