// Makes a PDF document that uses the given fonts, one line of text each:
//
//     make-example-document DOCUMENT.pdf FONT-FILE...
//
// The fonts need not be installed. Cairo embeds what is used of them and writes their names readably.

#include <cairo-ft.h>
#include <cairo-pdf.h>

#include <cstdio>
#include <memory>

namespace {

constexpr double kPageWidth = 420;  // points
constexpr double kLineHeight = 36;

template <auto kDestroy>
struct Destroyer {
    template <class T>
    void operator()(T* object) const {
        kDestroy(object);
    }
};

using Surface = std::unique_ptr<cairo_surface_t, Destroyer<cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Destroyer<cairo_destroy>>;

/// Draws one line in the font of the file; false when that is not a font.
bool DrawLine(cairo_t* context, FT_Library library, const char* fontFile, double y) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, fontFile, 0, &face) != 0)
        return false;
    cairo_font_face_t* font = cairo_ft_font_face_create_for_ft_face(face, 0);
    // The face must live as long as cairo uses the font.
    static const cairo_user_data_key_t kFaceKey{};
    cairo_font_face_set_user_data(font, &kFaceKey, face,
                                  [](void* data) { FT_Done_Face(static_cast<FT_Face>(data)); });
    cairo_set_font_face(context, font);
    cairo_font_face_destroy(font);
    cairo_set_font_size(context, 20);
    cairo_move_to(context, 24, y);
    cairo_show_text(context,
                    FT_Get_Postscript_Name(face) != nullptr ? FT_Get_Postscript_Name(face) : "Sample");
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: make-example-document DOCUMENT.pdf FONT-FILE...\n");
        return 2;
    }
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        return 1;
    int status = 0;
    {
        const Surface surface(cairo_pdf_surface_create(argv[1], kPageWidth, kLineHeight * (argc - 1)));
        const Context context(cairo_create(surface.get()));
        for (int index = 2; index < argc; ++index) {
            if (!DrawLine(context.get(), library, argv[index], kLineHeight * (index - 1))) {
                std::fprintf(stderr, "make-example-document: %s is not a font file\n", argv[index]);
                status = 1;
            }
        }
        cairo_surface_finish(surface.get());
        if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
            std::fprintf(stderr, "make-example-document: %s: %s\n", argv[1],
                         cairo_status_to_string(cairo_surface_status(surface.get())));
            status = 1;
        }
    }
    cairo_debug_reset_static_data();  // lets go of the fonts that it keeps
    FT_Done_FreeType(library);
    return status;
}
