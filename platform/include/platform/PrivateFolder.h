// A folder for what is nobody else's business.
#pragma once

#include <string>

#include "platform/SystemError.h"

namespace platform {

/// Makes the folder, and those above it, so that this user alone gets at its content. An error when it is
/// there already but belongs to someone else or is a link; one of this user's that is open to others is
/// closed to them.
SystemError MakePrivateFolder(const std::string& path);

}  // namespace platform
