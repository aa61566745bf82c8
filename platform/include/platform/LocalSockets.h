// What a program needs to talk to another one of the same user through a local stream socket, and only to
// that one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/Processes.h"
#include "platform/SystemError.h"

namespace platform {

/// The longest socket address in bytes that the system takes.
extern const size_t kLocalSocketPathLimit;

/// A socket as the system knows it: a descriptor, or a SOCKET.
using NativeSocket = intptr_t;

struct PeerIdentity {
    ProcessId process = 0;    ///< the process that opened the other end; 0 when it cannot be seen from here
    bool isSameUser = false;  ///< whether it belongs to the user of this process
};

/// Who opened the other end of a connected local socket.
SystemError IdentifyPeer(NativeSocket socket, PeerIdentity& peer);

/// Makes the folder, and those above it, so that this user alone gets at its content. An error when it is
/// there already but belongs to someone else or is a symbolic link; one of this user's that is open to others
/// is closed to them.
SystemError MakePrivateFolder(const std::string& path);

/// Takes every right to the file at `path` away from other users.
SystemError MakeFilePrivate(const std::string& path);

}  // namespace platform
