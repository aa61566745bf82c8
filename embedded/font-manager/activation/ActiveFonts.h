// The fonts that every program of the user is offered.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "activation/FontVault.h"
#include "store/FontStore.h"

namespace pellwick {

/// Thrown where the system refuses to make an existing font active; the message is for people.
class ActivationRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How a font file in the vault is made active. Each system has its own way. One thread.
class ActiveFonts {
public:
    explicit ActiveFonts(const FontVault& vault) : mVault(vault) {}
    virtual ~ActiveFonts() = default;
    ActiveFonts(const ActiveFonts&) = delete;
    ActiveFonts& operator=(const ActiveFonts&) = delete;

    /// The folder in which active files stand.
    virtual const std::string& Folder() const = 0;
    /// Where programs find the file when it is active.
    virtual std::string PathOf(const FontFile& file) const = 0;
    /// Whether the file is active.
    virtual bool Has(const FontFile& file) const = 0;
    /// Makes the file active; true at once when it is already. False when that cannot be done, for example
    /// because the vault has lost the file. Throws ActivationRefused where the disk is full or faulty.
    virtual bool Add(const FontFile& file) = 0;
    /// Ends that. To be called before the vault's file is removed.
    virtual void Remove(const FontFile& file) = 0;
    /// Lets running programs know of what was added and removed since the last time, if anything.
    virtual void AnnounceChanges() = 0;

    struct Repairs {
        int added = 0;
        int removed = 0;
        std::vector<FontFile> missing;  ///< should be active but the vault has lost them
        std::string problem;            ///< why others are not; empty when there are none
    };
    /// Makes exactly these files active, whatever an earlier agent left.
    virtual Repairs Repair(const std::vector<FontFile>& activeFiles) = 0;

    /// Whether the vault has what is to be active.
    bool IsInVault(const FontFile& file) const { return mVault.Has(file); }

protected:
    const FontVault& Vault() const { return mVault; }

private:
    const FontVault& mVault;
};

/// The way of this system. `linkFolder`: the user's folder for active fonts, where the system has such.
std::unique_ptr<ActiveFonts> MakeActiveFonts(const std::string& linkFolder, const FontVault& vault);

}  // namespace pellwick
