// The styles of an OpenDocument file, and the fonts that they come to.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "FontList.h"
#include "TextProperties.h"
#include "XmlParser.h"

namespace documents {

class OpenDocumentStyles {
public:
    struct Style {
        std::string parent;
        std::string where;          ///< "style Heading", or "text" for what an author set by hand
        TextProperties properties;  ///< its own
    };

    void DeclareFont(std::string_view name, std::string_view families);
    /// The last one that was declared comes with the document.
    void EmbedFont();
    /// `name`: empty for what all styles of the family are based on.
    void Declare(const std::string& family, const std::string& name, Style style);
    /// Of the style that was declared last and has not ended.
    void SetProperties(const XmlElement& textProperties);
    void EndStyle() { mLastStyle = nullptr; }

    /// A style's values, with those that it is based on; nothing when there is no such style.
    std::optional<TextProperties> Find(const std::string& family, const std::string& name) const;
    /// Adds the font, unless the document embeds it.
    void AddFont(const TextProperties& properties, std::string where, FontList& fonts) const;
    /// Adds the fonts that styles name.
    void AddFonts(FontList& fonts) const;

private:
    using Key = std::pair<std::string, std::string>;  ///< family and name

    std::map<std::string, std::string, std::less<>> mFamilies;  ///< by the names that stand for them here
    std::string mLastFamily;
    std::set<std::string> mEmbedded;  ///< families
    std::map<Key, Style> mStyles;
    Style* mLastStyle = nullptr;
};

}  // namespace documents
