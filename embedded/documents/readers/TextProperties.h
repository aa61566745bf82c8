// The font of a piece of text, as documents with styles tell it.
#pragma once

#include <string>
#include <string_view>

namespace documents {

/// Values of CSS, which other formats took over. An empty one is what is around the text, or below its style.
struct TextProperties {
    std::string family;  ///< a list, in the order in which families are to be tried
    std::string weight;
    std::string slant;

    /// Takes the values that are set there.
    void Override(const TextProperties& other);
};

/// The list's first family, without quotes and blanks around it.
std::string FirstFamily(std::string_view list);
/// What follows it.
std::string_view OtherFamilies(std::string_view list);

/// Whether something can be seen of the text.
bool HasLetters(std::string_view text);

/// Without the blanks around it.
std::string_view Trimmed(std::string_view text);

}  // namespace documents
