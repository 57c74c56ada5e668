#pragma once
// What the linear-phase convolution of the audio path needs from the plug-in: the transforms
// of the kernel designer and the multiply by the newest kernels it has published. Nothing here
// takes a lock: a kernel build on another thread never holds up the audio thread.

#include "dsp/KernelDesigner.h"
#include "dsp/PathConvolver.h"

class EngineKernelOps final : public dsp::PathConvolutionOps {
public:
    explicit EngineKernelOps(dsp::KernelDesigner& kernels) : kernels_(kernels) {}

    void forward(double* frame, int frameSize) override { kernels_.fft().forward(frame, frameSize); }
    void inverse(double* frame, int frameSize) override { kernels_.fft().inverse(frame, frameSize); }

    // False while the newest kernels were built for another frame size (the hops right after a
    // Resolution or FAT change, until the new ones are published): the convolver then
    // silences the hop rather than convolve with the wrong spectrum.
    bool multiplyByKernels(double* frameA, double* frameB, int frameSize) override {
        return kernels_.multiplyByNewest(frameA, frameB, frameSize);
    }

private:
    dsp::KernelDesigner& kernels_;
};
