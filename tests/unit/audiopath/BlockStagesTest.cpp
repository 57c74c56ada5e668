// The block convolution's bookkeeping, the compensation delay, the mid/side buffer rule and the
// output gain smoother.

#include <gtest/gtest.h>

#include "AudioTestSupport.h"
#include "dsp/CompensationDelay.h"
#include "dsp/GainSmoother.h"
#include "dsp/MidSide.h"
#include "dsp/PathConvolver.h"
#include "support/PublishedKernels.h"

namespace {

using namespace audiotest;

std::vector<double> symmetricKernel(int n, unsigned seed) {
    std::vector<double> g = randomSignal(n + 1, seed);
    for (int k = 0; k <= n / 2; ++k) g[n - k] = g[k];
    return g;
}

TEST(PathConvolver, GivesEachSidesLinearConvolutionHopMinusOneSamplesLate) {
    const int n = 32;
    for (int hop : {32, 16, 7, 1}) {
        const auto ga = symmetricKernel(n, 1), gb = symmetricKernel(n, 2);
        dsp::PathConvolver c(64);
        c.configure(n, hop);
        testsupport::PublishedKernels kernels(64);
        kernels.publish(c.plan(), ga, gb);
        EXPECT_EQ(c.delay(), hop + n / 2 - 1);  // hop − 1, plus the kernel's centre
        const auto xa = randomSignal(300, 10 + hop), xb = randomSignal(300, 20 + hop);
        for (int i = 0; i < 300; ++i) {
            double a = xa[i], b = xb[i], ea = 0.0, eb = 0.0;
            c.process(a, b, kernels);
            for (int k = 0, m = i - (hop - 1); k <= n && m - k >= 0; ++k) ea += ga[k] * xa[m - k], eb += gb[k] * xb[m - k];
            ASSERT_NEAR(a, ea, 1e-12) << "hop " << hop << " at " << i;
            ASSERT_NEAR(b, eb, 1e-12) << "hop " << hop << " at " << i;
        }
    }
}

TEST(PathConvolver, AKernelSetOfAnotherPlanSilencesTheBlocksWhileHeld) {
    const int n = 16, hop = 8;
    dsp::PathConvolver c(16);
    c.configure(n, hop);
    testsupport::PublishedKernels kernels(16);
    kernels.publishCentreTap(c.plan());
    const int d = c.delay();
    for (int i = 0; i < 200; ++i) {
        if (i == 7 * hop) kernels.publishMismatch(c.plan());  // held for the block of inputs 56..63
        if (i == 8 * hop) kernels.publishCentreTap(c.plan());
        double a = 1.0, b = 1.0;
        c.process(a, b, kernels);
        const bool lost = i - d >= 7 * hop && i - d < 8 * hop;
        ASSERT_NEAR(a, i < d || lost ? 0.0 : 1.0, 1e-12) << i;
        ASSERT_NEAR(b, a, 1e-12) << i;
    }
    EXPECT_EQ(c.silencedBlocks(), 1u);
}

// Feeds +1 on side A at 0 and −1 on side B at 2; where each comes out (−1: never, −2: more
// than once or altered).
std::pair<int, int> echoes(dsp::CompensationDelay& d, int length) {
    int atA = -1, atB = -1;
    for (int n = 0; n < length; ++n) {
        const dsp::PlainPair y = d.process(dsp::PlainPair::make(n == 0 ? 1.0 : 0.0, n == 2 ? -1.0 : 0.0));
        const double a = y.a(), b = y.b();
        if (a != 0.0) atA = (atA == -1 && a == 1.0) ? n : -2;
        if (b != 0.0) atB = (atB == -1 && b == -1.0) ? n : -2;
    }
    return {atA, atB};
}

TEST(CompensationDelay, DelaysBothSidesByExactlyDAndSettlesWhenShortened) {
    dsp::CompensationDelay d;
    EXPECT_EQ(d.maxDelay(), 98554);
    for (int delay : {0, 1, 2, 63, 2559, 24638, 98554}) {
        d.clear();
        d.setDelay(delay);
        EXPECT_EQ(echoes(d, delay + 10), std::make_pair(delay, delay + 2));
    }
    d.setDelay(200000);
    EXPECT_EQ(d.delay(), 98554);
    d.setDelay(-1);
    EXPECT_EQ(d.delay(), 0);

    dsp::CompensationDelay shorter(1000);
    shorter.setDelay(900);
    for (int n = 0; n < 950; ++n) shorter.process(dsp::PlainPair::make(0.5, 0.25));  // index beyond the new, shorter ring
    shorter.setDelay(10);
    for (int n = 0; n < 11; ++n) shorter.process(dsp::PlainPair::zero());
    EXPECT_EQ(echoes(shorter, 30), std::make_pair(10, 12));
}

TEST(CompensationDelay, BlockCallMatchesOneSampleCallsThroughDelayChanges) {
    // Each row: delay, then the block lengths run with it (lengths past the ring, runs that
    // end on its last entry, a delay shortened below the index, zero delay after a long one).
    const std::vector<std::pair<int, std::vector<int>>> steps = {
        {5, {1, 4, 5, 6, 17}}, {300, {512, 37, 300}}, {2, {3, 1, 1, 64}}, {0, {7, 1}},
        {40, {41, 39, 1}},     {1, {2, 9}},           {0, {1, 33}},       {77, {100, 200}}};
    dsp::CompensationDelay block(400), single(400);
    const std::vector<double> signal = randomSignal(20000, 31);
    size_t at = 0;
    for (const auto& [delay, lengths] : steps) {
        block.setDelay(delay);
        single.setDelay(delay);
        for (int length : lengths) {
            const double* in = signal.data() + at;
            std::vector<double> pairs(in, in + 2 * length);
            at += 2 * length;
            block.processBlock(pairs.data(), length);
            for (int n = 0; n < length; ++n) {
                const dsp::PlainPair y = single.process(dsp::PlainPair::make(in[2 * n], in[2 * n + 1]));
                ASSERT_EQ(pairs[2 * n], y.a()) << "delay " << delay << " length " << length << " sample " << n;
                ASSERT_EQ(pairs[2 * n + 1], y.b()) << "delay " << delay << " length " << length << " sample " << n;
            }
        }
    }
}

TEST(MidSide, NeedsTwoConnectedDistinctBuffersEachWay) {
    float l[4] = {}, r[4] = {}, ol[4] = {}, orr[4] = {};
    float *in[2] = {l, r}, *out[2] = {ol, orr}, *same[2] = {l, l}, *missing[2] = {l, nullptr};
    using Buffers = dsp::ChannelBuffers<float>;
    EXPECT_TRUE(Buffers::resolve(in, out, true, true).stereo);
    const Buffers monoOut = Buffers::resolve(in, out, true, false);
    EXPECT_FALSE(monoOut.stereo);
    EXPECT_EQ(monoOut.out[1], ol);
    EXPECT_FALSE(Buffers::resolve(same, out, true, true).stereo);
    EXPECT_EQ(Buffers::resolve(missing, out, true, true).in[1], l);
}

// The step bound and monotony of the glide are checked through the engine's output.
TEST(GainSmoother, GlidesAt30HzAtEveryRateAndFadesOutWithoutDenormals) {
    for (double rate : {44100.0, 192000.0}) {
        dsp::GainSmoother g(rate);
        g.setTarget(dsp::GainSmoother::targetFromParameter(1.0));
        EXPECT_NEAR(20.0 * std::log10(g.target()), 12.0, 1e-12);  // the Output parameter's top
        const double delta = g.target() - g.current();
        int toOneOverE = -1;
        for (int n = 1; n <= static_cast<int>(rate); ++n)
            if (g.target() - g.next() < delta / std::numbers::e && toOneOverE < 0) toOneOverE = n;
        EXPECT_NEAR(g.current(), g.target(), 1e-12);
        EXPECT_NEAR(toOneOverE, rate / (2.0 * kPi * 30.0), 2.0);  // a 30 Hz one-pole

        g.setTarget(0.0);
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

}  // namespace
