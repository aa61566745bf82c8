// What writes files on Windows.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "OwnedHandle.h"
#include "platform/Files.h"
#include "platform/SystemError.h"

namespace platform {

/// A file that is removed while it is open stays in its folder, which then cannot be removed either.
constexpr DWORD kShareWriters = FILE_SHARE_READ | FILE_SHARE_WRITE;

constexpr DWORD kShareAll = kShareWriters | FILE_SHARE_DELETE;

/// What stands at a path may be somebody else's pipe, which must not act in this user's name.
/// None can at a drive's path, and the same flag means there that a file which a service keeps elsewhere, as OneDrive
/// does, is not to be fetched.
DWORD NoImpersonation(std::wstring_view name);

SystemError ErrorUnless(BOOL succeeded);
SystemError IdentityOf(const OwnedHandle& file, FileIdentity& identity);

/// Makes a file for writing under a name that is nobody else's, between `beginning` and `end`; its path.
SystemError MakeFileOfNewName(const std::string& beginning, size_t digits, const std::string& end,
                              SECURITY_ATTRIBUTES* attributes, OwnedHandle& file, std::string& path);

SystemError WriteAll(const OwnedHandle& file, std::string_view content);

/// With the flags of MoveFileEx. Tries again for half a second where a virus scanner holds either file.
SystemError Rename(const std::string& from, const std::string& to, DWORD flags);

}  // namespace platform
