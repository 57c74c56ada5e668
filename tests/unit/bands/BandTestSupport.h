#pragma once
// Independent truth for the band tests: each shape as its analog prototype (normalised to a
// corner of 1 rad/s), carried to the digital domain by the bilinear transform pre-warped at
// the band frequency. Nothing here uses the engine's formulas or coefficients.

#include <cmath>
#include <complex>
#include <numbers>

#include "dsp/BandSettings.h"
#include "dsp/EqTypes.h"

namespace bands_test {

constexpr double kPi = std::numbers::pi;
using Complex = std::complex<double>;

// A rational function of s of degree ≤ 2: (n2 s² + n1 s + n0) / (d2 s² + d1 s + d0).
struct AnalogPrototype {
    double n2, n1, n0, d2, d1, d0;

    Complex at(Complex s) const { return (n2 * s * s + n1 * s + n0) / (d2 * s * s + d1 * s + d0); }
    bool firstOrder() const { return n2 == 0.0 && d2 == 0.0; }
};

inline double testQ(int bandType, double q) {
    return bandType == 3 ? std::pow(20.0, 2.0 * q - 1.0) : std::pow(2.0, 2.0 * q - 1.5);
}

inline AnalogPrototype prototypeOf(const dsp::BandSettings& b) {
    const double Q = testQ(b.bandType, b.q);
    const double A = std::pow(10.0, b.gain / 40.0);
    const double sqA = std::sqrt(A);
    switch (b.bandType) {
        case 0: return {0, 1, 0, 0, 1, 1};                                   // s / (s + 1)
        case 1: return {1, 0, 0, 1, 1 / Q, 1};                               // s² / (s² + s/Q + 1)
        case 2: return {A * 1, A * sqA / Q, A * A, A, sqA / Q, 1};           // low shelf
        case 3: return {1, A / Q, 1, 1, 1 / (A * Q), 1};                     // peaking
        case 4: return {A * A, A * sqA / Q, A * 1, 1, sqA / Q, A};           // high shelf
        case 5: return {0, 0, 1, 0, 1, 1};                                   // 1 / (s + 1)
        case 6: return {0, 0, 1, 1, 1 / Q, 1};                               // 1 / (s² + s/Q + 1)
        default: return {0, 0, 1, 0, 0, 1};                                  // flat
    }
}

// The digital section the bilinear transform s = K(1 − z⁻¹)/(1 + z⁻¹), K = cot(w0/2), makes of
// the prototype, normalised to a0 = 1.
inline dsp::BiquadCoefficients bilinearSection(const dsp::BandSettings& b, double designRate) {
    const AnalogPrototype p = prototypeOf(b);
    const double w0 = 2.0 * kPi * b.frequency / designRate;
    const double K = 1.0 / std::tan(w0 / 2.0);
    if (p.firstOrder()) {
        const double a0 = p.d1 * K + p.d0;
        return {(p.n1 * K + p.n0) / a0, (-p.n1 * K + p.n0) / a0, 0.0, (-p.d1 * K + p.d0) / a0, 0.0};
    }
    const double K2 = K * K;
    const double a0 = p.d2 * K2 + p.d1 * K + p.d0;
    return {(p.n2 * K2 + p.n1 * K + p.n0) / a0, (-2 * p.n2 * K2 + 2 * p.n0) / a0, (p.n2 * K2 - p.n1 * K + p.n0) / a0,
            (-2 * p.d2 * K2 + 2 * p.d0) / a0, (p.d2 * K2 - p.d1 * K + p.d0) / a0};
}

// 20·log10(|H|²) of the band, designed at designRate, seen at frequency f on a grid computed for
// gridRate (the rate class's rate, which may differ from designRate).
inline double expectedBandDb(const dsp::BandSettings& b, double designRate, double gridRate, double f) {
    if (b.bandType < 0 || b.bandType >= 7) return 0.0;
    const double omega = std::tan(kPi * f / gridRate) / std::tan(kPi * b.frequency / designRate);
    const double magnitude = std::abs(prototypeOf(b).at(Complex(0.0, omega)));
    return 20.0 * std::log10(magnitude * magnitude);
}

inline bool isIdentity(const dsp::BiquadCoefficients& c) {
    return c.b0 == 1.0 && c.b1 == 0.0 && c.b2 == 0.0 && c.a1 == 0.0 && c.a2 == 0.0;
}

inline bool sameSection(const dsp::BiquadCoefficients& x, const dsp::BiquadCoefficients& y) {
    return x.b0 == y.b0 && x.b1 == y.b1 && x.b2 == y.b2 && x.a1 == y.a1 && x.a2 == y.a2;
}

}  // namespace bands_test
