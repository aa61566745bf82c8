// Whether what a file says may be obeyed.
#pragma once

#include <string>

namespace platform {

/// Why somebody else than this user and the administrators might have put there what stands at `path`, for people: "FOLDER
/// belongs to somebody else", "FILE can be written to by others". Empty where they could not. Linux: the folders above
/// count as well, and links are followed; in a folder like /tmp, where all may make files and nobody takes away another's,
/// what the user or root owns is theirs. Windows: of those above the folder alone that it stands in.
std::string WhyUntrusted(const std::string& path);

}  // namespace platform
