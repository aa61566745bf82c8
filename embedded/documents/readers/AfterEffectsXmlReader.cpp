#include <optional>

#include "Readers.h"
#include "StringConversion.h"
#include "XmlParser.h"

namespace documents {
namespace {

constexpr char kInvisibleFont[] = "AdobeInvisFont";
constexpr char kDefaultFont[] = "Myriad-Roman";

std::optional<unsigned> DigitValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional<unsigned>(lower - 'a' + 10) : std::nullopt;
}

/// Bytes that stand as pairs of hexadecimal digits, up to the first other character.
std::string BytesOf(std::string_view digits) {
    std::string bytes;
    for (size_t at = 0; at + 1 < digits.size(); at += 2) {
        const auto high = DigitValue(digits[at]);
        const auto low = DigitValue(digits[at + 1]);
        if (!high || !low)
            break;
        bytes.push_back(static_cast<char>(*high << 4 | *low));
    }
    return bytes;
}

/// The string of text engine data in parentheses that begins at `text`: UTF-16, with "\" before bytes that
/// would end it.
std::string StringAt(std::string_view text) {
    std::string bytes;
    for (size_t at = 1; at < text.size() && text[at] != ')'; ++at) {
        if (text[at] == '\\' && at + 1 < text.size())
            ++at;
        bytes.push_back(text[at]);
    }
    std::u16string units;
    for (size_t at = bytes.starts_with("\xFE\xFF") ? 2 : 0; at + 1 < bytes.size(); at += 2)
        units.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[at]) << 8 |
                                              static_cast<unsigned char>(bytes[at + 1])));
    return Utf16ToUtf8(units);
}

/// The names in a text layer's list of fonts, in its order.
std::vector<std::string> ListedFonts(std::string_view textData) {
    constexpr std::string_view kFont = "/CoolTypeFont";
    std::vector<std::string> names;
    for (size_t at = textData.find(kFont); at != std::string_view::npos; at = textData.find(kFont, at + 1)) {
        const size_t begin = textData.find('(', at);
        if (begin == std::string_view::npos)
            break;
        names.push_back(StringAt(textData.substr(begin)));
    }
    return names;
}

class ProjectListener : public XmlListener {
public:
    explicit ProjectListener(FontList& fonts) : mFonts(fonts) {}

    void OnStart(const XmlElement& element) override {
        if (element.name == "Layr")
            mLayer.clear();
        mIsInLayerName = element.name == "string" && mParent == "ldta";
        if (element.name == "btdk")
            AddFonts(BytesOf(element.Value("bdata")));
        if (element.name == "fileReference")
            mFonts.AddPlaced(std::string(element.Value("fullpath")));
        mParent = element.name;
    }
    void OnEnd(std::string_view) override { mIsInLayerName = false; }
    void OnText(std::string_view text) override {
        if (mIsInLayerName)
            mLayer += text;
    }

private:
    /// A list names the default font whether it is used or not, unless it is the first; the invisible one ends
    /// it.
    void AddFonts(std::string_view textData) {
        bool isFirst = true;
        for (const std::string& name : ListedFonts(textData)) {
            if (name == kInvisibleFont)
                break;
            if (isFirst || name != kDefaultFont)
                mFonts.Add({name, "", "", mLayer.empty() ? "a text layer" : "text layer " + mLayer});
            isFirst = false;
        }
    }

    FontList& mFonts;
    std::string mParent;  ///< the element that began before
    std::string mLayer;
    bool mIsInLayerName = false;
};

void ReadAfterEffectsXml(std::string_view content, FontList& fonts) {
    ProjectListener listener(fonts);
    ReadXml(content, listener);
}

}  // namespace

/// After Effects projects: the fonts of text layers.
const Format kAfterEffectsXmlFormat = {
    .name = "aepx",
    .read = ReadAfterEffectsXml,
    .form = Form::kXml,
    .root = "AfterEffectsProject",
    .extensions = {"aepx"},
};

}  // namespace documents
