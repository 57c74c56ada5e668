#include "dsp/BandSectionDesign.h"

#include <cmath>

namespace dsp {
namespace {

constexpr double kTwoPi = 6.283185307179586476925286766559;

// Where a band lies at or above the Nyquist frequency of the design rate and its section
// would not be stable, it is designed at this fraction of the design rate instead: w0 held
// just below π. The bilinear map then squeezes the whole audio band into the lower skirt of
// the band, which is what an engineer expects of a band beyond the top: a low cut removes
// everything but the very top, a high cut passes flat but for a notch at Nyquist itself, a low
// shelf becomes a broadband gain, and a peak or high shelf acts on the highest frequencies
// only. It also joins on smoothly to the same band just below Nyquist. At 0.999 of Nyquist the
// poles of every shape, Q and gain stay at least 4e-5 inside the unit circle (the narrowest
// peak comes closest), so the cascade and the kernel's truncated impulse response settle.
constexpr double kHighestDesignFraction = 0.4995;

// Adding and removing a tiny constant rounds any denormal to zero, so the sections never feed
// denormals into the cascade or the kernel build. Values above about 0.01 keep their bits
// exactly; smaller ones may move by an ulp.
constexpr double kDenormalGuard = 1e-18;

double flushDenormal(double x) { return (x + kDenormalGuard) - kDenormalGuard; }

BiquadCoefficients flushed(const BiquadCoefficients& c) {
    return {flushDenormal(c.b0), flushDenormal(c.b1), flushDenormal(c.b2), flushDenormal(c.a1),
            flushDenormal(c.a2)};
}

// The second-order forms below share a0 as their divisor.
BiquadCoefficients normalised(double a0, double b0, double b1, double b2, double a1, double a2) {
    return {b0 / a0, b1 / a0, b2 / a0, a1 / a0, a2 / a0};
}

// The section of a switched-on shape at normalized angular frequency w0 (radians per sample).
BiquadCoefficients sectionAt(FilterShape shape, double Q, double A, double w0) {
    const double c = std::cos(w0);
    const double s = std::sin(w0);
    const double alpha = s / (2.0 * Q);
    const double beta = std::sqrt(A) * s / Q;  // 2·√A·α
    const double k = (1.0 + c) / s;            // cot(w0/2), the bilinear pre-warp of w0

    BiquadCoefficients r;
    switch (shape) {
        case FilterShape::LowCut12:  // bilinear image of s/(s + 1)
            r = {k / (k + 1.0), -k / (k + 1.0), 0.0, (1.0 - k) / (k + 1.0), 0.0};
            break;
        case FilterShape::LowCut24:
            r = normalised(1.0 + alpha, (1.0 + c) / 2.0, -(1.0 + c), (1.0 + c) / 2.0, -2.0 * c, 1.0 - alpha);
            break;
        case FilterShape::LowShelf:
            r = normalised((A + 1.0) + (A - 1.0) * c + beta, A * ((A + 1.0) - (A - 1.0) * c + beta),
                           2.0 * A * ((A - 1.0) - (A + 1.0) * c), A * ((A + 1.0) - (A - 1.0) * c - beta),
                           -2.0 * ((A - 1.0) + (A + 1.0) * c), (A + 1.0) + (A - 1.0) * c - beta);
            break;
        case FilterShape::Peaking:
            r = normalised(1.0 + alpha / A, 1.0 + alpha * A, -2.0 * c, 1.0 - alpha * A, -2.0 * c, 1.0 - alpha / A);
            break;
        case FilterShape::HighShelf:
            r = normalised((A + 1.0) - (A - 1.0) * c + beta, A * ((A + 1.0) + (A - 1.0) * c + beta),
                           -2.0 * A * ((A - 1.0) + (A + 1.0) * c), A * ((A + 1.0) + (A - 1.0) * c - beta),
                           2.0 * ((A - 1.0) - (A + 1.0) * c), (A + 1.0) - (A - 1.0) * c - beta);
            break;
        case FilterShape::HighCut12:  // bilinear image of 1/(s + 1)
            r = {1.0 / (k + 1.0), 1.0 / (k + 1.0), 0.0, (1.0 - k) / (k + 1.0), 0.0};
            break;
        case FilterShape::HighCut24:
            r = normalised(1.0 + alpha, (1.0 - c) / 2.0, 1.0 - c, (1.0 - c) / 2.0, -2.0 * c, 1.0 - alpha);
            break;
    }
    return flushed(r);
}

// Finite, with both poles strictly inside the unit circle.
bool isStableSection(const BiquadCoefficients& c) {
    const bool finite = std::isfinite(c.b0) && std::isfinite(c.b1) && std::isfinite(c.b2) && std::isfinite(c.a1) &&
                        std::isfinite(c.a2);
    // Both roots of z² + a1·z + a2 strictly inside the unit circle: the stability triangle.
    return finite && std::fabs(c.a2) < 1.0 && std::fabs(c.a1) < 1.0 + c.a2;
}

}  // namespace

BiquadCoefficients designBandSection(const BandSettings& band, double designRate) {
    if (isBypassed(band.bandType)) return kIdentitySection;

    const FilterShape shape = shapeOf(band.bandType);
    const double Q = qualityFactor(shape, band.q);
    const double A = std::pow(10.0, band.gain / 40.0);

    // Every section that is stable as designed keeps its bits, so settings that always worked
    // sound exactly as before. That is every band below Nyquist, and at very low design rates
    // also a band that folds back below Nyquist from above the design rate (it is heard at its
    // alias).
    const double w0 = kTwoPi * band.frequency / designRate;
    const BiquadCoefficients designed = sectionAt(shape, Q, A, w0);
    if (isStableSection(designed)) return designed;

    // In the upper half of the spectrum a section fails only at Nyquist (to within rounding)
    // or above it.
    if (w0 > kTwoPi / 4) {
        const BiquadCoefficients held = sectionAt(shape, Q, A, kTwoPi * kHighestDesignFraction);
        if (isStableSection(held)) return held;
    }
    // Values no band can be designed from (a non-finite or non-positive frequency, a non-finite
    // Q or gain, or a gain so extreme that the poles land on the unit circle): passed flat.
    return kIdentitySection;
}

}  // namespace dsp
