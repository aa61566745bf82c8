// What a host is told of the fonts that its document asks for.
#pragma once

#include "agent/CommandContext.h"

namespace pellwick {

/// The requested record completed by the font's own: what the host said stands, but for the state. `before`: the font's
/// record with the state that it had for this host.
Json ReportedFont(const Json& requested, const Json& before, FontManager& manager, const Font& font);

/// What `answer` makes of the arguments, once the system's fonts are recorded or after a moment.
Json AnswerWhenFontsAreKnown(CommandContext& context, const Json& arguments,
                             Json (*answer)(CommandContext& context, const Json& arguments));

/// What could replace the requests that were not matched, in their order and for the first of them: objects of font
/// records by PostScript name. `arguments`: of ActivateDocumentFonts or MatchFonts; `unmatched`: positions in its fonts.
Json ReplacementsFor(CommandContext& context, const Json& arguments, const Json& unmatched);

}  // namespace pellwick
