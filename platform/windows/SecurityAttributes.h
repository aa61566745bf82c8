// What is closed to everybody else.
#pragma once

#include <windows.h>

namespace platform {

/// Attributes of a new object that belongs to this user, and that others do not get at.
class PrivateToUser {
public:
    enum class Kind {
        kFile,    ///< for this user, the system and administrators
        kFolder,  ///< the same, also for what is made in it later
        kFont,    ///< the same as a file; the system's font cache and confined programs may read
        kPipe,    ///< for this user alone, with an administrator's rights or without
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
