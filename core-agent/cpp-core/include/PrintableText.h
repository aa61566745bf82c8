// Text that others wrote, such as names in fonts and documents, as it may be shown.
//
// Some characters do something to a terminal or to the text around them instead of showing: control
// characters (Unicode category Cc), the line and paragraph separators, and the marks, embeddings, overrides
// and isolates that change the direction of writing (Unicode Standard Annex 9, 2). A name that holds one can
// forge a line, rename itself before a reader's eyes, or set the terminal's colours and title.
#pragma once

#include <string>
#include <string_view>

/// Whether the character is one of these.
bool IsUnprintable(char32_t character);

/// Whether the text is well-formed UTF-8 and shows as what it is.
bool IsPlainText(std::string_view text);

/// Whether nothing of the text can be seen: it is empty, or all of it blanks of whatever width.
bool IsBlank(std::string_view text);

/// The text as part of one line. Such characters stand as \x1B, where below 0x80, and as \u{202E}; a byte
/// that is not UTF-8 stands as \xFF.
std::string PrintableText(std::string_view text);

/// A JSON text on one line, with such characters in it as \u202E. It has the same values as before; a byte
/// that is not UTF-8 becomes U+FFFD.
std::string PrintableJson(std::string_view json);

/// How many characters (code points) UTF-8 text has, and its beginning of at most so many.
size_t CountCodePoints(std::string_view text);
std::string FirstCodePoints(std::string_view text, size_t count);
/// Its beginning of at most so many bytes, without half a character at its end.
std::string FirstBytes(std::string_view text, size_t size);

/// The text without such characters; each ill-formed sequence becomes U+FFFD.
std::string WithoutUnprintables(std::string_view text);
