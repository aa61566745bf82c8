// Everything that the agent keeps and works with.
#pragma once

#include <set>

#include "activation/Activation.h"
#include "activation/ActiveFonts.h"
#include "activation/FontVault.h"
#include "activation/ReplacementFinder.h"
#include "common/Locations.h"
#include "preview/PreviewFolder.h"
#include "store/ActivationStore.h"
#include "store/Database.h"
#include "store/DocumentStore.h"
#include "store/FontStore.h"
#include "store/SetStore.h"
#include "store/SettingsStore.h"
#include "store/SmartListStore.h"
#include "store/WorkgroupStore.h"

namespace pellwick {

struct SystemFontReading;

/// One thread.
class FontManager {
public:
    /// Opens the database, or makes a new one. Throws DatabaseError.
    explicit FontManager(const Locations& locations);

    /// Hosts' activations end with their processes; the user's are to be kept.
    Activation BeginActivation(Durability durability = Durability::kProcess) {
        return {database, fonts, activations, *activeFonts, durability};
    }
    /// Looks at what the vault holds: removes what interrupted commands left there, and notes which files are
    /// gone or there again. Files without a record stay, to be taken back later.
    FontVault::Survey LookAroundVault();
    /// Makes the fonts that programs see match the records.
    ActiveFonts::Repairs RepairActiveFonts();
    /// Whether that failed the last time, so that it is to be tried again.
    bool NeedsRepair() const { return mNeedsRepair; }
    /// Has what the user did in other sessions hold here; false where that was nothing.
    bool FollowOtherSessions();
    /// Ends the leases of processes that are gone, and forgets what they were answered.
    ActivationChanges EndLeasesOfDeadProcesses();
    /// Ends all leases if the system was restarted since the last call: by now other processes may have
    /// these identifiers. To be called before any host is served.
    ActivationChanges EndLeasesOfEarlierEra();
    /// Ends the leases that the host's requests from `first` to `last` took.
    ActivationChanges UndoRequests(const HostProcess& host, long long first, long long last);
    /// Where programs find the font when it is active, else where it is kept.
    std::string PathOf(const Font& font) const;
    /// The workgroup that new fonts go to.
    Workgroup CurrentWorkgroup();
    /// The user's first workgroup, which is always there.
    Workgroup DefaultWorkgroup();

    /// Host processes that hold fonts.
    int64_t CountHosts();
    /// Ends what is kept for as long as the agent runs.
    void LetGoOfKeptFonts();

    const Locations locations;
    const HostProcess self;  ///< the agent, which keeps fonts that hosts leave active
    Database database;
    FontStore fonts;
    ReplacementFinder replacements;
    ActivationStore activations;
    WorkgroupStore workgroups;
    SetStore sets;
    SmartListStore smartLists;
    DocumentStore documents;
    SettingsStore settings;
    FontVault vault;
    const std::unique_ptr<ActiveFonts> activeFonts;
    PreviewFolder previews;
    std::set<uint32_t> undrawable;                       ///< fonts of which no image could be made
    std::weak_ptr<SystemFontReading> systemFontReading;  ///< the one under way, if any

private:
    ActivationChanges EndLeasesUnless(bool (*mayBeAlive)(const HostProcess& host), Activation& activation);

    bool mNeedsRepair = false;
    std::string mShared;  ///< see FontStore::SharedState
};

}  // namespace pellwick
