#pragma once
// Drawing helpers shared by the artwork painters: colours, pixel-exact rectangles and lines,
// hinted label text, and PNG encoding. Everything snaps to whole pixels so that the artwork
// is crisp when the editor shows it at 1:1.

#include <cairo.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace artwork {

struct Rgb {
    double r, g, b;
};

constexpr Rgb rgb(int r, int g, int b) { return {r / 255.0, g / 255.0, b / 255.0}; }
Rgb mix(Rgb a, Rgb b, double t);

void setColour(cairo_t* cr, Rgb c, double alpha = 1.0);

// Integer rectangles as left, top, width, height; strokes run on pixel centres.
void fillRect(cairo_t* cr, int x, int y, int w, int h, Rgb c, double alpha = 1.0);
void frameRect(cairo_t* cr, int x, int y, int w, int h, Rgb c, double alpha = 1.0);
void roundedPath(cairo_t* cr, double x, double y, double w, double h, double radius);
void fillRounded(cairo_t* cr, int x, int y, int w, int h, double radius, Rgb top, Rgb bottom);
void frameRounded(cairo_t* cr, int x, int y, int w, int h, double radius, Rgb c, double alpha = 1.0);
void hLine(cairo_t* cr, int x0, int x1, int y, Rgb c, double alpha = 1.0);
void vLine(cairo_t* cr, int x, int y0, int y1, Rgb c, double alpha = 1.0);

// A raised push button face: gradient body, dark rim, light top edge.
void buttonFace(cairo_t* cr, int x, int y, int w, int h, bool hovered, bool pressed);

// A hand-drawn pixel pattern: '#' marks a pixel of colour c, with its top-left at (x, y).
void pixelArt(cairo_t* cr, int x, int y, std::initializer_list<std::string_view> rows, Rgb c);

// A round knob cap: soft drop shadow, vertical gradient, dark rim, light upper edge.
void knobCap(cairo_t* cr, double cx, double cy, double radius, Rgb top, Rgb bottom);

// The power symbol centred at (cx, cy).
void powerIcon(cairo_t* cr, double cx, double cy, double radius, Rgb c, double lineWidth);

enum class Align { Left, Centre, Right };

// Label text in the panel's hinted sans-serif. (x, y) is the baseline point that `align` refers to.
struct LabelStyle {
    double size;
    Rgb colour;
    bool bold = true;
    double tracking = 0.0;  // extra whole pixels between letters
};
void label(cairo_t* cr, std::string_view text, double x, double y, const LabelStyle& style,
           Align align = Align::Left);
double labelWidth(cairo_t* cr, std::string_view text, const LabelStyle& style);
// The same text turned to read upwards, centred on (cx, cy).
void upwardLabel(cairo_t* cr, std::string_view text, double cx, double cy, const LabelStyle& style);

// The label faces come from TrueType files named on the generator's command line.
void loadLabelFonts(const std::string& regularPath, const std::string& boldPath);
void releaseLabelFonts();

cairo_surface_t* newSurface(int width, int height);
std::vector<unsigned char> encodePng(cairo_surface_t* surface);

}  // namespace artwork
