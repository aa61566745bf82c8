// Families whose glyphs are as wide as those of another one, so that text set in one keeps its lines in the other.
#pragma once

#include <span>
#include <string_view>

namespace pellwick {

/// The families of the same measures, this one among them; empty for one that has none. Names as FontNameParts has
/// them: lower case, without blanks. After fontconfig's list of aliases:
/// https://gitlab.freedesktop.org/fontconfig/fontconfig/-/blob/main/conf.d/30-metric-aliases.conf
std::span<const std::string_view> FamiliesOfSameMeasures(std::string_view family);

}  // namespace pellwick
