#pragma once
// Where the editor places its controls (frame coordinates, left/top inclusive, right/bottom
// exclusive) and the colours that the controls themselves draw with. The background is drawn
// around these places, and the composite preview puts each control's image on them.

#include "Canvas.h"

#include <array>

namespace artwork::layout {

struct Rect {
    int left, top, right, bottom;
    constexpr int width() const { return right - left; }
    constexpr int height() const { return bottom - top; }
    constexpr double centreX() const { return (left + right) / 2.0; }
    constexpr double centreY() const { return (top + bottom) / 2.0; }
};

inline constexpr int kEditorWidth = 750;
inline constexpr int kEditorHeight = 509;

inline constexpr Rect kPlot{30, 20, 548, 163};
inline constexpr Rect kHeader{85, 164, 510, 184};
inline constexpr std::array kMeters{Rect{51, 164, 82, 174}, Rect{511, 164, 542, 174}};
inline constexpr Rect kJog{580, 30, 709, 152};
inline constexpr Rect kResolution{591, 169, 699, 202};
inline constexpr Rect kInfo{616, 203, 695, 235};
inline constexpr Rect kFat{644, 254, 681, 293};
inline constexpr Rect kLinPhase{650, 309, 689, 347};
inline constexpr Rect kOutput{646, 370, 700, 424};
inline constexpr Rect kPower{660, 444, 696, 481};
inline constexpr Rect kSoloist{79, 465, 602, 486};

inline constexpr int kBands = 8;
inline constexpr int kKnobWidth = 37;
inline constexpr int kKnobHeight = 36;
inline constexpr std::array kFrequencyKnobLeft{80, 149, 218, 287, 356, 424, 493, 562};
inline constexpr std::array kGainKnobLeft{79, 148, 217, 286, 355, 424, 493, 562};
inline constexpr std::array kQKnobLeft{80, 149, 218, 286, 355, 424, 493, 562};
inline constexpr int kFrequencyKnobTop = 301;
inline constexpr int kGainKnobTop = 358;
inline constexpr int kQKnobTop = 416;

constexpr Rect typeSwitch(int band) { return {75 + 69 * band, 248, 120 + 69 * band, 271}; }
// The closed cell's place inside the type switch.
inline constexpr int kTypeCellX = 11;
inline constexpr int kTypeCellY = 3;

// Solo buttons: 21 × 21, the first 8 pixels right of the strip's left edge.
inline constexpr int kSoloButtonSize = 21;
inline constexpr int kSoloFirstX = 8;
inline constexpr std::array kSoloOffsets{0, 70, 139, 207, 277, 347, 415, 485};

// Invisible reset areas at the left of the band rows, top to bottom.
struct ResetArea {
    Rect rect;
    const char* caption;
};
inline constexpr std::array kResetAreas{
    ResetArea{{28, 229, 49, 285}, "ALL OFF"},
    ResetArea{{28, 286, 49, 342}, "FREQ"},
    ResetArea{{28, 344, 49, 400}, "GAIN"},
    ResetArea{{28, 401, 49, 457}, "Q"},
};

// The preset strip along the bottom edge.
inline constexpr Rect kPresetName{194, 494, 318, 508};
inline constexpr Rect kPresetMenu{320, 495, 333, 507};
inline constexpr Rect kRocker{340, 494, 370, 507};
inline constexpr Rect kSaveBank{22, 494, 39, 509};
inline constexpr Rect kDefaultBank{39, 494, 71, 507};
inline constexpr Rect kLoadBank{72, 494, 89, 509};
inline constexpr Rect kSavePreset{104, 494, 121, 509};
inline constexpr Rect kDefaultPreset{122, 494, 166, 507};
inline constexpr Rect kLoadPreset{166, 494, 183, 509};
inline constexpr Rect kStoreA{388, 494, 405, 509};
inline constexpr Rect kRecallA{421, 494, 438, 509};
inline constexpr Rect kStoreB{452, 494, 469, 509};
inline constexpr Rect kRecallB{486, 494, 503, 509};
inline constexpr Rect kKeyboardFocus{710, 497, 721, 504};
inline constexpr Rect kManual{729, 496, 740, 505};

// Colours the controls draw with; the background agrees with them where they meet.
inline constexpr Rgb kBandColours[kBands]{rgb(54, 120, 179), rgb(206, 83, 4),   rgb(191, 0, 0),
                                          rgb(49, 163, 157), rgb(229, 188, 5),  rgb(78, 173, 91),
                                          rgb(106, 110, 186), rgb(156, 81, 79)};
inline constexpr Rgb kHeaderCell = rgb(223, 247, 255);
inline constexpr Rgb kHighlightCell = rgb(79, 79, 79);
inline constexpr Rgb kAlarmCell = rgb(229, 53, 5);
inline constexpr Rgb kGridLight = rgb(180, 180, 180);
inline constexpr Rgb kGridDark = rgb(49, 49, 49);
inline constexpr Rgb kNameFieldDark = rgb(36, 36, 32);

// The panel's own palette.
inline constexpr Rgb kPanelTop = rgb(44, 47, 52);
inline constexpr Rgb kPanelBottom = rgb(31, 33, 37);
inline constexpr Rgb kInset = rgb(25, 27, 30);
inline constexpr Rgb kPlotBackground = rgb(21, 23, 26);
inline constexpr Rgb kRimDark = rgb(10, 11, 13);
inline constexpr Rgb kRimLight = rgb(74, 79, 86);
inline constexpr Rgb kLabel = rgb(176, 186, 194);
inline constexpr Rgb kLabelDim = rgb(112, 120, 128);
inline constexpr Rgb kAccent = rgb(118, 196, 236);
inline constexpr Rgb kAccentDim = rgb(36, 58, 70);
inline constexpr Rgb kListen = rgb(236, 168, 60);
inline constexpr Rgb kIcon = rgb(190, 198, 206);

}  // namespace artwork::layout
