// What an OpenDocument file says of fonts: the styles that name some, and the looks of its text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OpenDocumentStyles.h"
#include "XmlParser.h"

namespace documents {

/// Hears of the styles and then of the content, be it in one file or in two.
class OpenDocumentListener : public XmlListener {
public:
    enum class Form { kFlat, kPackage };

    OpenDocumentListener(Form form, FontList& fonts) : mForm(form), mFonts(fonts) {}

    void OnStart(const XmlElement& element) override;
    void OnEnd(std::string_view name) override;
    void OnText(std::string_view text) override;
    /// At the end of all: adds the fonts of styles, whether text uses them or not.
    void Finish() { mStyles.AddFonts(mFonts); }

private:
    void DeclareStyle(const XmlElement& element);
    void EnterText(const XmlElement& element);
    void NotePlaced(const XmlElement& element);

    const Form mForm;
    FontList& mFonts;
    OpenDocumentStyles mStyles;
    std::vector<TextProperties> mLevels;  ///< of the elements around
    bool mIsByHand = false;               ///< styles that authors have not named
};

}  // namespace documents
