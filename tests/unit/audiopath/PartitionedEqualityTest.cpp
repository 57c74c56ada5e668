// The partitioned convolver against the reference block convolution: every plan shape
// (uniform, uniform with a hop that is no power of two, head and tail), convolution hops
// longer than the hop (the reference's output then Hc − H samples later), kernel swaps at
// random moments (several in one convolution hop, one in consecutive hops, one while the tail
// gathers), sets that do not fit, and every multiply-accumulate family: the outputs agree
// within 1e-9 at every sample. Then the same through the whole audio path in host blocks of
// random length, float and double buffers, left/right and mid/side. (The other linear paths
// run the same convolver on their inner samples between the rate converters.)

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>
#include <utility>

#include "dsp/AudioEngine.h"
#include "support/PublishedKernels.h"
#include "support/ReferenceConvolver.h"
#include "unit/fft/FftTestSupport.h"

namespace {

using testsupport::PublishedKernels;
using testsupport::ReferenceConvolver;
using testsupport::ReferenceKernels;

// A random symmetric kernel of N + 1 taps with a gain of about one.
std::vector<double> randomKernel(int n, std::mt19937& rng) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> g(n + 1);
    for (int k = 0; k <= n / 2; ++k) g[k] = g[n - k] = u(rng) / std::sqrt(n + 1.0);
    return g;
}

// The reference's outputs, read `lateBy` samples after it gave them.
class LateReference {
public:
    LateReference(int n, int hop, int lateBy) : reference_(n, hop), lateBy_(lateBy) {}
    int delay() const { return reference_.delay() + lateBy_; }
    void process(double& a, double& b, const ReferenceKernels& kernels) {
        reference_.process(a, b, kernels);
        given_.push_back({a, b});
        const size_t at = given_.size() - 1;
        a = at >= static_cast<size_t>(lateBy_) ? given_[at - lateBy_][0] : 0.0;
        b = at >= static_cast<size_t>(lateBy_) ? given_[at - lateBy_][1] : 0.0;
    }

private:
    ReferenceConvolver reference_;
    int lateBy_;
    std::vector<std::array<double, 2>> given_;
};

const struct Case {
    int n, hop, convolutionHop;
    bool tail;  // whether the plan has a tail
} kCases[] = {
    {64, 64, 64, false},      {64, 16, 16, false},      {64, 7, 7, false},         {64, 1, 1, true},
    {256, 3, 3, true},        {1024, 1000, 1000, false}, {4096, 512, 512, false},  {4096, 37, 37, true},
    {4096, 16, 16, true},     {64, 1, 16, false},        {64, 3, 24, false},       {4096, 4, 16, true},
    {4096, 64, 2048, false},  {16384, 512, 4096, false},
};

TEST(PartitionedConvolver, EqualsTheReferenceBlockConvolutionAcrossKernelSwaps) {
    for (const Case& c : kCases)
        for (dsp::MacFamily family : {dsp::MacFamily::Plain, dsp::MacFamily::Sse2, dsp::MacFamily::Avx2Fma,
                                         dsp::MacFamily::Avx512}) {
            SCOPED_TRACE("N " + std::to_string(c.n) + ", hop " + std::to_string(c.hop) + ", convolution hop " +
                         std::to_string(c.convolutionHop) + ", family " + std::to_string(static_cast<int>(family)));
            dsp::PathConvolver convolver(c.n, family);
            convolver.configure(c.n, c.hop, c.convolutionHop);
            const dsp::PartitionPlan plan = convolver.plan();
            ASSERT_EQ(plan.hop, c.convolutionHop);
            ASSERT_EQ(plan.hasTail(), c.tail);
            LateReference reference(c.n, c.hop, c.convolutionHop - c.hop);
            ASSERT_EQ(convolver.delay(), reference.delay());

            std::mt19937 rng(c.n * 131 + c.hop + c.convolutionHop);
            PublishedKernels published(c.n);
            ReferenceKernels kernels(c.n);
            const auto swap = [&] {
                if (rng() % 8 == 0) {
                    published.publishMismatch(plan);
                    kernels.silenced = true;
                } else {
                    const auto a = randomKernel(c.n, rng), b = randomKernel(c.n, rng);
                    published.publish(plan, a, b);
                    kernels.set(a, b);
                }
            };
            swap();
            const int length = 8 * c.n + 40 * plan.hop + 8 * plan.tailLength();
            const auto xa = fft_test::randomSignal(length, 1), xb = fft_test::randomSignal(length, 2);
            // Mostly a few hops apart; now and then long enough for every partition to be in use.
            std::uniform_int_distribution<int> soon(0, 3 * c.hop), late(0, 2 * c.n + 4 * plan.tailLength() + plan.hop);
            const auto nextSwap = [&](std::mt19937& r) { return r() % 4 ? soon(r) : late(r); };
            int swapAt = nextSwap(rng);
            for (int i = 0; i < length; ++i) {
                while (i == swapAt) {
                    swap();
                    swapAt += nextSwap(rng);
                }
                double a = xa[i], b = xb[i], ra = xa[i], rb = xb[i];
                convolver.process(a, b, published);
                reference.process(ra, rb, kernels);
                ASSERT_NEAR(a, ra, 1e-9) << "sample " << i;
                ASSERT_NEAR(b, rb, 1e-9) << "sample " << i;
            }
        }
}

// The engine's linear ×1 path: encode, convolve, the decode factor, decode; with the output
// gain at 1, nothing muted and no compensation delay, nothing else touches the samples.
// A convolution hop longer than the hop delays by the difference; with no compensation delay
// to shorten, the path is that much later than the reference.
template <typename Sample>
void engineMatchesReference(bool midSide, int n, int hop, int convolutionHop, uint32_t seed) {
    SCOPED_TRACE(std::string(sizeof(Sample) == 4 ? "float" : "double") + (midSide ? " mid/side" : " left/right") +
                 " N " + std::to_string(n) + " hop " + std::to_string(hop) + " convolution hop " +
                 std::to_string(convolutionHop));
    const int rate = 44100;
    dsp::AudioEngine engine;
    engine.setFrame(n, hop, convolutionHop);
    engine.setHostRate(rate);
    engine.suspend();
    const dsp::AudioBlockSettings settings{.hostRate = rate, .midSide = midSide};
    const dsp::PartitionPlan plan = dsp::PartitionPlan::forFrame(n, convolutionHop);
    PublishedKernels published(dsp::PathConvolver::kMaxFrameSize);
    ReferenceKernels kernels(n);
    LateReference reference(n, hop, convolutionHop - hop);
    std::mt19937 rng(seed);
    const auto swap = [&] {
        const auto a = randomKernel(n, rng), b = randomKernel(n, rng);
        published.publish(plan, a, b);
        kernels.set(a, b);
    };
    swap();

    const int length = 6 * n;
    const auto l = fft_test::randomSignal(length, seed + 1), r = fft_test::randomSignal(length, seed + 2);
    std::vector<Sample> in[2] = {std::vector<Sample>(l.begin(), l.end()), std::vector<Sample>(r.begin(), r.end())};
    std::vector<Sample> out[2] = {std::vector<Sample>(length), std::vector<Sample>(length)};
    const double m = midSide ? 1.0 : 0.0, h = midSide ? 0.5 : 1.0;
    // One output step of a float buffer, or 1e-9 of full scale for double buffers.
    const double tolerance = sizeof(Sample) == 4 ? 1.2e-7 : 1e-9;
    std::uniform_int_distribution<int> blockLength(1, 700);
    for (int start = 0; start < length;) {
        const int frames = std::min(blockLength(rng), length - start);
        if (rng() % 3 == 0) swap();
        Sample* inputs[2] = {in[0].data() + start, in[1].data() + start};
        Sample* outputs[2] = {out[0].data() + start, out[1].data() + start};
        engine.process(inputs, outputs, frames, true, true, settings, [](int) { return dsp::BiquadCoefficients{}; },
                       published, [](float) {});
        for (int i = start; i < start + frames; ++i) {
            const double xl = in[0][i], xr = in[1][i];
            double a = xl + m * xr, b = xr - m * xl;
            reference.process(a, b, kernels);
            a *= h, b *= h;
            ASSERT_NEAR(out[0][i], static_cast<Sample>(a - m * b), tolerance) << "sample " << i;
            ASSERT_NEAR(out[1][i], static_cast<Sample>(b + m * a), tolerance) << "sample " << i;
        }
        start += frames;
    }
}

TEST(PartitionedConvolver, TheAudioPathEqualsTheReferenceInHostBlocksOfAnyLength) {
    const struct {
        int n, hop, convolutionHop;
    } frames[] = {{4096, 512, 512}, {4096, 37, 37}, {8192, 64, 64}, {4096, 64, 2048}, {16384, 512, 4096}};
    for (bool midSide : {false, true})
        for (const auto& f : frames) {
            engineMatchesReference<float>(midSide, f.n, f.hop, f.convolutionHop, 7 + f.hop);
            engineMatchesReference<double>(midSide, f.n, f.hop, f.convolutionHop, 9 + f.hop);
        }
}

}  // namespace
