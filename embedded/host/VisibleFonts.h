// Which font files every program of this user can see.
#pragma once

#include <set>
#include <string>

/// Has fontconfig look again, and answers with the files that it offers (UTF-8 paths).
std::set<std::string> RefreshVisibleFonts();
