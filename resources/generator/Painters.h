#pragma once
// One painter per kind of bitmap; each draws the whole bitmap `id` (its size and sprites are
// in resources/BitmapTable.h) onto a transparent surface of that size.

#include <cairo.h>

#include <string>

namespace artwork {

void paintBackground(cairo_t* cr, int id);
void paintKnobStrip(cairo_t* cr, int id);
void paintTypeSwitch(cairo_t* cr, int id);
void paintOnOffButton(cairo_t* cr, int id);
void paintResolution(cairo_t* cr, int id);
void paintReadoutFace(cairo_t* cr, int id);
void paintSoloStrip(cairo_t* cr, int id);
void paintLegend(cairo_t* cr, int id);
void paintJogBackground(cairo_t* cr, int id);
void paintJogIndicator(cairo_t* cr, int id);
void paintJogRing(cairo_t* cr, int id);
void paintStripKickButtons(cairo_t* cr, int id);
void paintDefaultButtons(cairo_t* cr, int id);
void paintRocker(cairo_t* cr, int id);
void paintStripSmallButtons(cairo_t* cr, int id);

// Glyph sheets come from a bitmap font file; the two sheets differ in their ink colours.
void loadGlyphFont(const std::string& path);
void releaseGlyphFont();
void paintMainGlyphs(cairo_t* cr, int id);
void paintSecondGlyphs(cairo_t* cr, int id);

}  // namespace artwork
