// The page that tells people which fonts were collected.
#pragma once

#include <string>

#include "ipc/Message.h"

namespace pellwick {

/// The content of a Manifest as HTML that looks and loads nothing up: every text is escaped, and addresses
/// are texts.
std::string ManifestPage(const Json& content);

}  // namespace pellwick
