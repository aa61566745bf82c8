// Fonts on the command line: by the names that people type, and as lines of text.
#pragma once

#include <string>
#include <vector>

#include "cli/AgentSession.h"
#include "cli/PellwickWords.h"

namespace pellwick::cli {

/// The records of the fonts that go by these names. A name that no font goes by is reported and makes
/// `isComplete` false.
Json FindFonts(AgentSession& session, const std::vector<std::string>& names, bool& isComplete);

/// The database IDs in the records.
Json IDsOf(const Json& fonts);

/// Has the agent carry out a method for the fonts, a page of them after the other, since a message has room
/// for so many only; what its answers hold under `member`, together.
Json CallForFonts(AgentSession& session, const char* method, const Json& fonts, const char* member);

/// A line per font: what was done, and its name.
void PrintFonts(const Json& fonts, const char* action);

/// Prints the fonts in rows, or, for programs, returns their records. `source`: arguments of the agent's
/// ListFonts.
Json ListFontsBy(AgentSession& session, Json source, const FontFilter& filter = {});

/// The records but for the system's fonts. When there are no others, people are told of each that it is the
/// system's, and `why` that matters.
Json WithoutSystemFonts(const Json& fonts, const char* why);

}  // namespace pellwick::cli
