// What the agent does with its vault by itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "agent/CommandContext.h"

namespace pellwick {

/// Has the lane for files look at the next file of the vault that is due.
Json CheckNextFile(CommandContext& context);
/// Takes files of the vault that no record knows into the library, one after the other.
Json TakeBack(CommandContext& context, const std::shared_ptr<std::vector<std::string>>& paths);

}  // namespace pellwick
