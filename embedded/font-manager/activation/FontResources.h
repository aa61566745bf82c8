// Active fonts as resources of the session: the vault's own files, in the system's table of fonts.
#pragma once

#include <set>

#include "activation/ActiveFonts.h"

namespace pellwick {

/// What it adds stays in the table when the agent ends, until the session does.
class FontResources : public ActiveFonts {
public:
    explicit FontResources(const FontVault& vault) : ActiveFonts(vault) {}

    const std::string& Folder() const override { return Vault().Folder(); }
    std::string PathOf(const FontFile& file) const override { return Vault().PathOf(file); }
    bool Has(const FontFile& file) const override { return mAdded.count(PathOf(file)) != 0; }
    bool Add(const FontFile& file) override;
    void Remove(const FontFile& file) override;
    void AnnounceChanges() override;
    Repairs Repair(const std::vector<FontFile>& activeFiles) override;

private:
    /// Leaves each of these in the table once, if it is there, and no other file of the vault. How many it took out.
    int Clear(const std::set<std::string>& wanted);

    std::set<std::string> mAdded;  ///< paths, each once in the table
    bool mHasChanged = false;
};

}  // namespace pellwick
