#pragma once
// One-third-octave band filters of the analyzer: how they are designed, and the coefficient
// tables that result for every supported sample rate and both filter orders.
//
// A band filter is a cascade of up to three second-order sections, each with the
// numerator 1 - z^-2. The tables are generated once per process, the first time they are
// asked for, and never change afterwards.

#include <array>

namespace analyzer {

// Coefficients of one second-order section: w = b0 x + b1 x1 + b2 x2 - a1 w1 - a2 w2,
// output g w.
struct SectionCoefficients {
    float b0 = 0.0f;
    float b1 = 0.0f;
    float b2 = 0.0f;
    float a1 = 0.0f;
    float a2 = 0.0f;
    float g = 0.0f;
};

inline constexpr int kMaxSections = 3;

// Sections in running order; an order-2 filter uses only the first.
struct SectionCascade {
    SectionCoefficients section[kMaxSections];
};

inline constexpr int kBandCount = 31;
inline constexpr int kBandsPerTable = 8;

// The filters designed at one rate for one order. `top` serves bands 0-7 at the full
// rate; `lower` holds the eight filters for 3174.80 ... 629.96 Hz that the decimated
// stages reuse at halved rates.
struct RateBandTables {
    SectionCascade top[kBandsPerTable];
    SectionCascade lower[kBandsPerTable];
};

inline constexpr std::array<float, 6> kSupportedRates = {44100.0f, 48000.0f, 88200.0f,
                                                         96000.0f, 176400.0f, 192000.0f};

// Nominal centre of band i (0 is the highest band, 30 the lowest).
double bandCentre(int band);

// Sections per filter for an order (1 for order 2, 3 for order 6).
inline constexpr int sectionsForOrder(int order) { return order == 2 ? 1 : 3; }

// Butterworth band-pass of `order` (2 or 6) with -3 dB edges f1 and f2 at rate fs,
// by the bilinear transform with prewarped edges. Unity gain at the centre.
SectionCascade designBandPass(double f1, double f2, double fs, int order);

// The tables for a supported rate and an order (2, else 6); null for any other rate.
const RateBandTables* bandTablesFor(float fs, int order);

}  // namespace analyzer
