#include "OpenDocumentStyles.h"

namespace documents {
namespace {

/// Styles that one is based on, in a row. Hostile ones are based on themselves.
constexpr int kMaxAncestors = 32;

}  // namespace

void OpenDocumentStyles::DeclareFont(std::string_view name, std::string_view families) {
    mLastFamily = FirstFamily(families);
    mFamilies[std::string(name)] = mLastFamily;
}

void OpenDocumentStyles::EmbedFont() {
    mEmbedded.insert(mLastFamily);
}

void OpenDocumentStyles::Declare(const std::string& family, const std::string& name, Style style) {
    mLastStyle = &mStyles[{family, name}];
    *mLastStyle = std::move(style);
}

void OpenDocumentStyles::SetProperties(const XmlElement& textProperties) {
    if (mLastStyle == nullptr)
        return;
    const std::string_view name = textProperties.Value("font-name");
    const auto declared = mFamilies.find(name);
    std::string family = FirstFamily(textProperties.Value("font-family"));
    if (declared != mFamilies.end())
        family = declared->second;
    else if (family.empty())
        family = name;
    mLastStyle->properties.Override({family, std::string(textProperties.Value("font-weight")),
                                     std::string(textProperties.Value("font-style"))});
}

std::optional<TextProperties> OpenDocumentStyles::Find(const std::string& family,
                                                       const std::string& name) const {
    auto style = mStyles.find({family, name});
    if (style == mStyles.end())
        return std::nullopt;
    TextProperties properties;
    for (int left = kMaxAncestors; left > 0 && style != mStyles.end(); --left) {
        TextProperties below = style->second.properties;
        below.Override(properties);
        properties = std::move(below);
        if (style->first.second.empty())
            break;
        style = mStyles.find({family, style->second.parent});
    }
    return properties;
}

void OpenDocumentStyles::AddFont(const TextProperties& properties, std::string where, FontList& fonts) const {
    if (!mEmbedded.contains(properties.family))
        fonts.Add(FontOfFamily(properties.family, StyleName(properties.weight, properties.slant),
                               std::move(where)));
}

void OpenDocumentStyles::AddFonts(FontList& fonts) const {
    for (const auto& [key, style] : mStyles) {
        if (!style.properties.family.empty())
            AddFont(*Find(key.first, key.second), style.where, fonts);
    }
}

}  // namespace documents
