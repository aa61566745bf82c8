#include "activation/FontResources.h"

#include "platform/Files.h"
#include "platform/FontTable.h"

namespace pellwick {
namespace {

platform::FontTable& Table() {
    return platform::Current<platform::FontTable>();
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

/// What is to be active and is in the table stays there: programs show documents with it.
ActiveFonts::Repairs FontResources::Repair(const std::vector<FontFile>& activeFiles) {
    Repairs repairs;
    std::set<std::string> wanted;
    for (const FontFile& file : activeFiles) {
        if (IsInVault(file))
            wanted.insert(PathOf(file));
        else
            repairs.missing.push_back(file);
    }
    repairs.removed = Clear(wanted);
    for (const FontFile& file : activeFiles) {
        if (wanted.contains(PathOf(file)) && !Has(file) && Add(file))
            ++repairs.added;
    }
    mHasChanged = mHasChanged || repairs.removed != 0;
    AnnounceChanges();
    return repairs;
}

int FontResources::Clear(const std::set<std::string>& wanted) {
    int removed = 0;
    mAdded.clear();
    for (const auto& [path, count] : Table().Added()) {
        if (!path.starts_with(Vault().Folder() + platform::kPathSeparator))
            continue;
        const bool stays = wanted.contains(path);
        for (int index = stays ? 1 : 0; index < count; ++index)
            Table().Remove(path);
        if (stays)
            mAdded.insert(path);
        removed += stays ? 0 : 1;
    }
    return removed;
}

}  // namespace pellwick
