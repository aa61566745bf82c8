#include <algorithm>

#include "FileUri.h"
#include "Readers.h"
#include "StyleSheet.h"
#include "XmlParser.h"

namespace documents {
namespace {

bool IsGeneric(std::string_view family) {
    constexpr std::string_view kGeneric[] = {"serif",     "sans-serif", "monospace", "cursive", "fantasy",
                                             "system-ui", "math",       "emoji",     "inherit", "initial"};
    return family.starts_with("ui-") ||
           std::find(std::begin(kGeneric), std::end(kGeneric), family) != std::end(kGeneric);
}

/// Illustrator writes 'MyriadPro-Bold, Myriad Pro': a PostScript name for a family, with the weight beside it.
bool IsPostScriptName(std::string_view family) {
    return family.find('-') != std::string_view::npos && family.find(' ') == std::string_view::npos;
}

DocumentFont FontOfText(const TextProperties& properties, std::string where) {
    const std::string family = FirstFamily(properties.family);
    std::string style = StyleName(properties.weight, properties.slant);
    if (!IsPostScriptName(family))
        return FontOfFamily(family, style, std::move(where));
    std::string next = FirstFamily(OtherFamilies(properties.family));
    if (IsGeneric(next))
        next.clear();
    return {family, next, next.empty() ? "" : style, std::move(where)};
}

class StyleSheetListener : public XmlListener {
public:
    void OnStart(const XmlElement& element) override { mIsInSheet = element.name == "style"; }
    void OnEnd(std::string_view) override {
        if (mIsInSheet)
            sheet.Add(mText);
        mIsInSheet = false;
        mText.clear();
    }
    void OnText(std::string_view text) override {
        if (mIsInSheet)
            mText += text;
    }

    StyleSheet sheet;

private:
    std::string mText;
    bool mIsInSheet = false;
};

class TextListener : public XmlListener {
public:
    TextListener(const StyleSheet& sheet, FontList& fonts) : mSheet(sheet), mFonts(fonts) {}

    void OnStart(const XmlElement& element) override {
        Level level = mLevels.empty() ? Level() : mLevels.back();
        const std::string_view id = element.Value("id");
        level.properties.Override({std::string(element.Value("font-family")),
                                   std::string(element.Value("font-weight")),
                                   std::string(element.Value("font-style"))});
        level.properties.Override(mSheet.PropertiesOf(element.name, id, element.Value("class")));
        level.properties.Override(ParseDeclarations(element.Value("style")));
        if (element.name == "image")
            mFonts.AddPlaced(PathOfUri(element.Value("href")));
        level.isShown = level.isShown && !IsAside(element.name);
        if (!id.empty() && element.name == "text")
            level.where = "text " + std::string(id);
        mLevels.push_back(std::move(level));
    }
    void OnEnd(std::string_view) override { mLevels.pop_back(); }
    void OnText(std::string_view text) override {
        if (mLevels.empty() || !mLevels.back().isShown || !HasLetters(text))
            return;
        const Level& level = mLevels.back();
        const std::string family = FirstFamily(level.properties.family);
        if (!IsGeneric(family) && !mSheet.Brings(family))
            mFonts.Add(FontOfText(level.properties, level.where));
    }

private:
    struct Level {
        TextProperties properties;
        std::string where = "text";
        bool isShown = true;
    };
    /// What holds text that is not drawn.
    static bool IsAside(std::string_view element) {
        return element == "style" || element == "title" || element == "desc" || element == "metadata" ||
               element == "script";
    }

    const StyleSheet& mSheet;
    FontList& mFonts;
    std::vector<Level> mLevels;
};

void ReadSvg(std::string_view content, FontList& fonts) {
    StyleSheetListener sheets;  // they count wherever they stand
    ReadXml(content, sheets);
    TextListener text(sheets.sheet, fonts);
    ReadXml(content, text);
}

}  // namespace

/// The fonts of text, as attributes, styles and simple style sheets set them.
const Format kSvgFormat = {
    .name = "svg",
    .read = ReadSvg,
    .form = Form::kXml,
    .root = "svg",
    .extensions = {"svg"},
};

}  // namespace documents
