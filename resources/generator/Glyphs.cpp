// Glyph sheets for the text printers, copied pixel for pixel from a bitmap font so that the
// small text stays sharp: no scaling, no smoothing.

#include "../BitmapTable.h"
#include "Layout.h"
#include "Painters.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <stdexcept>

namespace artwork {

namespace {

FT_Library library = nullptr;
FT_Face face = nullptr;

constexpr Rgb kDarkInk = rgb(22, 26, 30);
constexpr Rgb kWhiteInk = rgb(255, 255, 255);

void putPixel(cairo_surface_t* s, int x, int y, Rgb c) {
    const int w = cairo_image_surface_get_width(s), h = cairo_image_surface_get_height(s);
    if (x < 0 || y < 0 || x >= w || y >= h) return;
    auto* row = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s));
    row[x] = 0xFF000000u | uint32_t(c.r * 255 + 0.5) << 16 | uint32_t(c.g * 255 + 0.5) << 8 | uint32_t(c.b * 255 + 0.5);
}

// Copies the font's glyph for `code` so that its baseline falls on the sheet's baseline row.
void copyGlyph(cairo_surface_t* s, int cellX, unsigned code, Rgb ink) {
    if (code < 33 || code > 126) return;  // space and DEL stay empty
    if (FT_Load_Char(face, code, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO)) return;
    const FT_GlyphSlot g = face->glyph;
    const FT_Bitmap& b = g->bitmap;
    for (unsigned row = 0; row < b.rows; ++row)
        for (unsigned col = 0; col < b.width; ++col) {
            const unsigned char byte = b.buffer[row * b.pitch + col / 8];
            const bool on = b.pixel_mode == FT_PIXEL_MODE_MONO ? (byte >> (7 - col % 8)) & 1
                                                               : b.buffer[row * b.pitch + col] >= 128;
            // Rows above the baseline are ascent; the baseline row is the first row below it.
            if (on) putPixel(s, cellX + g->bitmap_left + int(col), kGlyphBaselineRow - g->bitmap_top + int(row), ink);
        }
}

void paintSheet(cairo_t* cr, int id, Rgb normalInk, Rgb highlightedInk) {
    if (!face) throw std::runtime_error("glyph font not loaded");
    cairo_surface_t* s = cairo_get_target(cr);
    cairo_surface_flush(s);
    for (int i = 0; i < kGlyphCount; ++i) {
        const bool highlighted = i >= kHighlightedGlyphOffset;
        copyGlyph(s, i * kGlyphPitch, 32 + unsigned(i % kHighlightedGlyphOffset),
                  highlighted ? highlightedInk : normalInk);
    }
    cairo_surface_mark_dirty(s);
}

}  // namespace

void loadGlyphFont(const std::string& path) {
    if (FT_Init_FreeType(&library)) throw std::runtime_error("FreeType did not start");
    if (FT_New_Face(library, path.c_str(), 0, &face)) throw std::runtime_error("cannot open font " + path);
    if (face->num_fixed_sizes > 0) FT_Select_Size(face, 0);
}

void releaseGlyphFont() {
    if (face) FT_Done_Face(face);
    if (library) FT_Done_FreeType(library);
    face = nullptr;
    library = nullptr;
}

// Dark ink for the light header cells; light ink for the dark highlighted cells.
void paintMainGlyphs(cairo_t* cr, int id) { paintSheet(cr, id, kDarkInk, layout::kHeaderCell); }

// The readouts print light on grey or red: their highlighted ink is pure white for contrast
// against the red over-level cell.
void paintSecondGlyphs(cairo_t* cr, int id) { paintSheet(cr, id, kDarkInk, kWhiteInk); }

}  // namespace artwork
