// Documents of any content and of every format that is read: whatever they hold, the answer is a list of fonts
// or one line, and arrives as it was sent. The first byte chooses the file name's extension, which counts where the
// content shows no format.
#include "DocumentLimits.h"
#include "Formats.h"
#include "Fuzz.h"

using namespace documents;

std::vector<std::string> Seeds() {
    return {
        R"(a%PDF-1.4
1 0 obj<</Pages 2 0 R>>endobj 2 0 obj<</Kids[3 0 R]/Count 1>>endobj 3 0 obj<</Type/Page/Parent 2 0 R/Annots[4 0 R]
/Resources<</Font<</F<</BaseFont/AAAAAA+B#20C/DescendantFonts[]>>>>/XObject<</X 4 0 R>>>>>>endobj
4 0 obj<</Subtype/Form/DA(/F 1 Tf)/Parent 4 0 R/Resources<</XObject<</X 4 0 R>>>>/Length 0>>stream
endstream endobj trailer<</Root 1 0 R/Size 5>>)",
        R"(b<svg><style>@font-face{font-family:A;src:url(b)}#i,text.c{font:italic 700 1px/2 'B', C}</style>
<text id='i' class='c d' style='font-weight:bold'>x</text></svg>)",
        R"(c<!DOCTYPE d [<!ENTITY e 'f'>]><document><font-face name='A' font-family="'B'"/>
<style name='S' family='paragraph' parent-style-name='S'><text-properties font-name='A' font-weight='bold'/></style>
<p style-name='S'>x&e;</p></document>)",
        R"(d<AfterEffectsProject><Layr><ldta/><string>L</string>
<btdk bdata='2f436f6f6c54797065466f6e74202f302028feff0041005c292920'/></Layr></AfterEffectsProject>)",
        "e<SCRIBUSUTF8NEW><STYLE NAME='S' FONT='A B'/></SCRIBUSUTF8NEW>"};
}

void TryInput(const std::string& input) {
    if (input.empty())
        return;
    const auto choice = static_cast<unsigned char>(input[0] - 'a');
    const Format& format = Formats()[choice % Formats().size()];
    const DocumentFonts found = ReadDocumentFonts(std::string_view(input).substr(1), format.extensions[0]);
    Require((found.status == ReadStatus::kUnreadable) == !found.problem.empty(),
            "what cannot be read has a reason");
    Require(found.status == ReadStatus::kRead || found.fonts.empty(),
            "there are fonts in what was read alone");
    Require(found.fonts.size() <= kMaxFonts, "there are as many as there may be");
    for (const DocumentFont& font : found.fonts)
        Require(!font.postScriptName.empty() && font.postScriptName.size() <= kMaxNameSize,
                "fonts have names");
    const auto again = ParseDocumentFonts(EncodeDocumentFonts(found));
    Require(again && again->fonts.size() == found.fonts.size(), "an answer arrives as it was sent");
}
