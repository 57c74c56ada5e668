#pragma once
// The numbered bitmaps of the editor and where each control finds its images in them.
//
// Every bitmap is one PNG (premultiplied-alpha ARGB once decoded). A bitmap holds one or more
// sprites: a sprite is `count` images of width × height, the first with its top-left corner at
// (x, y), each next one stepX/stepY further. Frame stacks and film strips step downwards
// (stepY = height): image k is frame k. Areas of a bitmap outside its sprites are transparent.
//
// Standard library only: the generator draws from this table and the tests check the PNGs
// against it.

#include <array>
#include <optional>
#include <string_view>

namespace artwork {

struct BitmapSize {
    int id;
    int width;
    int height;
};

struct Sprite {
    int bitmap;
    std::string_view use;
    int x, y;
    int width, height;
    int count;
    int stepX, stepY;
};

// Glyph sheets (129, 130): glyph i (character code 32 + i for i < 96; the same character
// highlighted for i >= 96) sits at x = 8·i. Its cell is 6 × 9 pixels; sheet row 7 is the
// baseline row (screen row y of a glyph printed at baseline y), so row 0 is screen row y − 7.
// Ink stays within the first 5 columns and 8 rows. Normal glyphs are dark ink on transparency
// (printed over the light cell fill), highlighted glyphs light ink (over the dark or red fill).
inline constexpr int kGlyphPitch = 8;
inline constexpr int kGlyphCount = 192;
inline constexpr int kHighlightedGlyphOffset = 96;
inline constexpr int kGlyphBaselineRow = 7;

// The jog (162 and its parts 131, 132) is drawn around pixel (65, 59) of its 129 × 122 area,
// the control's centre (645, 89). For step k (0..100) the knob indicator's centre lies at
//   (65.5 + 30·cos a, 59.5 + 30·sin a), a = 135° + 2.7°·k,
// angles clockwise from the +x axis with y downwards (step 0 lower left, 50 straight up, 100
// lower right); its top-left corner is that point minus 3.5, rounded to the nearest pixel.
// The ring sheet holds each ring button as a whole 129 × 122 layer to be drawn at the jog's
// own origin: frame 0 normal, 1 lit, 2 lit in the listen colour (used by the upper-left and
// upper-right buttons while listen mode 1 or 2 is on). Each button lies inside its click zone.
inline constexpr int kJogCentreX = 65;
inline constexpr int kJogCentreY = 59;
inline constexpr int kJogIndicatorRadius = 30;
inline constexpr int kJogIndicatorSize = 7;

inline constexpr std::array kBitmaps{
    BitmapSize{128, 750, 509},  // editor background
    BitmapSize{129, 1536, 9},   // text printer font
    BitmapSize{130, 1536, 9},   // second font of the two-colour printer (level readouts)
    BitmapSize{131, 7, 7},      // jog knob indicator
    BitmapSize{132, 645, 366},  // jog ring buttons
    BitmapSize{133, 64, 256},   // filter-type legend (CFilterType)
    BitmapSize{134, 102, 45},   // save, load and memory buttons of the preset strip
    BitmapSize{135, 37, 3636},  // frequency knob, bands 1-3
    BitmapSize{136, 37, 3636},  // frequency knob, bands 4-5
    BitmapSize{137, 37, 3636},  // frequency knob, bands 6-8
    BitmapSize{138, 37, 3636},  // gain knob, bands 1-3
    BitmapSize{139, 37, 3636},  // gain knob, bands 4-5
    BitmapSize{140, 37, 3636},  // gain knob, bands 6-8
    BitmapSize{141, 37, 3636},  // Q knob, bands 1-3
    BitmapSize{142, 37, 3636},  // Q knob, bands 4-5
    BitmapSize{143, 37, 3636},  // Q knob, bands 6-8
    BitmapSize{144, 54, 5454},  // Output knob
    BitmapSize{145, 134, 224},  // band type switch, band 1 (one per band up to 152)
    BitmapSize{146, 134, 224},
    BitmapSize{147, 134, 224},
    BitmapSize{148, 134, 224},
    BitmapSize{149, 134, 224},
    BitmapSize{150, 134, 224},
    BitmapSize{151, 134, 224},
    BitmapSize{152, 134, 224},  // band type switch, band 8
    BitmapSize{153, 37, 78},    // FAT button
    BitmapSize{154, 76, 39},    // default bank / default preset buttons
    BitmapSize{155, 30, 65},    // preset rocker
    BitmapSize{156, 35, 36},    // keyboard focus, manual and preset menu buttons
    BitmapSize{157, 39, 76},    // LinPhase button
    BitmapSize{158, 36, 74},    // Power button
    BitmapSize{159, 108, 99},   // Resolution selector
    BitmapSize{160, 31, 10},    // level readout face
    BitmapSize{161, 523, 42},   // band solo strip
    BitmapSize{162, 129, 122},  // jog background
};

// Knob film strips: 101 frames, frame k showing the value k/100; the pointer sweeps 270°
// from lower left (value 0) through the top (0.5) to lower right (1). Gain and Output draw their
// value arc from the top (0 dB), frequency and Q from the lower left.
// Band type switch (145 + band): the closed cell is drawn at (11, 3) inside the 45 × 23 control;
// frame = the type step (0-6 active shapes, 7-13 the same shapes bypassed). The pop-up's rows
// take shape r from the first column (frame r) or, for a bypassed band, from the column 112
// pixels to the right.
// Preset strip: in every one of its bitmaps (134, 154, 155, 156) a frame is the bitmap's height
// divided by the frame count, and the controls sharing a bitmap sit side by side, each at its
// own source x; an image smaller than its frame fills the frame's top rows. Kick buttons and
// the menu button: frame 0 normal, 1 hovered, 2 pressed. Rocker: 0 normal, 1 left hovered,
// 2 right hovered, 3 left pressed, 4 right pressed. Keyboard focus: 0 off, 1 off and hovered,
// 2 on. On/off buttons (153, 157, 158): the lower half is the "on" look.
// Solo strip: the strip as the control's background on top, the eight buttons lit 21 pixels
// below, each under its own spot. Resolution: frame k lights segment k (LOW, MED, HIGH) in the
// top 18 rows; the rows below are transparent so that the panel's label shows.
// Filter-type legend: row b (band b + 1) at y = 32·b, 16 high; the same row dimmed 16 lower.
inline constexpr std::array kSprites{
    Sprite{128, "background", 0, 0, 750, 509, 1, 0, 0},
    Sprite{129, "font glyphs", 0, 0, 6, 9, kGlyphCount, kGlyphPitch, 0},
    Sprite{130, "font glyphs", 0, 0, 6, 9, kGlyphCount, kGlyphPitch, 0},
    Sprite{131, "jog indicator", 0, 0, 7, 7, 1, 0, 0},
    Sprite{132, "jog upper-left button", 0, 0, 129, 122, 3, 0, 122},
    Sprite{132, "jog upper-right button", 129, 0, 129, 122, 3, 0, 122},
    Sprite{132, "jog top button", 258, 0, 129, 122, 3, 0, 122},
    Sprite{132, "jog lower-left button", 387, 0, 129, 122, 3, 0, 122},
    Sprite{132, "jog lower-right button", 516, 0, 129, 122, 3, 0, 122},
    Sprite{133, "legend rows", 0, 0, 64, 16, 8, 0, 32},
    Sprite{133, "legend rows dimmed", 0, 16, 64, 16, 8, 0, 32},
    Sprite{134, "save button", 0, 0, 17, 15, 3, 0, 15},
    Sprite{134, "load button", 17, 0, 17, 15, 3, 0, 15},
    Sprite{134, "store memory A", 34, 0, 17, 15, 3, 0, 15},
    Sprite{134, "recall memory A", 51, 0, 17, 15, 3, 0, 15},
    Sprite{134, "store memory B", 68, 0, 17, 15, 3, 0, 15},
    Sprite{134, "recall memory B", 85, 0, 17, 15, 3, 0, 15},
    Sprite{135, "frequency knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{136, "frequency knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{137, "frequency knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{138, "gain knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{139, "gain knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{140, "gain knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{141, "Q knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{142, "Q knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{143, "Q knob", 0, 0, 37, 36, 101, 0, 36},
    Sprite{144, "output knob", 0, 0, 54, 54, 101, 0, 54},
    Sprite{145, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{145, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{146, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{146, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{147, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{147, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{148, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{148, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{149, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{149, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{150, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{150, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{151, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{151, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{152, "type cells", 0, 0, 22, 16, 14, 0, 16},
    Sprite{152, "type pop-up bypassed", 112, 0, 22, 16, 7, 0, 16},
    Sprite{153, "FAT button", 0, 0, 37, 39, 2, 0, 39},
    Sprite{154, "default bank button", 0, 0, 32, 13, 3, 0, 13},
    Sprite{154, "default preset button", 32, 0, 44, 13, 3, 0, 13},
    Sprite{155, "preset rocker", 0, 0, 30, 13, 5, 0, 13},
    Sprite{156, "keyboard focus button", 0, 0, 11, 7, 3, 0, 12},
    Sprite{156, "manual button", 11, 0, 11, 9, 3, 0, 12},
    Sprite{156, "preset menu button", 22, 0, 13, 12, 3, 0, 12},
    Sprite{157, "LinPhase button", 0, 0, 39, 38, 2, 0, 38},
    Sprite{158, "Power button", 0, 0, 36, 37, 2, 0, 37},
    Sprite{159, "resolution", 0, 0, 108, 33, 3, 0, 33},
    Sprite{160, "level readout", 0, 0, 31, 10, 1, 0, 10},
    Sprite{161, "solo strip", 0, 0, 523, 21, 1, 0, 0},
    Sprite{161, "solo buttons lit", 0, 21, 523, 21, 1, 0, 0},
    Sprite{162, "jog background", 0, 0, 129, 122, 1, 0, 0},
};

constexpr std::optional<BitmapSize> bitmapSize(int id) {
    for (const BitmapSize& b : kBitmaps)
        if (b.id == id) return b;
    return std::nullopt;
}

// The first sprite of bitmap `id`.
constexpr std::optional<Sprite> firstSprite(int id) {
    for (const Sprite& s : kSprites)
        if (s.bitmap == id) return s;
    return std::nullopt;
}

// The first sprite of bitmap `id` whose use is `use`.
constexpr std::optional<Sprite> findSprite(int id, std::string_view use) {
    for (const Sprite& s : kSprites)
        if (s.bitmap == id && s.use == use) return s;
    return std::nullopt;
}

}  // namespace artwork
