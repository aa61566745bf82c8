// The texts of licences that fonts are delivered with.
#pragma once

#include <string>
#include <vector>

namespace pellwick {

/// Texts beside the font's file that are called as licences are: OFL.txt, LICENSE…, COPYING…, FONT.license.
/// Their full paths, by name; a few of moderate size. Links are left out, since they may lead to what is
/// nobody else's business. None where the folder cannot be read.
std::vector<std::string> LicenceFilesBeside(const std::string& fontPath);

}  // namespace pellwick
