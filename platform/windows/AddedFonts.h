// Which files programs of this library have added to the session's table of fonts, which itself cannot be asked.
// Kept in a part of the registry that goes with the session, as the table does, whatever becomes of the programs.
#pragma once

#include <map>
#include <string>

namespace platform {

/// How often each file is in the table, by its path.
std::map<std::string, int> AddedFonts();
void NoteAddedFont(const std::string& path, int change);
void ForgetAddedFont(const std::string& path);

}  // namespace platform
