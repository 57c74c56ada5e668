#pragma once
// What one band is: its shape, the natural values it is designed from, and where it sits in
// the per-band arrays.

#include <cmath>

#include "dsp/EqTypes.h"

namespace dsp {

// The shape a band type selects. Band types 0..6 are these shapes switched on; 7..13 are the
// same shapes switched off (the shape is remembered for when the band is switched on again).
// The slopes are those of the squared response that the engine applies.
enum class FilterShape : int {
    LowCut12 = 0,   // first-order section
    LowCut24 = 1,   // second-order section
    LowShelf = 2,
    Peaking = 3,
    HighShelf = 4,
    HighCut12 = 5,  // first-order section
    HighCut24 = 6,  // second-order section
};

constexpr int kShapeCount = 7;
constexpr int kBandTypeCount = 2 * kShapeCount;
constexpr int kBypassedBandType = kShapeCount;  // the type every band starts with

// A type outside 0..6 passes the band flat.
constexpr bool isBypassed(int bandType) { return bandType < 0 || bandType >= kShapeCount; }
constexpr FilterShape shapeOf(int bandType) { return static_cast<FilterShape>(bandType % kShapeCount); }

// Only shelves and peaking bands have a gain; the auto-zoom looks at them alone.
constexpr bool hasGain(int bandType) {
    return bandType == static_cast<int>(FilterShape::LowShelf) || bandType == static_cast<int>(FilterShape::Peaking) ||
           bandType == static_cast<int>(FilterShape::HighShelf);
}

// The quality factor from the normalized Q value q in [0, 1]: a peaking band spans 0.05..20
// (1 at q = 0.5); every other shape spans 1/(2√2)..√2 (1/√2, Butterworth, at q = 0.5).
inline double qualityFactor(FilterShape shape, double q) {
    if (shape == FilterShape::Peaking) return std::pow(20.0, 2.0 * q - 1.0);
    return std::pow(2.0, 2.0 * q - 1.5);
}

// The natural values of one band on one side, as the engine designs from them.
struct BandSettings {
    int bandType = kBypassedBandType;
    double frequency = 20000.0;  // Hz
    double q = 0.5;              // the normalized Q value; its meaning depends on the shape
    double gain = 0.0;           // dB of one section; the band's effective gain is twice this
};

// Entry of a band in the per-band arrays: bands 1..8 of side A, then bands 1..8 of side B.
constexpr int bandSlot(int side, int band) { return side * kBandsPerSide + band; }

}  // namespace dsp
