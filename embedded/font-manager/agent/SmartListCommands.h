// What other commands need of smart lists.
#pragma once

#include "agent/CommandContext.h"

namespace pellwick {

/// Where the fonts of a smart list come from, by the query that the client tries, else by the list's own.
/// Throws CommandError when there is no such list.
FontSources SourcesOfSmartList(CommandContext& context, long long listID);

}  // namespace pellwick
