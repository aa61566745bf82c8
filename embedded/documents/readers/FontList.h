// The fonts of one document, gathered.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "DocumentFonts.h"

namespace documents {

class FontList {
public:
    /// Notes that the font is used in its `where`, or in one more place. One that no font can be called is
    /// passed over. Throws ReadProblem at too many.
    void Add(DocumentFont font);
    /// Notes that the document places the file at the path. More than kMaxPlaced are passed over.
    void AddPlaced(std::string path);
    /// All fonts, in the order of their names.
    std::vector<DocumentFont> Take();
    std::vector<std::string> TakePlaced() { return {mPlaced.begin(), mPlaced.end()}; }

private:
    using Names = std::tuple<std::string, std::string, std::string>;  ///< PostScript name, family, style
    struct Use {
        bool isEmbedded = true;  ///< everywhere
        std::vector<std::string> places;
    };

    std::map<Names, Use> mFonts;
    std::set<std::string> mPlaced;
};

/// A font of a format that knows families and styles; `style` may be empty.
DocumentFont FontOfFamily(std::string_view family, std::string_view style, std::string where);

/// The style's name by the values of CSS: "bold" or "100" to "900", "italic" or "oblique". Empty where both
/// are; "Regular" where nothing else was told.
std::string StyleName(std::string_view weight, std::string_view slant);

/// "page 3", "pages 1-4, 7", of numbers in ascending order.
std::string PagesText(const std::vector<int>& pages);

}  // namespace documents
