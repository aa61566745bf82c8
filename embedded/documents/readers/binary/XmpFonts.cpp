#include "XmpFonts.h"

#include "ReadProblem.h"
#include "XmlParser.h"

namespace documents {
namespace {

class PacketListener : public XmlListener {
public:
    void OnStart(const XmlElement& element) override {
        if (element.name == "Fonts")
            mIsInFonts = true;
        else if (element.name == "li")
            mFont = {};
        // Short forms of a packet have the properties as attributes.
        for (const XmlElement::Attribute& property : element.attributes)
            Set(property.name, std::string(property.value));
        mText.clear();
    }
    void OnEnd(std::string_view name) override {
        Set(name, mText);
        if (name == "Fonts")
            mIsInFonts = false;
        else if (mIsInFonts && name == "li" && !mIsComposite && !mFont.postScriptName.empty())
            fonts.push_back(mFont);
        mText.clear();
    }
    void OnText(std::string_view text) override { mText += text; }

    std::vector<DocumentFont> fonts;

private:
    void Set(std::string_view property, const std::string& value) {
        if (property == "fontName")
            mFont.postScriptName = value;
        else if (property == "fontFamily")
            mFont.family = value;
        else if (property == "fontFace")
            mFont.style = value;
        else if (property == "composite")
            mIsComposite = value == "True";  // the author's own name for several fonts
    }

    DocumentFont mFont;
    std::string mText;
    bool mIsInFonts = false;
    bool mIsComposite = false;
};

}  // namespace

std::vector<DocumentFont> ReadXmpFonts(std::string_view packet) {
    PacketListener listener;
    try {
        ReadXml(packet, listener);
    } catch (const ReadProblem&) {  // the pages tell as well
    }
    return std::move(listener.fonts);
}

}  // namespace documents
