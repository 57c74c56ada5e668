#pragma once
// Where the linear-phase convolution of the audio path takes its kernels from: the newest set
// the kernel designer has published. Nothing here takes a lock: a kernel build on another
// thread never holds up the audio thread.

#include "dsp/KernelDesigner.h"
#include "dsp/PathConvolver.h"

class EngineKernelOps final : public dsp::PathConvolutionOps {
public:
    explicit EngineKernelOps(dsp::KernelDesigner& kernels) : kernels_(kernels) {}

    bool newerKernelsWaiting() override { return kernels_.newerWaiting(); }
    // A set of another plan (the hops right after a Resolution, FAT or block size change, until
    // the new one is published) silences those hops rather than convolve with the wrong one.
    const dsp::KernelSet& takeNewestKernels() override { return kernels_.acquireNewest(); }

private:
    dsp::KernelDesigner& kernels_;
};
