// The folder in which active fonts stand, where every program of the user finds them.
//
// A font file is made active by a hard link to the vault's file; where the two folders are on different file
// systems, by a copy. Symbolic links would not do: programs in a sandbox cannot follow them out of the
// folder.
#pragma once

#include <string>
#include <vector>

#include "activation/ActiveFonts.h"

namespace pellwick {

class LinkFolder : public ActiveFonts {
public:
    LinkFolder(std::string folder, const FontVault& vault) : ActiveFonts(vault), mFolder(std::move(folder)) {}

    const std::string& Folder() const override { return mFolder; }
    std::string PathOf(const FontFile& file) const override { return ShardedPath(mFolder, file); }
    bool Has(const FontFile& file) const override;
    bool Add(const FontFile& file) override;
    /// Removes the shard as well when it was the last one in it.
    void Remove(const FontFile& file) override;
    /// Does nothing: programs watch the folder.
    void AnnounceChanges() override {}
    Repairs Repair(const std::vector<FontFile>& activeFiles) override;

private:
    bool TryToAdd(const FontFile& file, std::string& problem);

    std::string mFolder;
};

}  // namespace pellwick
