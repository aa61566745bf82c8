// The system's own fonts, as the agent keeps track of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "agent/CommandContext.h"

namespace pellwick {

/// Reads what has changed among the fonts that the system offers to every program, and notes it: those are in
/// the workgroup "System Fonts". Fonts that the agent itself has made active are left out. One at a time: see
/// FontManager::systemFontReading. `onFolders` is told where they come from.
Json ReadSystemFonts(CommandContext& context,
                     const std::function<void(const std::vector<std::string>& folders)>& onFolders);

/// Whether there are fonts of the system that are not recorded yet, or may be since none is.
bool AreSystemFontsIncomplete(const FontManager& manager);

}  // namespace pellwick
