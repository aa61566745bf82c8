// A folder for what is nobody else's business.
#pragma once

#include <string>

#include "platform/SystemError.h"

namespace platform {

/// Makes the folder, and those above it, so that this user alone gets at its content. An error when it is
/// there already but belongs to someone else or is a link; one of this user's that is open to others is
/// closed to them.
SystemError MakePrivateFolder(const std::string& path);

/// Closes the folder, and those in it at any depth, to others wherever they are this user's and others may
/// write to them; how many that were. Follows no links. Windows: the folder alone, with all that is in it, as
/// MakePrivateFolder closes one.
int CloseFoldersToOthers(const std::string& path);

/// Whom this process would lock out of what it makes at `path`: the owner of the nearest folder that is there, which goes
/// to `folder`, when the process is the superuser's and the folder is not. The user's name, or number where that has no name; empty where all
/// is well. Windows: always empty.
std::string LockedOutOwner(const std::string& path, std::string& folder);

/// From now on what this process makes, and what it starts, is for this user alone unless it says otherwise.
/// For a program's own main function: in a library it would change its host. Windows: does nothing; what is
/// made in a private folder is private.
void KeepNewFilesPrivate();

}  // namespace platform
