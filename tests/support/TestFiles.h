// What was built with the tests, wherever build and tests were taken, and the source tree where there is one.
#pragma once

#include <string>
#include <string_view>

// Paths are UTF-8, with the system's separators.

/// The full path of something that was built; `path` is relative to the build's folder, which is the one above
/// the test program's own.
std::string BuiltFile(std::string_view path);

/// True where ctest, or whoever runs the test, named the source tree in PLUGINCORE_SOURCES. Where tests were taken
/// elsewhere, those of the documents are skipped: `if (!HasSources()) GTEST_SKIP() << kNoSources;`.
bool HasSources();
inline constexpr char kNoSources[] = "PLUGINCORE_SOURCES names no source tree";
/// The full path of a file or folder of the source tree, `path` relative to it.
std::string SourceFile(std::string_view path);
