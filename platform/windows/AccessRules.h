// Who may change what an access list guards.
#pragma once

#include <windows.h>

#include <string_view>

#include "UserIdentity.h"

namespace platform {

enum class Guarded {
    kFile,
    kFolder,        ///< others may make files in it, as below C:\ProgramData
    kProgramFolder  ///< they may not: a program loads libraries from there
};

/// What is wrong where others than the system, administrators and `user` own the object or may put something else in its
/// place: the end of a sentence about it, such as "belongs to somebody else". Empty: nothing. `user` may be empty.
std::string_view FaultOf(PSECURITY_DESCRIPTOR descriptor, Guarded kind, UserId user);

}  // namespace platform
