#include "OpenDocumentListener.h"

#include "FileUri.h"

namespace documents {
namespace {

/// The families of styles that an element's style can be of.
std::vector<const char*> FamiliesOf(std::string_view element) {
    if (element == "p" || element == "h")
        return {"paragraph"};
    if (element == "span" || element == "a")
        return {"text"};
    if (element == "table-cell")
        return {"table-cell"};
    return {"graphic", "presentation"};
}

}  // namespace

void OpenDocumentListener::OnStart(const XmlElement& element) {
    mLevels.push_back(mLevels.empty() ? TextProperties() : mLevels.back());
    if (element.name == "font-face")
        mStyles.DeclareFont(element.Value("name"), element.Value("font-family"));
    else if (element.name == "font-face-src")
        mStyles.EmbedFont();
    else if (element.name == "automatic-styles")
        mIsByHand = true;
    else if (element.name == "style" || element.name == "default-style")
        DeclareStyle(element);
    else if (element.name == "text-properties")
        mStyles.SetProperties(element);
    else
        EnterText(element);
    NotePlaced(element);
}

void OpenDocumentListener::OnEnd(std::string_view name) {
    mLevels.pop_back();
    if (name == "automatic-styles")
        mIsByHand = false;
    else if (name == "style" || name == "default-style")
        mStyles.EndStyle();
}

void OpenDocumentListener::OnText(std::string_view text) {
    if (!mLevels.empty() && HasLetters(text))
        mStyles.AddFont(mLevels.back(), "text", mFonts);
}

void OpenDocumentListener::DeclareStyle(const XmlElement& element) {
    const std::string name(element.Value("name"));
    const std::string_view displayName = element.Value("display-name");
    std::string where = "style " + (displayName.empty() ? name : std::string(displayName));
    if (mIsByHand)
        where = "text";
    else if (name.empty())
        where = "the default style";
    mStyles.Declare(std::string(element.Value("family")), name,
                    {std::string(element.Value("parent-style-name")), where, {}});
}

/// Text in an element with a style looks as the style says, and else as what is around it.
void OpenDocumentListener::EnterText(const XmlElement& element) {
    const std::string style(element.Value("style-name"));
    if (style.empty())
        return;
    for (const char* family : FamiliesOf(element.name)) {
        if (const auto properties = mStyles.Find(family, style)) {
            mLevels.back().Override(*properties);
            return;
        }
    }
}

/// Within a package a link begins where the package's own files stand: what is beside it is "../" from there.
void OpenDocumentListener::NotePlaced(const XmlElement& element) {
    constexpr std::string_view kOutside = "../";
    if (element.name != "image" && element.name != "object" && element.name != "section-source")
        return;
    std::string_view link = element.Value("href");
    if (mForm == Form::kPackage && link.starts_with(kOutside))
        link.remove_prefix(kOutside.size());
    else if (mForm == Form::kPackage && !link.starts_with("file:"))
        return;
    mFonts.AddPlaced(PathOfUri(link));
}

}  // namespace documents
