#include "dsp/PartitionPlan.h"

#include <algorithm>
#include <cmath>

#include "dsp/FftLayout.h"

namespace dsp {
namespace {

// M for blocks of `length` samples: the power of two ≥ length, and at least 4, because the
// multiply-accumulate works on runs of four bins.
int halfFor(int length) { return std::max(4, static_cast<int>(powerOfTwoAtLeast(static_cast<size_t>(length)))); }

int ceilDiv(int a, int b) { return (a + b - 1) / b; }

// Relative cost of one transform of 2M points against one complex multiply-accumulate of one
// bin (measured on AVX2: a transform of 2M points takes about as long as M·log2(2M)/2 bins
// of multiply-accumulate).
constexpr double kTransformPerBinLog = 0.5;

double transformCost(int m) { return kTransformPerBinLog * m * std::log2(2.0 * m); }

// Work per input sample of one side: the block transform, the products with every partition
// and the inverse of one accumulated spectrum, spread over the samples of the block.
double costPerSample(int blockLength, int half, int partitions) {
    return (2.0 * transformCost(half) + partitions * (half + 1.0)) / blockLength;
}

}  // namespace

double PartitionPlan::workPerSample() const {
    const double head = costPerSample(hop, headHalf, headCount);
    return hasTail() ? head + costPerSample(tailLength(), tailHalf, tailCount) : head;
}

PartitionPlan PartitionPlan::uniform(int frameSize, int hop) {
    PartitionPlan plan;
    plan.frameSize = frameSize;
    plan.hop = std::clamp(hop, 1, frameSize);
    plan.headHalf = halfFor(plan.hop);
    plan.headCount = ceilDiv(frameSize, plan.hop);
    return plan;
}

// The tail length is chosen among the powers of two times H by the estimated work per sample;
// a tail is used only where it saves work.
PartitionPlan PartitionPlan::forFrame(int frameSize, int hop) {
    PartitionPlan best = uniform(frameSize, hop);
    const int h = best.hop;
    double bestCost = costPerSample(h, best.headHalf, best.headCount);
    for (int k = 2; static_cast<long>(k) * h <= frameSize / 2; k *= 2) {
        const int length = k * h;
        const int half = halfFor(length);
        if (half > kMaxFftSize) break;
        const int tailCount = ceilDiv(frameSize - length, length);
        const double cost = costPerSample(h, best.headHalf, k) + costPerSample(length, half, tailCount);
        if (cost < bestCost) {
            bestCost = cost;
            best.headCount = k;
            best.tailHops = k;
            best.tailHalf = half;
            best.tailCount = tailCount;
        }
    }
    return best;
}

}  // namespace dsp
