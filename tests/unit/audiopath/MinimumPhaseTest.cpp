// The minimum-phase cascade against the analytic response of its sections: an impulse goes
// through, a naive DFT of what comes out is compared with H(e^jw)² from the coefficients.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "dsp/BandModel.h"
#include "dsp/MinimumPhaseCascade.h"

namespace {

using Complex = std::complex<double>;
constexpr double kPi = std::numbers::pi;
constexpr double kRate = 44100.0;

// A peaking section from its definition: gainDb per section at f with quality q.
dsp::BiquadCoefficients peaking(double f, double q, double gainDb) {
    const double A = std::pow(10.0, gainDb / 40.0), w = 2.0 * kPi * f / kRate;
    const double alpha = std::sin(w) / (2.0 * q), a0 = 1.0 + alpha / A;
    return {(1.0 + alpha * A) / a0, -2.0 * std::cos(w) / a0, (1.0 - alpha * A) / a0, -2.0 * std::cos(w) / a0,
            (1.0 - alpha / A) / a0};
}

Complex response(const dsp::BiquadCoefficients& c, double w) {
    const Complex z1 = std::polar(1.0, -w), z2 = z1 * z1;
    return (c.b0 + c.b1 * z1 + c.b2 * z2) / (1.0 + c.a1 * z1 + c.a2 * z2);
}

// Runs an impulse through both sides of a copy of the cascade in either family (which must
// agree exactly); the largest distance, over 60 log-spaced frequencies, of each side's DFT
// from the square of the product of its sections.
template <class P>
void impulseResponse(dsp::MinimumPhaseCascade c, std::vector<double> (&h)[2]) {
    for (auto& side : h) side.assign(16384, 0.0);
    for (size_t n = 0; n < h[0].size(); ++n) {
        const P y = c.process(P::splat(n == 0 ? 1.0 : 0.0));
        h[0][n] = y.a();
        h[1][n] = y.b();
    }
}

void measure(const dsp::MinimumPhaseCascade& c, const std::vector<dsp::BiquadCoefficients> (&sides)[2], double (&worst)[2]) {
    std::vector<double> h[2], sse2[2];
    impulseResponse<dsp::PlainPair>(c, h);
    impulseResponse<dsp::Sse2Pair>(c, sse2);
    EXPECT_EQ(h[0], sse2[0]);
    EXPECT_EQ(h[1], sse2[1]);
    for (int side = 0; side < 2; ++side) {
        worst[side] = 0.0;
        for (int i = 0; i < 60; ++i) {
            const double w = 2.0 * kPi * 20.0 * std::pow(1000.0, i / 59.0) / kRate;
            Complex dft = 0.0, expected = 1.0;
            for (size_t n = 0; n < h[side].size(); ++n) dft += h[side][n] * std::polar(1.0, -w * n);
            for (const auto& s : sides[side]) expected *= response(s, w) * response(s, w);
            worst[side] = std::max(worst[side], std::abs(dft - expected));
        }
    }
}

struct Bank {
    dsp::BiquadCoefficients slots[dsp::kBandSlots] = {};
    int reads[dsp::kBandSlots] = {};
    dsp::BiquadCoefficients operator()(int slot) {
        ++reads[slot];
        return slots[slot];
    }
};

TEST(MinimumPhaseCascade, OnePeakingBandGivesItsSectionSquared) {
    Bank bank;
    bank.slots[2] = peaking(1000.0, 2.0, 6.0);
    dsp::MinimumPhaseCascade c;
    c.load(bank, 1u << 2);
    double worst[2];
    measure(c, {{bank.slots[2]}, {}}, worst);
    EXPECT_LT(worst[0], 1e-9);
    EXPECT_LT(worst[1], 1e-15);  // side B has no band
    // Twice +6 dB: the band's +12 dB at its centre.
    EXPECT_NEAR(20.0 * std::log10(std::norm(response(bank.slots[2], 2.0 * kPi * 1000.0 / kRate))), 12.0, 1e-9);
}

TEST(MinimumPhaseCascade, EachSideRunsItsOwnActiveBandsInSeries) {
    const int types[dsp::kBandSlots] = {3, 7, 13, 0, 6, 3, 8, 3, 7, 2, 7, 7, 7, 7, 7, 7};
    const uint32_t active = dsp::MinimumPhaseCascade::activeSlots(types);
    EXPECT_EQ(active, 0b10'1011'1001u);

    Bank bank;
    for (auto& s : bank.slots) s = peaking(500.0, 1.0, 6.0);  // switched-off slots hold bands too
    bank.slots[0] = peaking(80.0, 0.7, -5.0);
    bank.slots[3] = peaking(3000.0, 0.7, -4.0);
    bank.slots[5] = peaking(12000.0, 4.0, 3.0);
    bank.slots[9] = peaking(200.0, 1.0, 5.0);
    dsp::MinimumPhaseCascade c;
    c.load(bank, 1u << 4);  // leave band 5 ringing, switch it off, then it and the others on
    for (int n = 0; n < 50; ++n) {
        double a = 1.0, b = 0.0;
        c.process(a, b);
    }
    c.load(bank, 0);
    c.load(bank, active);
    for (int s = 0; s < dsp::kBandSlots; ++s) EXPECT_EQ(bank.reads[s], ((active >> s) & 1) + (s == 4)) << s;
    double worst[2];
    measure(c, {{bank.slots[0], bank.slots[3], bank.slots[4], bank.slots[5], bank.slots[7]}, {bank.slots[9]}}, worst);
    EXPECT_LT(worst[0], 1e-9);  // band 5 came back on from rest
    EXPECT_LT(worst[1], 1e-9);
}

TEST(MinimumPhaseCascade, ABandKeepsRingingWhenAnotherBandOfItsSideSwitchesOff) {
    Bank bank;  // slot 0 a wire, slot 3 a resonance; side B's slot 12 the same resonance
    bank.slots[3] = bank.slots[12] = peaking(2000.0, 8.0, 9.0);
    dsp::MinimumPhaseCascade withWire, alone;
    withWire.load(bank, (1u << 0) | (1u << 3) | (1u << 12));
    alone.load(bank, (1u << 3) | (1u << 12));
    for (int n = 0; n < 400; ++n) {
        if (n == 30) withWire.load(bank, (1u << 3) | (1u << 12));  // slot 3 moves up a stage
        double a = n == 0 ? 1.0 : 0.0, b = a, a2 = a, b2 = a;
        withWire.process(a, b);
        alone.process(a2, b2);
        ASSERT_NEAR(a, a2, 1e-15) << n;
        ASSERT_EQ(b, b2) << n;
    }
}

TEST(MinimumPhaseCascade, ReadsTheBandModelsPublishedSections) {
    dsp::BandModel model;
    model.setBand(0, 4, dsp::BandSettings{3, 2500.0, 0.6, 7.5});
    model.setBand(1, 0, dsp::BandSettings{1, 100.0, 0.5, 0.0});
    model.designAllBands(kRate);
    dsp::MinimumPhaseCascade c;
    c.load([&](int slot) { return model.readPublished(slot); }, (1u << 4) | (1u << 8));
    double worst[2];
    measure(c, {{model.section(4)}, {model.section(8)}}, worst);
    EXPECT_LT(worst[0], 1e-9);
    EXPECT_LT(worst[1], 1e-9);
}

}  // namespace
