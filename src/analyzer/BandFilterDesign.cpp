#include "analyzer/BandFilterDesign.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <utility>

namespace analyzer {
namespace {

using Complex = std::complex<double>;

// Half the band's width in octaves: order 6 filters are one third of an octave wide
// between their -3 dB edges; the single-section order-2 filters are narrower (2/11 of an
// octave), so that their gentler skirts still separate neighbouring bands.
double halfWidthOctaves(int order) { return order == 2 ? 1.0 / 11.0 : 1.0 / 6.0; }

// At 44.1 kHz the upper edge of the highest order-6 band would lie beyond the Nyquist
// frequency; it is pulled down to 21.5 kHz instead.
constexpr double kTopEdgeAt44100 = 21500.0;

// Denominator of a second-order section, in double precision until it is stored.
struct Denominator {
    double a1;
    double a2;
};

// The two band-pass poles that the prototype pole p becomes under s -> (s^2 + W0^2)/(B s):
// the roots of s^2 - p B s + W0^2 = 0.
std::pair<Complex, Complex> bandPassPoles(Complex p, double bandwidth, double centreSquared) {
    const Complex root = std::sqrt(p * p * bandwidth * bandwidth - 4.0 * centreSquared);
    return {(p * bandwidth + root) / 2.0, (p * bandwidth - root) / 2.0};
}

// The section whose poles are the bilinear images z = (1 + s)/(1 - s) of s1 and s2 (a
// conjugate pair, or two real poles).
Denominator denominatorFromPoles(Complex s1, Complex s2) {
    const Complex z1 = (1.0 + s1) / (1.0 - s1);
    const Complex z2 = (1.0 + s2) / (1.0 - s2);
    return {-(z1 + z2).real(), (z1 * z2).real()};
}

// |(1 - z^-2) / (1 + a1 z^-1 + a2 z^-2)| at the angular frequency w.
double unscaledMagnitude(const Denominator& d, double w) {
    const Complex z1 = std::polar(1.0, -w);
    const Complex z2 = z1 * z1;
    return std::abs((1.0 - z2) / (1.0 + d.a1 * z1 + d.a2 * z2));
}

SectionCoefficients bandSection(const Denominator& d, double gain) {
    SectionCoefficients c;
    c.b0 = 1.0f;
    c.b1 = 0.0f;
    c.b2 = -1.0f;
    c.a1 = static_cast<float>(d.a1);
    c.a2 = static_cast<float>(d.a2);
    c.g = static_cast<float>(gain);
    return c;
}

}  // namespace

double bandCentre(int band) { return 1000.0 * std::pow(2.0, (13.0 - band) / 3.0); }

SectionCascade designBandPass(double f1, double f2, double fs, int order) {
    const double w1 = std::tan(std::numbers::pi * f1 / fs);
    const double w2 = std::tan(std::numbers::pi * f2 / fs);
    const double centreSquared = w1 * w2;
    const double bandwidth = w2 - w1;

    // The real prototype pole -1. Its section alone has unity gain at the centre.
    const auto [realPole1, realPole2] = bandPassPoles(-1.0, bandwidth, centreSquared);
    const double realGain = bandwidth / (1.0 + bandwidth + centreSquared);
    const SectionCoefficients realSection =
        bandSection(denominatorFromPoles(realPole1, realPole2), realGain);

    SectionCascade cascade;
    if (order == 2) {
        cascade.section[0] = realSection;
        return cascade;
    }

    // The complex prototype pole -1/2 + j sqrt(3)/2 gives two band-pass poles, one above and
    // one below the centre; each forms a section with its conjugate, which the conjugate
    // prototype pole supplies. The upper pair runs first.
    auto [upper, lower] = bandPassPoles(Complex(-0.5, std::sqrt(3.0) / 2.0), bandwidth, centreSquared);
    if (std::abs(upper.imag()) < std::abs(lower.imag())) std::swap(upper, lower);
    const Denominator upperPair = denominatorFromPoles(upper, std::conj(upper));
    const Denominator lowerPair = denominatorFromPoles(lower, std::conj(lower));

    // Equal gains for the two complex sections, so that the whole cascade passes its centre
    // (the bilinear image of sqrt(W1 W2)) at exactly unity.
    const double centreAngle = 2.0 * std::atan(std::sqrt(centreSquared));
    const double complexGain =
        1.0 / std::sqrt(unscaledMagnitude(upperPair, centreAngle) * unscaledMagnitude(lowerPair, centreAngle));

    cascade.section[0] = bandSection(upperPair, complexGain);
    cascade.section[1] = bandSection(lowerPair, complexGain);
    cascade.section[2] = realSection;
    return cascade;
}

namespace {

struct AllBandTables {
    RateBandTables byRate[kSupportedRates.size()][2];  // [rate][0: order 2, 1: order 6]

    AllBandTables() {
        for (std::size_t r = 0; r < kSupportedRates.size(); ++r) {
            for (int o = 0; o < 2; ++o) fill(byRate[r][o], kSupportedRates[r], o == 0 ? 2 : 6);
        }
    }

    static void fill(RateBandTables& tables, double fs, int order) {
        const double spread = std::exp2(halfWidthOctaves(order));
        for (int k = 0; k < kBandsPerTable; ++k) {
            const double topCentre = bandCentre(k);
            double topUpperEdge = topCentre * spread;
            if (k == 0 && order == 6 && fs == 44100.0) topUpperEdge = kTopEdgeAt44100;
            tables.top[k] = designBandPass(topCentre / spread, topUpperEdge, fs, order);

            const double lowerCentre = bandCentre(kBandsPerTable + k);
            tables.lower[k] = designBandPass(lowerCentre / spread, lowerCentre * spread, fs, order);
        }
    }
};

const AllBandTables& allBandTables() {
    static const AllBandTables tables;
    return tables;
}

}  // namespace

const RateBandTables* bandTablesFor(float fs, int order) {
    const auto* it = std::find(kSupportedRates.begin(), kSupportedRates.end(), fs);
    if (it == kSupportedRates.end()) return nullptr;
    return &allBandTables().byRate[it - kSupportedRates.begin()][order == 2 ? 0 : 1];
}

}  // namespace analyzer
