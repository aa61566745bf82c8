// The folder in which active fonts stand, where every program of the user finds them.
//
// A font file is made active by a hard link to the vault's file; where the two folders are on different file
// systems, by a copy. Symbolic links would not do: programs in a sandbox cannot follow them out of the
// folder.
#pragma once

#include <string>
#include <vector>

#include "activation/FontVault.h"
#include "store/FontStore.h"

namespace pellwick {

class LinkFolder {
public:
    LinkFolder(std::string folder, const FontVault& vault) : mFolder(std::move(folder)), mVault(vault) {}

    std::string PathOf(const FontFile& file) const { return ShardedPath(mFolder, file); }
    bool Has(const FontFile& file) const;
    /// Whether the vault has what a link would point at.
    bool IsInVault(const FontFile& file) const;
    /// Makes the file active; true at once when it is. False when that cannot be done, for one because the
    /// vault has lost the file.
    bool Link(const FontFile& file) const;
    /// Ends that, and removes the shard when it was the last one in it.
    void Unlink(const FontFile& file) const;

    struct Repairs {
        int linked = 0;
        int removed = 0;
        std::vector<FontFile> missing;  ///< should be active but cannot be
    };
    /// Makes the folder hold exactly these files.
    Repairs Repair(const std::vector<FontFile>& activeFiles) const;

private:
    std::string mFolder;
    const FontVault& mVault;
};

}  // namespace pellwick
