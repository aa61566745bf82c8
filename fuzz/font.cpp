// Font files of any content: what is found in them keeps to the limits and is fit to show.
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

void CheckLicence(const FontLicence& licence) {
    Require(licence.text.size() <= kMaxLicenceSize, "licences have the size that they may have");
    Require(IsPlainText(licence.text), "licences are fit to show");
    CheckName(licence.url);
}

void CheckImage(const NameImage& image, int scale) {
    Require(image.width >= 0 && image.width <= scale * kMaxPreviewWidth, "an image is as wide as it may be");
    Require(image.height == (image.width != 0 ? scale * kPreviewHeight : 0),
            "an image is as high as all are");
    Require(image.coverage.size() == static_cast<size_t>(image.width) * static_cast<size_t>(image.height),
            "an image has all its pixels");
}

/// A name that the face has letters for, and others; the second face, and a named instance.
void CheckDrawing(std::string_view content) {
    static auto* const renderer = new PreviewRenderer;
    const std::pair<int64_t, std::string> names[] = {
        {0, "A AA"}, {0, "Caf\u00E9 \u5B57\U0001F600"}, {1, "\xFF"}, {1 << 16, ""}};
    for (const auto& [number, fullName] : names) {
        FontFace face;
        face.face = number;
        face.fullName = fullName;
        face.postScriptName = "A";
        for (const int scale : kPreviewScales)
            CheckImage(renderer->Render(content, face, scale), scale);
    }
}

}  // namespace

std::vector<std::string> Seeds() {
    const TestFontNames bold{"AAAA-Bold", "AAAA", "Bold"};
    TestFontNames locked{"AAAA", "AAAA"};
    locked.embedding = 0x0302;
    locked.licence = "A\nA";
    std::vector<std::string> seeds = {
        MakeTestFont(bold),        MakeTestFont(locked),     MakeTestFontCollection({bold, {"AAAA", "AAAA"}}),
        hostile::MacintoshNames(), hostile::Instances(1, 2), hostile::Instances(2, 3)};
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
    for (const int64_t face : {0, 1, 1 << 16})
        CheckLicence(scanner->ReadLicence(input, face));
    CheckDrawing(input);
}
