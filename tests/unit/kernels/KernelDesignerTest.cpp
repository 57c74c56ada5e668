// The linear-phase kernels against their definition: the windowed autocorrelation of each
// side's cascade, whose spectrum is |H|² up to a bound computed here from the exact response.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "KernelTestSupport.h"
#include "dsp/KernelDesigner.h"
#include "dsp/SpectrumMac.h"
#include "platform/TimedLock.h"

namespace {

using dsp::KernelBuild;
using dsp::KernelCurves;
using dsp::KernelDesigner;
using namespace kernel_test;

class KernelDesignerTest : public ::testing::Test {
protected:
    KernelBuild build(KernelDesigner& d, const SectionSet& set, int n, double rate, bool linPhase = true,
                      KernelCurves* curves = nullptr) {
        return d.buildKernels(set.s, n, rate, linPhase, processLock, curves);
    }
    platform::TimedLock processLock;
};

// The cascade's impulse response, computed band after band over all samples, equals the
// sections run one sample at a time in series, bit for bit, the guard against denormals included.
TEST(CascadeImpulseResponses, EqualTheSectionsRunInSeriesBitForBit) {
    const double rate = 48000.0;
    SectionSet set;
    set.with(0, peaking(40, 9, 8, rate)).with(3, shelf(false, 200, -12, 0.7, rate)).with(7, peaking(15000, -6, 0.5, rate));
    set.with(8 + 1, shelf(true, 3000, 6, 1.2, rate)).with(8 + 6, peaking(90, 12, 20, rate));
    const int half = 2048;
    std::vector<double> a(2 * half + 2, std::nan("")), b(2 * half + 2, std::nan(""));
    dsp::cascadeImpulseResponses(set.s, half, a.data(), b.data());
    for (int side = 0; side < dsp::kSides; ++side) {
        double x1[8] = {}, x2[8] = {}, y1[8] = {}, y2[8] = {};
        for (int k = 0; k <= half; ++k) {
            double v = k == 0 ? 1.0 : 0.0;
            for (int j = 0; j < 8; ++j) {
                const dsp::BiquadCoefficients& c = set.s[8 * side + j];
                double y = c.b0 * v + c.b1 * x1[j] + c.b2 * x2[j] - c.a1 * y1[j] - c.a2 * y2[j];
                y = (y + 1e-18) - 1e-18;
                x2[j] = x1[j], x1[j] = v, y2[j] = y1[j], y1[j] = y;
                v = y;
            }
            ASSERT_EQ((side ? b : a)[2 * k], v) << "side " << side << " sample " << k;
            ASSERT_EQ((side ? b : a)[2 * k + 1], 0.0) << "side " << side << " sample " << k;
        }
    }
}

// All bands flat: the autocorrelation of a unit impulse, one tap of weight 1 at N/2 and
// nothing else, at every frame size, one after the other in the same designer (so each size
// also gets its own window).
TEST_F(KernelDesignerTest, FlatBandsGiveOneUnitTapAtTheCentre) {
    KernelDesigner d;
    for (int n : {8192, 4096, 32768, 16384}) {
        ASSERT_EQ(build(d, SectionSet(), n, 44100.0), KernelBuild::Built);
        ASSERT_EQ(d.activeFrameSize(), n);
        for (int side = 0; side < dsp::kSides; ++side) {
            const std::vector<double> taps = activeTaps(d, side, n);
            for (int t = 0; t < 2 * n; ++t) ASSERT_NEAR(taps[t], t == n / 2 ? 1.0 : 0.0, 1e-14) << "N " << n << " tap " << t;
        }
    }
}

// N + 1 taps, symmetric about N/2 (a pure delay of N/2 and no other phase), nothing beyond tap N.
TEST_F(KernelDesignerTest, TapsAreSymmetricAboutTheCentre) {
    const int n = 4096;
    SectionSet set;
    set.with(0, shelf(false, 200, 4, 0.7, 44100)).with(3, peaking(2500, -7, 3, 44100)).with(9, firstOrderLowPass(3000, 44100));
    KernelDesigner d;
    ASSERT_EQ(build(d, set, n, 44100.0), KernelBuild::Built);
    for (int side = 0; side < dsp::kSides; ++side) {
        const std::vector<double> taps = activeTaps(d, side, n);
        for (int t = 0; t <= n / 2; ++t) ASSERT_NEAR(taps[t], taps[n - t], 1e-15) << "side " << side << " tap " << t;
        for (int t = n + 1; t < 2 * n; ++t) ASSERT_NEAR(taps[t], 0.0, 1e-15) << "side " << side << " sample " << t;
    }
}

// A peaking band: N·|kernel spectrum| at every bin lies within spectrumBound() of the band's
// |H|², evaluated here from the section's definition; and the bound is small against the
// peak, so the check has teeth.
TEST_F(KernelDesignerTest, SpectrumFollowsTheBandsSquaredMagnitude) {
    const double rate = 44100.0;
    for (int n : {4096, 8192}) {
        SectionSet set;
        set.with(2, peaking(1000, 12, 2, rate)).with(8 + 5, shelf(true, 5000, -6, 0.7, rate));
        KernelDesigner d;
        ASSERT_EQ(build(d, set, n, rate), KernelBuild::Built);
        for (int side = 0; side < dsp::kSides; ++side) {
            const long double bound = spectrumBound(set.s, side, n);
            EXPECT_LT(bound, 0.01L * (side == 0 ? sidePower(set.s, 0, 2 * kPi * 1000 / rate) : 1.0L))
                << "the bound must be far below the response to mean anything";
            const double* spectrum = d.acquireNewest().spectrum(side);
            for (int k = 1; k < n; ++k) {
                const int p = dsp::spectrumPairOfBin(n, k);
                const long double got =
                    n * std::hypot(spectrum[dsp::macLayoutIndex(2 * p)], spectrum[dsp::macLayoutIndex(2 * p + 1)]);
                const long double want = sidePower(set.s, side, kPi * k / n);
                ASSERT_NEAR(static_cast<double>(got), static_cast<double>(want), static_cast<double>(bound) + 1e-12)
                    << "N " << n << " side " << side << " bin " << k;
            }
        }
        // Peak of +24 dB (two sections of +12 dB) at 1 kHz.
        const int k1k = static_cast<int>(std::lround(1000.0 * 2 * n / rate));
        const int p = dsp::spectrumPairOfBin(n, k1k);
        const double* spectrum = d.acquireNewest().spectrum(0);
        EXPECT_NEAR(20 * std::log10(n * std::hypot(spectrum[dsp::macLayoutIndex(2 * p)], spectrum[dsp::macLayoutIndex(2 * p + 1)])),
                    24.0, 0.05);
    }
}

// The measured curve against Σ_b 20·log10 |H_b(f)|² wherever the kernel resolves the response.
// With B the bound on |G − P| (P = Π|H_b|²), the interpolated power |G|² may lie
// 10·log10(1 + B(2P + B)/P²) dB from the truth, plus 1e-3 dB for the interpolation between
// 0.7 Hz bins and float rounding. Deep in a cut (relative error above 1 %) the window's leakage
// is what the curve shows, so those points are skipped.
TEST_F(KernelDesignerTest, DisplayCurveFollowsTheSummedBandCurves) {
    // At N = 32768 the kernel fills the display transform; below it is moved into its layout.
    for (auto [rate, n] : {std::pair{44100.0, 8192}, std::pair{48000.0, 32768}, std::pair{96000.0, 16384}}) {
        SectionSet set;
        set.with(0, shelf(false, 150, 4, 0.7, rate))
            .with(4, peaking(1000, -6, 1.4, rate))
            .with(7, shelf(true, 6000, 3, 0.7, rate))
            .with(8 + 1, peaking(300, 5, 0.7, rate))
            .with(8 + 6, firstOrderLowPass(4000, rate));
        KernelDesigner d;
        KernelCurves curves{};
        ASSERT_EQ(build(d, set, n, rate, true, &curves), KernelBuild::Built);
        for (int side = 0; side < dsp::kSides; ++side) {
            const long double bound = spectrumBound(set.s, side, n);
            int checked = 0;
            for (int i = 0; i < dsp::kPlotPoints; ++i) {
                const long double p = sidePower(set.s, side, 2 * kPi * dsp::plotFrequency(i) / rate);
                const long double relative = bound * (2 * p + bound) / (p * p);
                if (relative > 0.01L) continue;
                ++checked;
                long double sum = 0;
                for (int b = 0; b < dsp::kBandsPerSide; ++b)
                    sum += 20 * std::log10(std::norm(response(set.s[side * 8 + b], 2 * kPi * dsp::plotFrequency(i) / rate)));
                const double tolerance = static_cast<double>(10 * std::log10(1 + relative)) + 1e-3;
                ASSERT_NEAR(curves.side[side][i], static_cast<double>(sum), tolerance)
                    << "rate " << rate << " side " << side << " point " << i << " (" << dsp::plotFrequency(i) << " Hz)";
            }
            // Side B's low-pass leaves only its stopband above ~9 kHz out.
            EXPECT_GT(checked, 350) << "rate " << rate << " side " << side;
        }
    }
}

TEST_F(KernelDesignerTest, LinPhaseOffMakesClearedKernelsActiveAndMeasuresNothing) {
    KernelDesigner d;
    ASSERT_EQ(build(d, SectionSet().with(1, peaking(500, 6, 1, 44100)), 4096, 44100.0), KernelBuild::Built);
    KernelCurves curves;
    for (auto& side : curves.side)
        for (float& v : side) v = 123.0f;
    ASSERT_EQ(build(d, SectionSet().with(1, peaking(500, 6, 1, 44100)), 8192, 44100.0, false, &curves), KernelBuild::Cleared);
    EXPECT_EQ(d.activeFrameSize(), 8192);
    for (int side = 0; side < dsp::kSides; ++side) {
        for (int e = 0; e < 2 * 8192; ++e) ASSERT_EQ(d.acquireNewest().spectrum(side)[e], 0.0);
        for (float v : curves.side[side]) ASSERT_EQ(v, 123.0f);
    }
}

TEST_F(KernelDesignerTest, MultiplyRefusesAFrameSizeWithoutPublishedKernels) {
    KernelDesigner d;
    dsp::AlignedBuffer frame(2 * 8192), other(2 * 8192);
    for (int e = 0; e < 2 * 8192; ++e) frame[e] = other[e] = e;
    EXPECT_FALSE(d.multiplyByNewest(frame.data(), other.data(), 4096)) << "nothing built yet";
    ASSERT_EQ(build(d, SectionSet(), 4096, 44100.0), KernelBuild::Built);
    EXPECT_FALSE(d.multiplyByNewest(frame.data(), other.data(), 8192));
    for (int e = 0; e < 2 * 8192; ++e) {
        ASSERT_EQ(frame[e], e);
        ASSERT_EQ(other[e], e);
    }
    EXPECT_EQ(build(d, SectionSet(), 6000, 44100.0), KernelBuild::Refused);
    EXPECT_EQ(d.activeFrameSize(), 4096);
    EXPECT_FALSE(d.rebuildPending());
}

}  // namespace
