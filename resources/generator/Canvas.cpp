#include "Canvas.h"

#include <cairo-ft.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace artwork {

namespace {

struct LabelFonts {
    FT_Library library = nullptr;
    FT_Face faces[2] = {nullptr, nullptr};
    cairo_font_face_t* cairoFaces[2] = {nullptr, nullptr};
};
LabelFonts fonts;

void selectLabelFont(cairo_t* cr, const LabelStyle& style) {
    cairo_font_face_t* face = fonts.cairoFaces[style.bold ? 1 : 0];
    if (!face) throw std::runtime_error("label fonts not loaded");
    cairo_set_font_face(cr, face);
    cairo_set_font_size(cr, style.size);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_FULL);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    cairo_set_font_options(cr, options);
    cairo_font_options_destroy(options);
}

// Shows the text, letter by letter when tracking widens it; pen positions are rounded to whole
// pixels so that hinted stems stay sharp (keep tracking a whole number for even spacing).
double runText(cairo_t* cr, std::string_view text, double x, double y, const LabelStyle& style,
               bool draw) {
    if (style.tracking == 0.0) {
        const std::string whole(text);
        cairo_text_extents_t e;
        cairo_text_extents(cr, whole.c_str(), &e);
        if (draw) {
            cairo_move_to(cr, std::round(x), std::round(y));
            cairo_show_text(cr, whole.c_str());
        }
        return e.x_advance;
    }
    double pen = x;
    for (char ch : text) {
        const char one[2] = {ch, 0};
        cairo_text_extents_t e;
        cairo_text_extents(cr, one, &e);
        if (draw) {
            cairo_move_to(cr, std::round(pen), std::round(y));
            cairo_show_text(cr, one);
        }
        pen += e.x_advance + style.tracking;
    }
    return pen - x - (text.empty() ? 0.0 : style.tracking);
}

}  // namespace

Rgb mix(Rgb a, Rgb b, double t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

void setColour(cairo_t* cr, Rgb c, double alpha) { cairo_set_source_rgba(cr, c.r, c.g, c.b, alpha); }

void fillRect(cairo_t* cr, int x, int y, int w, int h, Rgb c, double alpha) {
    setColour(cr, c, alpha);
    cairo_rectangle(cr, x, y, w, h);
    cairo_fill(cr);
}

void frameRect(cairo_t* cr, int x, int y, int w, int h, Rgb c, double alpha) {
    setColour(cr, c, alpha);
    cairo_set_line_width(cr, 1.0);
    cairo_rectangle(cr, x + 0.5, y + 0.5, w - 1, h - 1);
    cairo_stroke(cr);
}

void roundedPath(cairo_t* cr, double x, double y, double w, double h, double radius) {
    const double r = std::min(radius, std::min(w, h) / 2);
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + w - r, y + r, r, -M_PI / 2, 0);
    cairo_arc(cr, x + w - r, y + h - r, r, 0, M_PI / 2);
    cairo_arc(cr, x + r, y + h - r, r, M_PI / 2, M_PI);
    cairo_arc(cr, x + r, y + r, r, M_PI, 3 * M_PI / 2);
    cairo_close_path(cr);
}

void fillRounded(cairo_t* cr, int x, int y, int w, int h, double radius, Rgb top, Rgb bottom) {
    cairo_pattern_t* p = cairo_pattern_create_linear(0, y, 0, y + h);
    cairo_pattern_add_color_stop_rgb(p, 0, top.r, top.g, top.b);
    cairo_pattern_add_color_stop_rgb(p, 1, bottom.r, bottom.g, bottom.b);
    cairo_set_source(cr, p);
    roundedPath(cr, x, y, w, h, radius);
    cairo_fill(cr);
    cairo_pattern_destroy(p);
}

void frameRounded(cairo_t* cr, int x, int y, int w, int h, double radius, Rgb c, double alpha) {
    setColour(cr, c, alpha);
    cairo_set_line_width(cr, 1.0);
    roundedPath(cr, x + 0.5, y + 0.5, w - 1, h - 1, radius);
    cairo_stroke(cr);
}

void hLine(cairo_t* cr, int x0, int x1, int y, Rgb c, double alpha) { fillRect(cr, x0, y, x1 - x0, 1, c, alpha); }

void vLine(cairo_t* cr, int x, int y0, int y1, Rgb c, double alpha) { fillRect(cr, x, y0, 1, y1 - y0, c, alpha); }

void buttonFace(cairo_t* cr, int x, int y, int w, int h, bool hovered, bool pressed) {
    const Rgb top = pressed ? rgb(30, 32, 36) : hovered ? rgb(72, 77, 85) : rgb(62, 66, 73);
    const Rgb bottom = pressed ? rgb(38, 41, 46) : hovered ? rgb(52, 56, 62) : rgb(44, 47, 53);
    fillRounded(cr, x, y, w, h, 2.5, top, bottom);
    frameRounded(cr, x, y, w, h, 2.5, rgb(10, 11, 13));
    if (!pressed) hLine(cr, x + 2, x + w - 2, y + 1, rgb(255, 255, 255), hovered ? 0.16 : 0.10);
}

void pixelArt(cairo_t* cr, int x, int y, std::initializer_list<std::string_view> rows, Rgb c) {
    int row = 0;
    for (std::string_view r : rows) {
        for (size_t col = 0; col < r.size(); ++col)
            if (r[col] == '#') fillRect(cr, x + int(col), y + row, 1, 1, c);
        ++row;
    }
}

void knobCap(cairo_t* cr, double cx, double cy, double radius, Rgb top, Rgb bottom) {
    setColour(cr, rgb(0, 0, 0), 0.45);
    cairo_arc(cr, cx, cy + 1.0, radius + 0.8, 0, 2 * M_PI);
    cairo_fill(cr);
    cairo_pattern_t* body = cairo_pattern_create_linear(0, cy - radius, 0, cy + radius);
    cairo_pattern_add_color_stop_rgb(body, 0, top.r, top.g, top.b);
    cairo_pattern_add_color_stop_rgb(body, 1, bottom.r, bottom.g, bottom.b);
    cairo_set_source(cr, body);
    cairo_arc(cr, cx, cy, radius, 0, 2 * M_PI);
    cairo_fill(cr);
    cairo_pattern_destroy(body);
    cairo_set_line_width(cr, 1.0);
    setColour(cr, rgb(8, 9, 10), 0.9);
    cairo_arc(cr, cx, cy, radius - 0.5, 0, 2 * M_PI);
    cairo_stroke(cr);
    setColour(cr, rgb(255, 255, 255), 0.16);
    cairo_new_path(cr);
    cairo_arc(cr, cx, cy, radius - 1.5, 1.15 * M_PI, 1.85 * M_PI);
    cairo_stroke(cr);
}

void powerIcon(cairo_t* cr, double cx, double cy, double radius, Rgb c, double lineWidth) {
    setColour(cr, c);
    cairo_set_line_width(cr, lineWidth);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_new_path(cr);
    cairo_arc(cr, cx, cy, radius, -M_PI / 2 + 0.75, 3 * M_PI / 2 - 0.75);
    cairo_stroke(cr);
    cairo_move_to(cr, cx, cy - radius - 0.5);
    cairo_line_to(cr, cx, cy - radius * 0.15);
    cairo_stroke(cr);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
}

double labelWidth(cairo_t* cr, std::string_view text, const LabelStyle& style) {
    cairo_save(cr);
    selectLabelFont(cr, style);
    const double w = runText(cr, text, 0, 0, style, false);
    cairo_restore(cr);
    return w;
}

void label(cairo_t* cr, std::string_view text, double x, double y, const LabelStyle& style, Align align) {
    cairo_save(cr);
    selectLabelFont(cr, style);
    const double w = runText(cr, text, 0, 0, style, false);
    const double left = align == Align::Left ? x : align == Align::Centre ? x - w / 2 : x - w;
    setColour(cr, style.colour);
    runText(cr, text, left, y, style, true);
    cairo_restore(cr);
}

void upwardLabel(cairo_t* cr, std::string_view text, double cx, double cy, const LabelStyle& style) {
    cairo_save(cr);
    selectLabelFont(cr, style);
    const double w = runText(cr, text, 0, 0, style, false);
    cairo_font_extents_t fe;
    cairo_font_extents(cr, &fe);
    // Turned a quarter left: the baseline runs upwards, the letters' tops face left.
    cairo_translate(cr, std::round(cx + (fe.ascent - fe.descent) / 2), std::round(cy + w / 2));
    cairo_rotate(cr, -M_PI / 2);
    setColour(cr, style.colour);
    runText(cr, text, 0, 0, style, true);
    cairo_restore(cr);
}

void loadLabelFonts(const std::string& regularPath, const std::string& boldPath) {
    if (FT_Init_FreeType(&fonts.library)) throw std::runtime_error("FreeType did not start");
    const std::string* paths[2] = {&regularPath, &boldPath};
    for (int i = 0; i < 2; ++i) {
        if (FT_New_Face(fonts.library, paths[i]->c_str(), 0, &fonts.faces[i]))
            throw std::runtime_error("cannot open font " + *paths[i]);
        fonts.cairoFaces[i] = cairo_ft_font_face_create_for_ft_face(fonts.faces[i], 0);
    }
}

void releaseLabelFonts() {
    for (int i = 0; i < 2; ++i) {
        if (fonts.cairoFaces[i]) cairo_font_face_destroy(fonts.cairoFaces[i]);
        fonts.cairoFaces[i] = nullptr;
    }
    // cairo keeps font faces in caches; empty them before the FreeType faces go.
    cairo_debug_reset_static_data();
    for (FT_Face& f : fonts.faces) {
        if (f) FT_Done_Face(f);
        f = nullptr;
    }
    if (fonts.library) FT_Done_FreeType(fonts.library);
    fonts.library = nullptr;
}

cairo_surface_t* newSurface(int width, int height) {
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("cannot create surface");
    return s;
}

std::vector<unsigned char> encodePng(cairo_surface_t* surface) {
    std::vector<unsigned char> bytes;
    auto append = [](void* closure, const unsigned char* data, unsigned int length) {
        auto* out = static_cast<std::vector<unsigned char>*>(closure);
        out->insert(out->end(), data, data + length);
        return CAIRO_STATUS_SUCCESS;
    };
    if (cairo_surface_write_to_png_stream(surface, append, &bytes) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("PNG encoding failed");
    return bytes;
}

}  // namespace artwork
