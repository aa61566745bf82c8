// Which font files every program of this user can see.
#pragma once

#include <set>
#include <string>

/// The files that fontconfig offers to a program that looks now (UTF-8 paths); none where it is not
/// installed.
std::set<std::string> ReadVisibleFonts();
