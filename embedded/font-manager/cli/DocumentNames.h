// The fonts that a document asks for.
#pragma once

#include <string>

#include "ipc/Message.h"

namespace pellwick::cli {

/// As records for the agent: by a reader of the document's format, or else by the search for those of every kind.
/// Throws Failure when the document cannot be read.
Json FontsOfDocument(const std::string& path);

}  // namespace pellwick::cli
