#include "preview/PreviewRenderer.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "scan/FreeTypeFace.h"

#include FT_OUTLINE_H

namespace pellwick {
namespace {

/// Size of the letters and their baseline, as parts of the image's height.
constexpr double kTextSize = 0.7;
constexpr double kBaseline = 0.75;

constexpr FT_Pos kFractions = 64;  ///< of a pixel, in FreeType's measures

std::u32string CodePoints(const std::string& text) {
    std::string bytes;
    std::u32string points;
    if (ConvertEncoding(text, "UTF-8", "UTF-32LE", bytes) != CoreErrorCodes::kSuccess)
        return points;
    for (size_t index = 0; index + 4 <= bytes.size(); index += 4) {
        const auto byte = [&](size_t which) { return static_cast<unsigned char>(bytes[index + which]); };
        points += static_cast<char32_t>(byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
    }
    return points;
}

/// Grey values of an image, 0 where nothing is drawn.
class Canvas {
public:
    Canvas(int width, int height)
        : mWidth(width),
          mHeight(height),
          mCoverage(static_cast<size_t>(width) * static_cast<size_t>(height)) {}

    int Width() const { return mWidth; }

    void Draw(const FT_Bitmap& bitmap, int left, int top) {
        for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
            for (int column = 0; column < static_cast<int>(bitmap.width); ++column)
                Darken(left + column, top + row, bitmap.buffer[row * bitmap.pitch + column]);
        }
    }
    /// The width up to the last column that was drawn to.
    NameImage Image() const {
        NameImage image{mUsedWidth, mUsedWidth != 0 ? mHeight : 0, {}};
        for (int y = 0; y < image.height; ++y) {
            const auto row = mCoverage.begin() + static_cast<std::ptrdiff_t>(y) * mWidth;
            image.coverage.insert(image.coverage.end(), row, row + image.width);
        }
        return image;
    }

private:
    void Darken(int x, int y, uint8_t coverage) {
        if (coverage == 0 || x < 0 || y < 0 || x >= mWidth || y >= mHeight)
            return;
        uint8_t& pixel =
            mCoverage[static_cast<size_t>(y) * static_cast<size_t>(mWidth) + static_cast<size_t>(x)];
        pixel = std::max(pixel, coverage);
        mUsedWidth = std::max(mUsedWidth, x + 1);
    }

    const int mWidth;
    const int mHeight;
    int mUsedWidth = 0;
    std::vector<uint8_t> mCoverage;
};

/// Letters to glyphs. Fonts of symbols have theirs in a private area, where the letters are wanted.
class GlyphMap {
public:
    explicit GlyphMap(FT_Face face) : mFace(face) {
        if (face->charmap == nullptr && face->num_charmaps > 0)
            FT_Set_Charmap(face, face->charmaps[0]);
    }

    /// 0 when the face has none.
    FT_UInt GlyphOf(char32_t letter) const {
        constexpr FT_ULong kSymbols = 0xF000;
        const FT_UInt glyph = FT_Get_Char_Index(mFace, letter);
        const bool isSymbolFont =
            mFace->charmap != nullptr && mFace->charmap->encoding == FT_ENCODING_MS_SYMBOL;
        return glyph == 0 && isSymbolFont && letter < 0x100 ? FT_Get_Char_Index(mFace, kSymbols + letter)
                                                            : glyph;
    }
    bool HasAll(const std::u32string& text) const {
        return std::all_of(text.begin(), text.end(),
                           [&](char32_t letter) { return letter == U' ' || GlyphOf(letter) != 0; });
    }

private:
    FT_Face mFace;
};

bool IsDrawable(FT_GlyphSlot slot, int textSize) {
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE)
        return false;
    FT_BBox box{};
    FT_Outline_Get_CBox(&slot->outline, &box);
    const FT_Pos limit = FT_Pos{kMaxGlyphExtent} * textSize * kFractions;
    return box.xMin > -limit && box.yMin > -limit && box.xMax < limit && box.yMax < limit;
}

/// Counts off the glyphs that this one is made of, however deep; false when there are more than are left.
bool CountComponents(FT_Face face, FT_UInt glyph, int& left) {
    if (--left < 0)
        return false;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_RECURSE) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_COMPOSITE)
        return true;
    std::vector<FT_UInt> components;
    for (FT_UInt index = 0; index < face->glyph->num_subglyphs; ++index) {
        FT_Int component = 0;
        FT_UInt flags = 0;
        FT_Int ignored = 0;
        FT_Matrix matrix{};
        if (FT_Get_SubGlyph_Info(face->glyph, index, &component, &flags, &ignored, &ignored, &matrix) == 0)
            components.push_back(static_cast<FT_UInt>(component));
    }
    return std::all_of(components.begin(), components.end(),
                       [&](FT_UInt component) { return CountComponents(face, component, left); });
}

/// Draws the glyph with its origin at `pen` pixels from the left; how far the next one is, in 64ths of a
/// pixel.
FT_Pos DrawGlyph(FT_Face face, FT_UInt glyph, int textSize, int pen, int baseline, Canvas& canvas) {
    int components = kMaxGlyphComponents;
    if (!CountComponents(face, glyph, components) ||
        FT_Load_Glyph(face, glyph, FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING) != 0)
        return 0;
    FT_GlyphSlot slot = face->glyph;
    const FT_Pos advance =
        std::clamp<FT_Pos>(slot->advance.x, 0, kMaxGlyphExtent * FT_Pos{textSize} * kFractions);
    if (IsDrawable(slot, textSize) && FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) == 0 &&
        slot->bitmap.pixel_mode == FT_PIXEL_MODE_GRAY)
        canvas.Draw(slot->bitmap, pen + slot->bitmap_left, baseline - slot->bitmap_top);
    return advance;
}

void DrawText(FT_Face face, const GlyphMap& glyphs, const std::u32string& text, int height, Canvas& canvas) {
    const int textSize = static_cast<int>(height * kTextSize);
    const int baseline = static_cast<int>(height * kBaseline);
    FT_Pos pen = FT_Pos{height} / 16 * kFractions;
    for (const char32_t letter : text) {
        if (pen / kFractions >= canvas.Width())
            return;
        const FT_UInt glyph = glyphs.GlyphOf(letter);
        if (glyph == 0 && letter == U' ')
            pen += FT_Pos{textSize} / 4 * kFractions;
        else
            pen += DrawGlyph(face, glyph, textSize, static_cast<int>(pen / kFractions), baseline, canvas);
    }
}

}  // namespace

void PreviewRenderer::Closer::operator()(FT_Library library) const {
    FT_Done_FreeType(library);
}

PreviewRenderer::PreviewRenderer() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        throw std::bad_alloc();
    mLibrary.reset(library);
}

PreviewRenderer::~PreviewRenderer() = default;

NameImage PreviewRenderer::Render(std::string_view content, const FontFace& font, int scale) {
    FT_Error error = 0;
    const OwnedFace face = OpenFace(mLibrary.get(), content, static_cast<FT_Long>(font.face), error);
    const int height = scale * kPreviewHeight;
    if (!face || FT_Set_Pixel_Sizes(face.get(), 0, static_cast<FT_UInt>(height * kTextSize)) != 0)
        return {};
    const GlyphMap glyphs(face.get());
    const std::u32string fullName = CodePoints(font.fullName);
    const bool showsFullName = !fullName.empty() && glyphs.HasAll(fullName);
    Canvas canvas(scale * kMaxPreviewWidth, height);
    DrawText(face.get(), glyphs, showsFullName ? fullName : CodePoints(font.postScriptName), height, canvas);
    return canvas.Image();
}

}  // namespace pellwick
