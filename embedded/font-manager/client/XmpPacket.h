// Metadata that programs embed in documents: XMP packets (ISO 16684-1, annex on the packet wrapper).
#pragma once

#include <string>

#include "ErrorCodes.h"

namespace pellwick {

/// The first XMP packet of the file at `path` (UTF-8), from its first marker to the end of its last, in
/// UTF-8. Of files larger than kMaxXmpSearch only as much is read, half of it from the end. kNotFound when
/// there is none, or none in UTF-8 that is whole and within kMaxXmpPacket; GFileSystem::kFileNotFound when
/// the file cannot be read. `packet` is untouched then.
[[nodiscard]] ErrorCode ReadXmpPacket(const std::string& path, std::string& packet);

}  // namespace pellwick
