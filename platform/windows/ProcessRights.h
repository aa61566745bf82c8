// What a process may do: an administrator's rights, and how far the system trusts it.
#pragma once

#include <windows.h>

#include <optional>

#include "OwnedHandle.h"

namespace platform {

/// How far the system trusts a process.
struct TrustLevel {
    DWORD integrity = SECURITY_MANDATORY_UNTRUSTED_RID;
    bool isContainer = false;  ///< confined to what a package of an application may do
};
/// Nothing where it cannot be told. A process without the rights of an administrator cannot tell of one that has them.
std::optional<TrustLevel> TrustLevelOfProcess(HANDLE process);
/// The integrity that an object of the kernel's, such as a pipe, is labelled with; medium where it has no label, as the
/// system has it. Nothing where it cannot be told.
std::optional<DWORD> IntegrityOfObject(HANDLE object);
/// Whether the other, of the same user, may be taken for a program of his by a process of the level `own`: what he
/// confined, a browser's page, say, must not choose what his programs load.
bool MayPassForUsers(const TrustLevel& other, DWORD own);
/// The same for this process.
bool MayPassForUsers(const TrustLevel& other);

/// Gives the token another level, WinMediumLabelSid or WinLowLabelSid; none is higher than before.
bool SetIntegrity(HANDLE token, WELL_KNOWN_SID_TYPE level);

/// Whether this process has rights of an administrator that its user confirmed, and could have been without.
bool IsElevated();

/// For a process that has the rights of an administrator because its user confirmed them: a token to start
/// programs with that have none. Null for all others, and where it cannot be made.
OwnedHandle MakeUnelevatedToken();

}  // namespace platform
