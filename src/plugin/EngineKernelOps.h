#pragma once
// What the linear-phase convolution of the audio path needs from the plug-in: the transforms
// of the kernel designer and the multiply by its active kernel. The multiply holds the engine
// lock, the one the kernel swap takes, so a block is never convolved with a half-swapped pair.
// This is the only place where the audio thread may wait.

#include "dsp/KernelDesigner.h"
#include "dsp/PathConvolver.h"
#include "platform/TimedLock.h"

class EngineKernelOps final : public dsp::PathConvolutionOps {
public:
    EngineKernelOps(const dsp::KernelDesigner& kernels, platform::TimedLock& engineLock,
                    int lockWaitMs = platform::TimedLock::kDefaultWaitMs)
        : kernels_(kernels), engineLock_(engineLock), lockWaitMs_(lockWaitMs) {}

    void forward(double* frame, int frameSize) override { kernels_.fft().forward(frame, frameSize); }
    void inverse(double* frame, int frameSize) override { kernels_.fft().inverse(frame, frameSize); }

    // False when the wait for the lock ran out, or when the active kernel was built for another
    // frame size (the block or two right after a Resolution or FAT change): the convolver then
    // silences the block rather than convolve with the wrong spectrum.
    bool multiplyByKernel(int side, double* frame, int frameSize) override {
        platform::TimedLock::Guard guard(engineLock_, lockWaitMs_);
        if (!guard || kernels_.activeFrameSize() != frameSize) return false;
        return kernels_.multiplyByActiveKernel(side, frame, frameSize);
    }

private:
    const dsp::KernelDesigner& kernels_;
    platform::TimedLock& engineLock_;
    int lockWaitMs_;
};
