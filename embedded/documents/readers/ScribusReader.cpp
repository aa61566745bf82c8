#include "Readers.h"
#include "XmlParser.h"

namespace documents {
namespace {

class ScribusListener : public XmlListener {
public:
    explicit ScribusListener(FontList& fonts) : mFonts(fonts) {}

    void OnStart(const XmlElement& element) override {
        mFonts.AddPlaced(std::string(element.Value("PFILE")));
        const bool isStyle = element.name == "STYLE" || element.name == "CHARSTYLE";
        for (const char* attribute : {"FONT", "IFONT"})
            mFonts.Add({std::string(element.Value(attribute)), "", "",
                        isStyle ? "style " + std::string(StyleOf(element)) : "text"});
    }

private:
    static std::string_view StyleOf(const XmlElement& element) {
        const std::string_view name = element.Value("NAME");
        return name.empty() ? element.Value("CNAME") : name;
    }

    FontList& mFonts;
};

void ReadScribus(std::string_view content, FontList& fonts) {
    ScribusListener listener(fonts);
    ReadXml(content, listener);
}

}  // namespace

/// The fonts of texts and styles.
const Format kScribusFormat = {
    .name = "sla",
    .read = ReadScribus,
    .form = Form::kXml,
    .root = "SCRIBUS",
    .extensions = {"sla"},
};

}  // namespace documents
