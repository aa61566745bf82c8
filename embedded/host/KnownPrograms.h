// Programs whose ways matter when they are started with fonts.
#pragma once

#include <string>
#include <vector>

/// The host application to pass for when going on as the program; `otherwise` for one that is not a host on this system, and for
/// none at all.
std::string HostOfProgram(const std::vector<std::string>& program, const std::string& otherwise);

/// Some programs hand their documents over to a process of theirs that runs already, and end, and the fonts would go with
/// them. Adds the option that keeps the program from it; where it has none and such a process runs, says so.
void KeepFromHandingOver(std::vector<std::string>& program);
