#pragma once
// Kernel sets for the partitioned convolver, from kernels given tap by tap, handed over the
// way the plug-in hands them: through a KernelSetExchange.

#include <vector>

#include "dsp/AlignedBuffer.h"
#include "dsp/FftLayout.h"
#include "dsp/KernelSetExchange.h"
#include "dsp/PartitionSpectra.h"
#include "dsp/PathConvolver.h"

namespace testsupport {

class PublishedKernels final : public dsp::PathConvolutionOps {
public:
    explicit PublishedKernels(int maxFrameSize) : sets_(maxFrameSize), taps_(2 * static_cast<size_t>(maxFrameSize)) {}

    // Both sides' N + 1 taps (a shorter vector is padded with zeros), cut for the plan.
    void publish(const dsp::PartitionPlan& plan, const std::vector<double>& a, const std::vector<double>& b) {
        dsp::KernelSet& set = sets_.back();
        set.setPlan(plan);
        for (int side = 0; side < 2; ++side) {
            const std::vector<double>& g = side ? b : a;
            taps_.clear();
            for (int t = 0; t <= plan.frameSize && t < static_cast<int>(g.size()); ++t)
                taps_[dsp::sampleEntry(plan.frameSize, t)] = g[t];
            dsp::partitionKernel(taps_.data(), plan, fft_, set.spectrum(side));
        }
        sets_.publish();
    }
    // The kernel of a path with every band bypassed: one tap at N/2 on both sides.
    void publishCentreTap(const dsp::PartitionPlan& plan) {
        std::vector<double> g(plan.frameSize + 1, 0.0);
        g[plan.frameSize / 2] = 1.0;
        publish(plan, g, g);
    }
    // A set of another plan, which the convolver must not use.
    void publishMismatch(const dsp::PartitionPlan& plan) {
        sets_.back().setPlan(dsp::PartitionPlan::uniform(plan.frameSize, plan.hop == 1 ? 2 : plan.hop - 1));
        sets_.publish();
    }

    bool newerKernelsWaiting() override { return sets_.newerWaiting(); }
    const dsp::KernelSet& takeNewestKernels() override { return sets_.acquire(); }

private:
    dsp::KernelSetExchange sets_;
    dsp::AlignedBuffer taps_;
    dsp::Fft fft_;
};

}  // namespace testsupport
