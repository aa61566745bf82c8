// Finds replacements for fonts that the store does not have.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "FontNameParts.h"
#include "activation/FontMatcher.h"
#include "store/FontStore.h"

namespace pellwick {

/// Keeps an index of the names in the store. New fonts have larger IDs than those before, so they are added to it;
/// the names of fonts that are gone stay, and lead to nothing.
class ReplacementFinder {
public:
    explicit ReplacementFinder(FontStore& fonts) : mFonts(fonts) {}

    /// Fonts that come near, best first, up to kMaxReplacements; of those with the same PostScript name the
    /// best. None whose file is missing; none at all when nothing comes near. Throws DatabaseError.
    std::vector<Font> Find(const RequestedFont& request);
    /// Adds the next fonts that are not in the index, so that Find has less to do; false when there are none.
    bool IndexSome();

private:
    /// Fonts by their position in mNames.
    using Positions = std::vector<uint32_t>;
    using Index = std::unordered_map<std::string, Positions>;
    /// How different each font is from what was asked for.
    using Distances = std::unordered_map<uint32_t, int>;

    struct NamedFont {
        std::string postScriptName;
        FontStyle style;
        int width;  ///< by the PostScript name, where the family's may hide it ("Heros Cn")
    };

    void Add(const FontNames& names);
    void Measure(const FontNameParts& wanted, Distances& distances) const;
    /// The best of the fonts with that PostScript name, or none.
    void AppendBestOf(const std::string& postScriptName, const RequestedFont& request,
                      std::vector<Font>& replacements);

    FontStore& mFonts;
    uint32_t mLastFont = 0;            ///< of those in the index
    std::unordered_set<size_t> mSeen;  ///< hashes of the names in it: many fonts have the same
    std::vector<NamedFont> mNames;
    Index mByPlainName;
    Index mByWholeName;
    Index mByFamily;
};

}  // namespace pellwick
