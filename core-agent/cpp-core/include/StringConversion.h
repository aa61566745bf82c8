// Text between its encodings. Inside, text is UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "ErrorCodes.h"

/// Whether the bytes are well-formed UTF-8 (Unicode 15, table 3-7).
bool IsValidUtf8(std::string_view text);

/// With small letters for A to Z; all other bytes stay.
std::string AsciiLowerCase(std::string text);

/// Where the part of the text begins that is well-formed UTF-8 to its end; 0 when all of it is.
size_t WellFormedTail(std::string_view text);

/// Well-formed UTF-8 made from whatever the bytes are: each ill-formed sequence becomes U+FFFD.
std::string ReplaceInvalidUtf8(std::string_view text);

/// UTF-16 code units to UTF-8; a surrogate that stands alone becomes U+FFFD.
std::string Utf16ToUtf8(std::u16string_view text);

/// How many UTF-16 code units the text has, which is what a limit of the system's counts.
size_t Utf16Length(std::string_view text);

/// Converts between any two encodings that iconv knows by name ("UTF-16BE", "MACINTOSH", "UTF-32LE", ...).
/// kNotSupported for an unknown encoding, kInvalidParam for bytes that are not text in it; `converted` is
/// untouched then.
[[nodiscard]] ErrorCode ConvertEncoding(std::string_view bytes, const char* from, const char* to,
                                        std::string& converted);
/// Makes that conversion one that reads no files from here on, for a process that is about to give up reading
/// any: iconv has its tables in files of their own. False for an unknown encoding.
bool KeepEncodingLoaded(const char* from, const char* to);
