// Names that users give to what they make.
#pragma once

#include <string>

#include "ipc/Message.h"

namespace pellwick {

/// The member of that name, a name for something new; `what` tells people for what ("the set's name"). Throws
/// CommandError: kMissingParam for one that is blank, kInvalidParam for one that is larger than kMaxNameSize
/// or cannot be shown as what it is.
std::string NewName(const Json& arguments, const char* member, const std::string& what);

}  // namespace pellwick
