// The user's workgroups, as menus and dialogs show them.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FontRecordKeys.h"

struct Workgroup {
    int32_t id = 0;
    int32_t type = -1;  ///< see WorkgroupType
    std::string name;   ///< as shown to the user
};

/// Which of the workgroups that are not the user's own are wanted as well.
struct WorkgroupFilter {
    bool includeAllWorkgroup = false;  ///< the entry for all workgroups together
    bool includeSystemWorkgroup = false;
    bool includeTypekitLibrary = false;
};

/// The name to show for a workgroup: a word of the user's language for the types and names that stand for
/// one, else the font manager's own name.
std::string WorkgroupDisplayName(int32_t type, const std::string& agentName);

Workgroup WorkgroupFromRecord(CFDictionaryRef record);
/// Workgroup records with the names to show.
CFRef<CFArrayRef> WorkgroupRecords(const std::vector<Workgroup>& workgroups);
