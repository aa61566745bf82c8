// Fonts to begin with: whole ones of several kinds, and those of HostileFonts.h.
#pragma once

#include <string>
#include <vector>

std::vector<std::string> FontSeeds();
