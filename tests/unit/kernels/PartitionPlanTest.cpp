// The partitions of every hop at every frame size: they cover the kernel's N + 1 taps exactly,
// each product of a block and a partition fits its transform without wrapping round, and the
// spectra fit the buffers sized for them.

#include <gtest/gtest.h>

#include "dsp/PartitionPlan.h"

namespace {

TEST(PartitionPlan, EveryHopCoversTheKernelAndFitsItsTransformsAndBuffers) {
    for (int n : {16, 64, 4096, 32768}) {
        for (int hop = 1; hop <= n; ++hop) {
            const dsp::PartitionPlan p = dsp::PartitionPlan::forFrame(n, hop);
            SCOPED_TRACE("N " + std::to_string(n) + " hop " + std::to_string(hop));
            ASSERT_EQ(p.frameSize, n);
            ASSERT_EQ(p.hop, hop);
            ASSERT_LE(p.spectrumDoubles(), dsp::PartitionPlan::maxSpectrumDoubles(n));
            ASSERT_GE(p.headHalf, std::max(hop, 4));
            ASSERT_LE(p.headHalf, std::max(n, 4));
            // The head ends where the tail begins, or at tap N; its last partition may hold one
            // tap more than the others (a block of H times H + 1 taps is 2H ≤ 2M samples).
            const int headTaps = p.hasTail() ? p.tailLength() : n + 1;
            const int lastHead = headTaps - (p.headCount - 1) * hop;
            ASSERT_GE(lastHead, 1);
            ASSERT_LE(lastHead, hop + (p.hasTail() ? 0 : 1));
            if (!p.hasTail()) continue;
            const int length = p.tailLength();
            ASSERT_EQ(p.headCount, p.tailHops);
            ASSERT_LE(length, n / 2);
            ASSERT_GE(p.tailHalf, length);
            ASSERT_LE(p.tailHalf, n);
            const int lastTail = (n + 1 - length) - (p.tailCount - 1) * length;
            ASSERT_GE(lastTail, 1);
            ASSERT_LE(lastTail, length + 1);
        }
    }
}

}  // namespace
