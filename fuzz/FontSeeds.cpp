#include "FontSeeds.h"

#include <string_view>

#include "HostileFonts.h"
#include "TestFonts.h"

namespace {

// Adobe Type 1 Font Format, chapter 7: the keys, and what stands in front of what is encrypted.
constexpr unsigned kProgramKey = 55665;
constexpr unsigned kGlyphKey = 4330;
constexpr std::string_view kFiller = "abcd";

std::string Encrypted(std::string_view plain, unsigned key) {
    std::string encrypted;
    const std::string whole = std::string(kFiller).append(plain);
    for (const char character : whole) {
        const unsigned cipher = static_cast<unsigned char>(character) ^ (key >> 8);
        key = (cipher + key) * 52845 + 22719 & 0xFFFF;
        encrypted += static_cast<char>(cipher);
    }
    return encrypted;
}

/// The letter is a square of 100 units; so is the glyph of letters that there are none for.
std::string GlyphProgram(const std::string& name) {
    // 0 500 hsbw; 100 100 rmoveto; 100 hlineto; 100 vlineto; -100 hlineto; closepath; endchar
    const std::string program =
        Encrypted("\x8B\xF8\x88\x0D\xEF\xEF\x15\xEF\x06\xEF\x07\x27\x06\x09\x0E", kGlyphKey);
    return "/" + name + " " + std::to_string(program.size()) + " RD " + program + " ND\n";
}

/// A PostScript font (Adobe Type 1 Font Format), its private part in binary form.
std::string PostScriptFont() {
    const std::string privatePart =
        "dup /Private 8 dict dup begin\n"
        "/RD{string currentfile exch readstring pop}executeonly def\n"
        "/ND{noaccess def}executeonly def\n/NP{noaccess put}executeonly def\n"
        "/BlueValues[]def\n/MinFeature{16 16}def\n/password 5839 def\n"
        "2 index /CharStrings 2 dict dup begin\n" +
        GlyphProgram(".notdef") + GlyphProgram("A") +
        "end\nend\nreadonly put\nnoaccess put\ndup/FontName get exch definefont pop\nmark currentfile "
        "closefile\n";
    return "%!PS-AdobeFont-1.0: Sample-Bold 1.0\n12 dict begin\n"
           "/FontInfo 4 dict dup begin\n/FullName (Sample Bold) readonly def\n"
           "/FamilyName (Sample) readonly def\n/Weight (Bold) readonly def\nend readonly def\n"
           "/FontName /Sample-Bold def\n/Encoding StandardEncoding def\n/PaintType 0 def\n/FontType 1 def\n"
           "/FontMatrix [0.001 0 0 0.001 0 0] readonly def\n/FontBBox {0 0 500 500} readonly def\n"
           "currentdict end\ncurrentfile eexec\n" +
           Encrypted(privatePart, kProgramKey) + "\n" + std::string(512, '0') + "\ncleartomark\n";
}

}  // namespace

std::vector<std::string> FontSeeds() {
    const TestFontNames bold{"AAAA-Bold", "AAAA", "Bold"};
    std::vector<std::string> seeds = {
        MakeTestFont(bold),       MakeTestFontCollection({bold, {"AAAA", "AAAA"}}),
        PostScriptFont(),         hostile::MacintoshNames(),
        hostile::Instances(1, 2), hostile::Instances(2, 3)};
    for (hostile::Font& font : hostile::All())
        seeds.push_back(std::move(font.content));
    return seeds;
}
