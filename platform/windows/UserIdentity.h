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

/// Attributes of a new object that others do not get at.
class PrivateToUser {
public:
    enum class Kind {
        kFile,    ///< for this user, the system and administrators
        kFolder,  ///< the same, also for what is made in it later
        kPipe,    ///< for this user alone
    };
    explicit PrivateToUser(Kind kind = Kind::kFile);
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
