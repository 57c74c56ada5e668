#pragma once
// Shapes of the numbers that every part of the equalizer engine exchanges.

#include <cmath>

namespace dsp {

constexpr int kBandsPerSide = 8;
constexpr int kSides = 2;                              // side A (left/mid), side B (right/side)
constexpr int kBandSlots = kBandsPerSide * kSides;    // bands 1..8 of side A, then of side B

// One second-order section, a0 normalised to 1:
// H(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2).
struct BiquadCoefficients {
    double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
};

// The response plot's frequency grid: 453 points, 20 Hz times 1000^(i/453).
constexpr int kPlotPoints = 453;
inline double plotFrequency(int i) { return 20.0 * std::pow(1000.0, static_cast<double>(i) / kPlotPoints); }

// A response curve in dB on the plot grid.
using Curve = float[kPlotPoints];

}  // namespace dsp
