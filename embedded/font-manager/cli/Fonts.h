// Fonts on the command line: by the names that people type, and as lines of text.
#pragma once

#include <string>
#include <vector>

#include "cli/Session.h"

namespace pellwick::cli {

/// The records of the fonts that go by these names. A name that no font goes by is reported and makes
/// `isComplete` false.
Json FindFonts(Session& session, const std::vector<std::string>& names, bool& isComplete);

/// A line per font: what was done, and its name.
void PrintFonts(const Json& fonts, const char* action);

/// Prints the fonts in rows, or, for programs, returns their records. `filter`: arguments of the agent's
/// ListFonts; where it asks what programs are offered, those fonts alone.
Json ListFontsBy(Session& session, Json filter);

}  // namespace pellwick::cli
