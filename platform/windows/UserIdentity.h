// Who the user of a process is, and what is closed to everybody else.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace platform {

/// The security identifier of the user as whom the process runs, in its binary form; empty when that cannot
/// be told.
std::vector<unsigned char> UserOfProcess(HANDLE process);

/// Whether that process runs as the same user as this one.
bool IsOfThisUser(HANDLE process);

/// Attributes of a new object that this user, the system and administrators alone get at.
class PrivateToUser {
public:
    /// `isFolder`: what is made in it later is private as well.
    explicit PrivateToUser(bool isFolder = false);
    ~PrivateToUser();
    PrivateToUser(const PrivateToUser&) = delete;
    PrivateToUser& operator=(const PrivateToUser&) = delete;

    /// Null, which stands for the rights of any new object, when the user cannot be told.
    SECURITY_ATTRIBUTES* Attributes() {
        return mAttributes.lpSecurityDescriptor != nullptr ? &mAttributes : nullptr;
    }

private:
    SECURITY_ATTRIBUTES mAttributes{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

}  // namespace platform
