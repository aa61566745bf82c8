// Finds replacements for fonts that the store does not have.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "FontNameParts.h"
#include "activation/FontMatcher.h"
#include "store/FontStore.h"

namespace pellwick {

/// Keeps an index of the names in the store, which is made anew when fonts have come or gone.
class ReplacementFinder {
public:
    explicit ReplacementFinder(FontStore& fonts) : mFonts(fonts) {}

    /// Fonts that come near, best first, up to kMaxReplacements; of those with the same PostScript name the
    /// best. None whose file is missing; none at all when nothing comes near. Throws DatabaseError.
    std::vector<Font> Find(const RequestedFont& request);

private:
    /// Fonts by their position in mNames.
    using Positions = std::vector<uint32_t>;
    using Index = std::unordered_map<std::string, Positions>;
    /// How different each font is from what was asked for.
    using Distances = std::unordered_map<uint32_t, int>;

    struct NamedFont {
        std::string postScriptName;
        FontStyle style;
    };

    void MakeIndex();
    void Add(const FontNames& names);
    void Measure(const FontNameParts& wanted, Distances& distances) const;
    /// The best of the fonts with that PostScript name, or none.
    void AppendBestOf(const std::string& postScriptName, const RequestedFont& request,
                      std::vector<Font>& replacements);

    FontStore& mFonts;
    uint64_t mRevision = 0;  ///< of the store, when the index was made
    std::vector<NamedFont> mNames;
    Index mByPlainName;
    Index mByWholeName;
    Index mByFamily;
};

}  // namespace pellwick
