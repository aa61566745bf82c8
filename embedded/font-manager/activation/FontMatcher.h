// Finds the fonts in the store that match what a document asks for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/FontStore.h"

namespace pellwick {

struct RequestedFont {
    std::string postScriptName;  ///< goes first; a full name or a name as fontconfig writes it serves as well
    std::string family;          ///< used when no font has that name
    std::string style;           ///< "Bold Italic", "Oblique", "700"
    std::string foundry;         ///< preferred among equals; may be empty
    int32_t kind = 0;            ///< a kind of GFontManagerConstants
    std::string checksum{};  ///< of the file that the document was made with; decides among fonts that match
    std::string glyphs{};    ///< of its outlines; decides where no font has the checksum
    bool isExact = false;    ///< only the PostScript name counts, as it is written
    bool wantsFamily = false;  ///< the rest of the family is to be active with it
};

/// Fonts that match, up to kListPageSize of a family, in no order of their own. Throws DatabaseError.
std::vector<Font> MatchFonts(FontStore& fonts, const RequestedFont& request);

/// How the font came to match, for people; empty when it is the font of that PostScript name and no more.
std::string MatchReason(const Font& font, const RequestedFont& request);
/// In what the font, which is not a match, comes near: "same family, Bold instead of SemiBold".
std::string ReplacementReason(const Font& font, const RequestedFont& request);

/// The index of the best of fonts that match the same request; 0 when there are none.
size_t IndexOfBestMatch(const std::vector<Font>& fonts, const RequestedFont& request);

/// Of several versions of a font the best: together they would only conflict.
std::vector<Font> BestOfEachName(const std::vector<Font>& fonts);

/// Sorts fonts that match the same request, best first. Takes quadratic time: meant for a few fonts.
void SortByMatch(std::vector<Font>& fonts, const RequestedFont& request);

}  // namespace pellwick
