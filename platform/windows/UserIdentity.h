// Who is behind a process, the other end of a pipe, or an object.
#pragma once

#include <windows.h>

#include <vector>

namespace platform {

/// A security identifier in its binary form; empty when it cannot be told.
using UserId = std::vector<unsigned char>;

/// As whom this process runs.
const UserId& ThisUser();
/// As whom that process runs. A process without the rights of an administrator cannot tell of one that has them.
UserId UserOfProcess(HANDLE process);
/// As whom the client of that server's end of a pipe connected, whatever its rights. The client has to allow
/// SECURITY_IDENTIFICATION.
UserId UserOfPipeClient(HANDLE pipe);
/// To whom an object of the kernel's, such as a pipe, belongs; of a pipe, either end tells.
UserId OwnerOfObject(HANDLE object);

/// Of two that can be told.
bool IsThisUser(const UserId& user);

}  // namespace platform
