// Font files of any content: what is found in them keeps to the limits and is fit to show, and each image of
// a name has the size that it may have.
#include "Fuzz.h"
#include "HostileFonts.h"
#include "PrintableText.h"
#include "TestFonts.h"
#include "common/FontManagerLimits.h"
#include "preview/PreviewFolder.h"
#include "preview/PreviewRenderer.h"
#include "scan/FontScanner.h"

using namespace pellwick;

namespace {

/// `parts`: how many names, or a name and a blank, it may be made of.
void CheckName(const std::string& name, size_t parts = 1) {
    Require(name.size() <= parts * kMaxNameSize, "names have the size that they may have");
    Require(IsPlainText(name), "names are fit to show");
}

void CheckFace(const FontFace& face) {
    Require(face.face >= 0 && face.face <= INT32_MAX && (face.face & 0xFFFF) < kMaxFacesPerFile &&
                face.face >> 16 <= kMaxInstancesPerFace,
            "the face is one that a file may have");
    for (const std::string& name : {face.family, face.style, face.foundry, face.version})
        CheckName(name);
    CheckName(face.postScriptName, 3);
    CheckName(face.fullName, 3);
    for (const std::string& name : face.lookupNames)
        CheckName(name, 3);
    Require(!face.postScriptName.empty() && !face.style.empty() && !face.fullName.empty(),
            "fonts have names");
}

void CheckImage(const NameImage& image, int scale) {
    Require(image.width >= 0 && image.width <= scale * kMaxPreviewWidth, "an image is as wide as it may be");
    Require(image.height == (image.width != 0 ? scale * kPreviewHeight : 0),
            "an image is as high as all are");
    Require(image.coverage.size() == static_cast<size_t>(image.width) * static_cast<size_t>(image.height),
            "an image has all its pixels");
}

/// Names that the face has letters for, and others; the second face, and a named instance.
void CheckDrawing(std::string_view content) {
    static auto* const renderer = new PreviewRenderer;
    const struct {
        int64_t face;
        std::string fullName;
        std::string postScriptName;
    } names[] = {{0, "A AA", "A"},
                 {0, "Caf\u00E9 \u5B57\U0001F600", std::string(200, 'A')},
                 {1, "\xFF", "AxA"},
                 {1 << 16, "", "A"}};
    for (const auto& [number, fullName, postScriptName] : names) {
        FontFace face;
        face.face = number;
        face.fullName = fullName;
        face.postScriptName = postScriptName;
        for (const int scale : kPreviewScales)
            CheckImage(renderer->Render(content, face, scale), scale);
    }
}

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

std::vector<std::string> Seeds() {
    const TestFontNames bold{"AAAA-Bold", "AAAA", "Bold"};
    std::vector<std::string> seeds = {
        MakeTestFont(bold),       MakeTestFontCollection({bold, {"AAAA", "AAAA"}}),
        PostScriptFont(),         hostile::MacintoshNames(),
        hostile::Instances(1, 2), hostile::Instances(2, 3)};
    for (hostile::Font& font : hostile::All())
        seeds.push_back(std::move(font.content));
    return seeds;
}

void TryInput(const std::string& input) {
    static auto* const scanner = new FontScanner;
    std::string reason;
    const auto faces = scanner->Scan(input, reason);
    Require(faces.size() <= kMaxFontsPerFile, "a file has as many fonts as it may have");
    Require(faces.empty() != reason.empty(), "there is a reason where there are no fonts");
    for (const FontFace& face : faces)
        CheckFace(face);
    CheckDrawing(input);
}
