#include "dsp/BandSectionDesign.h"

#include <cmath>

namespace dsp {
namespace {

constexpr double kTwoPi = 6.283185307179586476925286766559;

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

}  // namespace

BiquadCoefficients designBandSection(const BandSettings& band, double designRate) {
    if (isBypassed(band.bandType)) return kIdentitySection;

    const FilterShape shape = shapeOf(band.bandType);
    const double Q = qualityFactor(shape, band.q);
    const double w0 = kTwoPi * band.frequency / designRate;
    const double A = std::pow(10.0, band.gain / 40.0);
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

}  // namespace dsp
