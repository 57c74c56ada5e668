// The buffer rule for mid/side, the output gain smoother and the band audition filter (the
// mid/side matrix, listen and the peak holds are measured through the whole path, in
// AudioEngineTest).

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

#include "dsp/AuditionFilter.h"
#include "dsp/GainSmoother.h"
#include "dsp/MidSide.h"

namespace {

constexpr double kPi = std::numbers::pi;

TEST(MidSide, NeedsTwoConnectedDistinctBuffersEachWay) {
    float l[4] = {}, r[4] = {}, ol[4] = {}, orr[4] = {};
    float* in[2] = {l, r};
    float* out[2] = {ol, orr};
    float* same[2] = {l, l};
    float* missing[2] = {l, nullptr};
    using Buffers = dsp::ChannelBuffers<float>;
    EXPECT_TRUE(Buffers::resolve(in, out, true, true).stereo);
    const Buffers monoIn = Buffers::resolve(in, out, false, true);  // input 0 feeds both sides
    EXPECT_FALSE(monoIn.stereo);
    EXPECT_EQ(monoIn.in[1], l);
    const Buffers monoOut = Buffers::resolve(in, out, true, false);
    EXPECT_FALSE(monoOut.stereo);
    EXPECT_EQ(monoOut.out[1], ol);
    EXPECT_FALSE(Buffers::resolve(same, out, true, true).stereo);
    EXPECT_EQ(Buffers::resolve(missing, out, true, true).in[1], l);
    // Switched on but not stereo: plain left/right.
    const dsp::MidSide ms = dsp::MidSide::choose(true, false);
    EXPECT_EQ(ms.m, 0.0);
    EXPECT_EQ(ms.h, 1.0);
}

TEST(GainSmoother, GlidesToItsTargetWithoutStepsAndFadesOutWithoutDenormals) {
    for (double rate : {44100.0, 192000.0}) {
        dsp::GainSmoother g(rate);
        const double k = g.coefficient();
        g.setTarget(dsp::GainSmoother::targetFromParameter(1.0));
        EXPECT_NEAR(20.0 * std::log10(g.target()), 12.0, 1e-12);  // the Output parameter's top
        const double delta = g.target() - g.current();
        double previous = g.current(), largestStep = 0.0;
        int toOneOverE = -1;
        for (int n = 1; n <= static_cast<int>(rate); ++n) {
            const double v = g.next();
            ASSERT_GE(v, previous);
            largestStep = std::max(largestStep, v - previous);
            if (toOneOverE < 0 && g.target() - v < delta / std::numbers::e) toOneOverE = n;
            previous = v;
        }
        EXPECT_LE(largestStep, k * delta * (1.0 + 1e-12));
        EXPECT_NEAR(g.current(), g.target(), 1e-12);
        EXPECT_NEAR(toOneOverE, rate / (2.0 * kPi * 30.0), 2.0);  // a 30 Hz one-pole

        g.setTarget(0.0);  // the flush holds a fade-out at a few 1e-44, far from denormals
        for (int n = 0; n < 200000; ++n) {
            const double v = g.next();
            ASSERT_TRUE(v == 0.0 || std::fpclassify(v) == FP_NORMAL) << n;
        }
        EXPECT_LT(g.current(), 1e-40);
        g.setTarget(0.7);
        g.jumpToTarget();
        EXPECT_EQ(g.next(), 0.7);
    }
}

double magnitudeAt(const std::vector<double>& h, double w) {
    std::complex<double> s = 0.0;
    for (size_t n = 0; n < h.size(); ++n) s += h[n] * std::polar(1.0, -w * static_cast<double>(n));
    return std::abs(s);
}

TEST(AuditionFilter, PeaksAtTheBandFrequencyWithTheLevelsGain) {
    const double rate = 48000.0, level = 0.25;
    for (double f : {100.0, 1000.0, 8000.0}) {
        for (double width : {0.0, 1.0}) {
            dsp::AuditionFilter filter;
            filter.setSection(dsp::AuditionSection::design(f, width, level, rate));
            std::vector<double> h(32768);
            for (size_t n = 0; n < h.size(); ++n) h[n] = filter.process<double>(0, n == 0 ? 1.0 : 0.0);
            double bestF = 0.0, best = 0.0;  // the loudest of ±1/4 octave in 1/200-octave steps
            for (int i = -50; i <= 50; ++i) {
                const double fi = f * std::pow(2.0, i / 200.0), m = magnitudeAt(h, 2.0 * kPi * fi / rate);
                if (m > best) best = m, bestF = fi;
            }
            EXPECT_NEAR(std::log2(bestF / f), 0.0, 0.02) << f << " Hz, width " << width;
            // The zero sits at DC only, so the centre gain is 2^(4·level) times
            // |1 − e^−jw| / |1 − e^−2jw| = 1 / (2·cos(w/2)).
            const double w = 2.0 * kPi * f / rate;
            EXPECT_NEAR(best * 2.0 * std::cos(w / 2.0) / std::pow(2.0, 4.0 * level), 1.0, 0.01) << f;
            EXPECT_LT(magnitudeAt(h, w / 8.0), best / 4.0);  // a band-pass
            EXPECT_LT(magnitudeAt(h, std::min(8.0 * w, 2.0 * kPi * 0.48)), best / 3.0);
        }
    }
}

TEST(AuditionFilter, OffIsAWireAndTheFloatVariantRoundsEveryResult) {
    dsp::AuditionFilter f;
    f.setSection(dsp::AuditionSection::off());
    EXPECT_FALSE(f.active());
    for (double x : {0.5, -0.25, 1e-3}) EXPECT_EQ(f.process<double>(1, x), x);
    dsp::AuditionHandoff handoff;
    handoff.publish(dsp::AuditionSection::design(440.0, 0.3, 0.7, 44100.0));
    f.setSection(handoff.read());
    EXPECT_TRUE(f.active());
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int n = 0; n < 1000; ++n) {
        const double y = f.process<float>(0, u(rng));
        ASSERT_EQ(static_cast<double>(static_cast<float>(y)), y);
    }
}

}  // namespace
