#pragma once
// How the linear-phase kernel (N + 1 taps) is cut into partitions for the partitioned
// convolution, given the hop H in which input arrives.
//
// Head: partitions of H taps, each convolved with every input block of H samples through
// transforms of 2M points (M the power of two ≥ H, at least 4; a block times a partition of up to H + 1
// taps is at most 2H ≤ 2M samples long, so the circular product never wraps). Where N/H is
// large, a tail takes over from offset L = k·H: partitions of L taps convolved with blocks of
// k hops through transforms of 2·M2 points (M2 the power of two ≥ L). Without a tail the head
// runs to tap N; the last partition of either part may hold one tap more than the others,
// which is how tap N fits without a partition of its own.
//
// The tail's products of a block of k hops reach the output no earlier than L samples after
// the block began, that is one hop after the block completes, so computing them when it
// completes is in time.

#include <cstddef>

namespace dsp {

// The smallest power of two ≥ v (1 for v ≤ 1).
constexpr size_t powerOfTwoAtLeast(size_t v) {
    size_t p = 1;
    while (p < v) p *= 2;
    return p;
}

struct PartitionPlan {
    int frameSize = 0;  // N: the kernel has N + 1 taps
    int hop = 0;        // H: input block and head partition length
    int headHalf = 0;   // M
    int headCount = 0;
    int tailHops = 0;   // k; 0 when there is no tail
    int tailHalf = 0;   // M2
    int tailCount = 0;

    // The plan for kernels of N + 1 taps (N a power of two) and input hops of H (1..N).
    static PartitionPlan forFrame(int frameSize, int hop);
    // The same without a tail: every partition H taps long.
    static PartitionPlan uniform(int frameSize, int hop);
    // An upper bound of spectrumDoubles() over every hop, for kernels of N + 1 taps.
    static size_t maxSpectrumDoubles(int maxFrameSize) { return 4 * static_cast<size_t>(maxFrameSize) + 16; }

    bool hasTail() const { return tailHops > 0; }
    // Estimated work per input sample of one side, in complex multiply-accumulates of one bin.
    double workPerSample() const;
    int tailLength() const { return tailHops * hop; }  // L
    // Doubles of one partition's spectrum, and of all head or tail partitions of one side.
    size_t headPartitionDoubles() const { return 2 * static_cast<size_t>(headHalf); }
    size_t tailPartitionDoubles() const { return 2 * static_cast<size_t>(tailHalf); }
    size_t headDoubles() const { return headCount * headPartitionDoubles(); }
    size_t tailDoubles() const { return tailCount * tailPartitionDoubles(); }
    size_t spectrumDoubles() const { return headDoubles() + tailDoubles(); }

    bool operator==(const PartitionPlan&) const = default;
};

}  // namespace dsp
