// Looking up what requests name.
#pragma once

#include <string>
#include <vector>

#include "agent/CommandContext.h"

namespace pellwick {

/// A number as an ID; 0, which nothing has, when it is out of range.
int32_t IDOf(long long number);

/// The ID after which the page begins that a request asks for.
uint32_t PageStart(const Json& arguments);

/// The font that a request names. Throws CommandError when there is none.
Font FindFont(CommandContext& context, const Json& arguments);

/// The fonts that a request names, as far as they are known.
std::vector<Font> KnownFonts(CommandContext& context, const Json& arguments);

/// The other fonts of the font's family, without further versions of the font itself.
std::vector<Font> RestOfFamily(FontStore& fonts, const Font& font);

/// The workgroup of that name. Throws CommandError when there is none.
Workgroup FindWorkgroup(CommandContext& context, const std::string& name);

}  // namespace pellwick
