// How the words of a command line are written for Windows, which hands programs one text.
#pragma once

#include <string>
#include <vector>

namespace platform {

/// The words, UTF-8, as one text that programs take apart into the same words ("Parsing C command-line arguments" of
/// Microsoft's C runtime; CommandLineToArgvW): backslashes are themselves unless a quotation mark follows.
std::wstring CommandLineText(const std::vector<std::string>& words);

}  // namespace platform
