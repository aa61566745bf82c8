// Programs that start when the user logs on.
#pragma once

#include <string>

#include "platform/SystemError.h"

namespace platform {

/// Has the system start the program with these words whenever this user logs on, in place of what it started under
/// that name before. `program`: full path; `arguments`: words without quotes. Linux: a desktop entry in the user's
/// folder "autostart". Windows: the user's list of such programs in the registry.
SystemError SetAutostart(const std::string& name, const std::string& program, const std::string& arguments);
/// Ends that; where there is nothing to end, done.
SystemError ClearAutostart(const std::string& name);
/// Whether something is started under that name. Windows: not what the user has switched off in the Task Manager;
/// SetAutostart switches it on again.
bool HasAutostart(const std::string& name);

}  // namespace platform
