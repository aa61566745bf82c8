// What a process may do: an administrator's rights, and how far the system trusts it.
#pragma once

#include <windows.h>

#include "OwnedHandle.h"

namespace platform {

/// Gives the token another level, WinMediumLabelSid or WinLowLabelSid; none is higher than before.
bool SetIntegrity(HANDLE token, WELL_KNOWN_SID_TYPE level);

/// Whether this process has rights of an administrator that its user confirmed, and could have been without.
bool IsElevated();

/// For a process that has the rights of an administrator because its user confirmed them: a token to start
/// programs with that have none. Null for all others, and where it cannot be made.
OwnedHandle MakeUnelevatedToken();

}  // namespace platform
