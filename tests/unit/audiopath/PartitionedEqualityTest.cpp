// The partitioned convolver against the reference block convolution: every plan shape
// (uniform, uniform with a hop that is no power of two, head and tail), kernel swaps at random
// moments (several in one hop, one in consecutive hops, one while the tail gathers), sets that
// do not fit, and every multiply-accumulate family: the outputs agree within 1e-9 at every
// sample.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

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

const struct Case {
    int n, hop;
    bool tail;  // whether the plan has a tail
} kCases[] = {
    {64, 64, false}, {64, 16, false}, {64, 7, false}, {64, 1, true},  {256, 3, true},
    {1024, 1000, false}, {4096, 512, false}, {4096, 37, true}, {4096, 16, true},
};

TEST(PartitionedConvolver, EqualsTheReferenceBlockConvolutionAcrossKernelSwaps) {
    for (const Case& c : kCases)
        for (dsp::MacFamily family : {dsp::MacFamily::Plain, dsp::MacFamily::Sse2, dsp::MacFamily::Avx2Fma}) {
            SCOPED_TRACE("N " + std::to_string(c.n) + ", hop " + std::to_string(c.hop) + ", family " +
                         std::to_string(static_cast<int>(family)));
            dsp::PathConvolver convolver(c.n, family);
            convolver.configure(c.n, c.hop);
            const dsp::PartitionPlan plan = convolver.plan();
            ASSERT_EQ(plan.hasTail(), c.tail);
            ReferenceConvolver reference(c.n, c.hop);
            ASSERT_EQ(convolver.delay(), reference.delay());

            std::mt19937 rng(c.n * 131 + c.hop);
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
            const int length = 8 * c.n + 40 * c.hop + 8 * plan.tailLength();
            const auto xa = fft_test::randomSignal(length, 1), xb = fft_test::randomSignal(length, 2);
            // Mostly a few hops apart; now and then long enough for every partition to be in use.
            std::uniform_int_distribution<int> soon(0, 3 * c.hop), late(0, 2 * c.n + 4 * plan.tailLength());
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

}  // namespace
