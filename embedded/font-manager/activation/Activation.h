// Makes fonts active and inactive: the records and what programs see, together.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "activation/ActiveFonts.h"
#include "store/ActivationStore.h"
#include "store/Database.h"
#include "store/FontStore.h"

namespace pellwick {

/// Fonts whose state changed.
struct ActivationChanges {
    std::vector<uint32_t> activated;
    std::vector<uint32_t> deactivated;
    std::vector<uint32_t> missing;  ///< their file turned out to be gone
};

/// One command's worth of activations: all of them, or none. Files are made active before the records are
/// committed and inactive after, so that a font counts as active only while it can be used; what a death in
/// between leaves behind, the repair at the next start takes away. Throws DatabaseError.
class Activation {
public:
    Activation(Database& database, FontStore& fonts, ActivationStore& activations, ActiveFonts& active,
               Durability durability = Durability::kProcess);
    ~Activation();
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;

    // The system's own fonts are always active: nothing is done for them.

    /// Leases the font to a host. False when the font's file is gone, which is noted.
    bool Lease(const Font& font, const LeaseTerms& terms);
    /// The user's own activation. False as above.
    bool ActivateForUser(const Font& font);

    /// Ends the host's leases on the font for that purpose.
    void EndLeases(uint32_t fontID, const HostProcess& host, LeasePurpose purpose);
    /// Ends those for every purpose.
    void EndAllLeases(uint32_t fontID, const HostProcess& host);
    /// Ends the leases that the host's requests from `first` to `last` took.
    void UndoRequests(const HostProcess& host, long long first, long long last);
    /// Ends the user's own activation.
    void DeactivateForUser(uint32_t fontID);
    /// Removes the font's file with all its fonts.
    void RemoveFile(const FontFile& file);

    /// Notes that the vault has lost the file.
    void NoteMissing(const FontFile& file);

    /// What has come of it so far.
    const ActivationChanges& Changes() const { return mChanges; }
    ActivationChanges Commit();

private:
    bool MakeActive(const Font& font);
    void Released(uint32_t fontID);

    FontStore& mFonts;
    ActivationStore& mActivations;
    ActiveFonts& mActive;
    std::vector<FontFile> mAdded;     ///< by this command
    std::vector<FontFile> mReleased;  ///< perhaps no longer needed
    ActivationChanges mChanges;
    bool mIsCommitted = false;
    Transaction mTransaction;
};

/// Ends the leases of hosts that have ended. `isAlive` tells whether a process still is.
template <class IsAlive>
ActivationChanges EndLeasesOfDeadHosts(ActivationStore& activations, Activation& activation,
                                       IsAlive isAlive) {
    for (const HostProcess& host : activations.Hosts()) {
        if (isAlive(host))
            continue;
        for (const uint32_t fontID : activations.FontsLeasedBy(host))
            activation.EndAllLeases(fontID, host);
    }
    return activation.Commit();
}

}  // namespace pellwick
