// References to files.
#pragma once

#include <string>
#include <string_view>

namespace documents {

/// The path that a reference stands for (RFC 3986, RFC 8089): of a "file" URI or a relative one. Empty where it names
/// something else than a file of this machine, as "data:" and "http:" do.
std::string PathOfUri(std::string_view uri);

}  // namespace documents
