// Names drawn in the faces of font files of any content: each image is of the size that it may have.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "FontSeeds.h"
#include "Require.h"
#include "Seeds.h"
#include "common/FontManagerLimits.h"
#include "preview/PreviewFolder.h"
#include "preview/PreviewRenderer.h"

namespace {

using namespace pellwick;

void CheckImage(const NameImage& image, int scale) {
    Require(image.width >= 0 && image.width <= scale * kMaxPreviewWidth, "an image is as wide as it may be");
    Require(image.height == (image.width != 0 ? scale * kPreviewHeight : 0),
            "an image is as high as all are");
    Require(image.coverage.size() == static_cast<size_t>(image.width) * static_cast<size_t>(image.height),
            "an image has all its pixels");
}

FontFace FaceNamed(int64_t face, const std::string& fullName, const std::string& postScriptName) {
    FontFace named;
    named.face = face;
    named.fullName = fullName;
    named.postScriptName = postScriptName;
    return named;
}

/// Names that the face has letters for, and others; the second face, and a named instance.
std::array<FontFace, 4> Faces() {
    return {FaceNamed(0, "A AA", "A"), FaceNamed(0, "Caf\u00E9 \u5B57\U0001F600", std::string(200, 'A')),
            FaceNamed(1, "\xFF", "AxA"), FaceNamed(1 << 16, "", "A")};
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned random) {
    static const auto* const seeds = new std::vector<std::string>(FontSeeds());
    return MutateOrSeed(*seeds, data, size, maxSize, random);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static auto* const renderer = new PreviewRenderer;
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    for (const FontFace& face : Faces()) {
        for (const int scale : kPreviewScales)
            CheckImage(renderer->Render(content, face, scale), scale);
    }
    return 0;
}
