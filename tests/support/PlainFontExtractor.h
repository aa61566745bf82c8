// The font names of a document, found the plain and slow way: the yardstick for the fast search.
#pragma once

#include <cstddef>
#include <set>
#include <string>

/// The names in a document with that extension (without the dot) and that content, searched in chunks of
/// `chunkSize` bytes.
std::set<std::string> PlainFontNames(const std::string& extension, const std::string& content,
                                     size_t chunkSize);
