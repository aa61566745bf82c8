// Names from font files, fit to keep and to show.
#pragma once

#include <string>

namespace pellwick {

/// Well-formed UTF-8 without unprintable characters or blanks at the ends, cut at kMaxNameSize.
std::string CleanName(const std::string& name);

}  // namespace pellwick
