#include <set>

#include "FileUri.h"
#include "Readers.h"
#include "XmlParser.h"
#include "ZipArchive.h"

namespace documents {
namespace {

/// The families and the styles that stories and styles ask for.
class WantedFonts : public XmlListener {
public:
    void OnStart(const XmlElement& element) override {
        mIsInFont = element.name == "AppliedFont";
        mText.clear();
        for (const XmlElement::Attribute& attribute : element.attributes) {
            if (attribute.name == "AppliedFont")
                mFamilies.emplace(attribute.value);
            else if (attribute.name == "FontStyle")
                mStyles.emplace(attribute.value);
        }
    }
    void OnEnd(std::string_view) override {
        if (mIsInFont)
            mFamilies.insert(mText);
        mIsInFont = false;
    }
    void OnText(std::string_view text) override {
        if (mIsInFont)
            mText += text;
    }

    /// True of all fonts where none is asked for by name. A style that nothing sets is the regular one.
    bool Include(std::string_view family, std::string_view style) const {
        return mFamilies.empty() || (mFamilies.contains(std::string(family)) &&
                                     (style == "Regular" || mStyles.contains(std::string(style))));
    }

private:
    std::set<std::string> mFamilies;
    std::set<std::string> mStyles;
    std::string mText;
    bool mIsInFont = false;
};

class FontListListener : public XmlListener {
public:
    FontListListener(const WantedFonts& wanted, FontList& fonts) : mWanted(wanted), mFonts(fonts) {}

    void OnStart(const XmlElement& element) override {
        if (element.name == "FontFamily")
            mFamily = element.Value("Name");
        const std::string style(element.Value("FontStyleName"));
        if (element.name == "Font" && mWanted.Include(mFamily, style))
            mFonts.Add({std::string(element.Value("PostScriptName")), mFamily, style, "text and styles"});
    }

private:
    const WantedFonts& mWanted;
    FontList& mFonts;
    std::string mFamily;  ///< that the fonts belong to
};

class LinkListener : public XmlListener {
public:
    explicit LinkListener(FontList& fonts) : mFonts(fonts) {}

    void OnStart(const XmlElement& element) override {
        if (element.name == "Link")
            mFonts.AddPlaced(PathOfUri(element.Value("LinkResourceURI")));
    }

private:
    FontList& mFonts;
};

void ReadIdml(std::string_view content, FontList& fonts) {
    ZipArchive archive(content);
    WantedFonts wanted;
    for (const std::string& name : archive.Names()) {
        if ((name.starts_with("Stories/") && name.ends_with(".xml")) || name == "Resources/Styles.xml")
            archive.ReadXml(name, wanted);
    }
    FontListListener listener(wanted, fonts);
    archive.ReadXml("Resources/Fonts.xml", listener);
    LinkListener links(fonts);
    for (const std::string& name : archive.Names()) {
        if (name.starts_with("Spreads/") && name.ends_with(".xml"))
            archive.ReadXml(name, links);
    }
}

}  // namespace

/// InDesign's exchange format: the document's fonts of the families and styles that its text asks for.
const Format kIdmlFormat = {
    .name = "idml",
    .read = ReadIdml,
    .form = Form::kArchive,
    .mark = "mimetypeapplication/vnd.adobe.indesign-idml",
    .extensions = {"idml"},
};

}  // namespace documents
