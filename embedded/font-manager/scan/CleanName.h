// Names from font files, fit to keep and to show.
#pragma once

#include <cstddef>
#include <string>

namespace pellwick {

/// Well-formed UTF-8 without unprintable characters or blanks at the ends, cut at kMaxNameSize.
std::string CleanName(const std::string& name);

/// The same of a text with lines, each but the first behind a blank, cut at `limit` bytes.
std::string CleanText(std::string text, size_t limit);

}  // namespace pellwick
