// Base64 in lines, as mail carries it (RFC 2045, 6.8).
#pragma once

#include <string>
#include <string_view>

/// Lines of 76 characters, a line feed after each of them, the last one too. Empty for no bytes.
std::string Base64Lines(std::string_view bytes);
