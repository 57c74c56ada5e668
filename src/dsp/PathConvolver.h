#pragma once
// The linear-phase equalizer of both sides: uniform block convolution of the incoming signal
// with each side's kernel (N + 1 symmetric taps, centre at N/2) by overlap-add over frames of
// 2N samples.
//
// Per sample, each side's input is appended to its frame in the half-interleaved layout
// (sample t at entry 2t, entry 2t + 1 — sample N + t — zero). When a hop of samples has
// gathered, the rest of the frame is cleared, the frame is transformed, multiplied by the
// side's kernel spectrum, and transformed back: the linear convolution of the hop with the
// kernel, hop + N samples, which fits the 2N-sample circular frame without wrapping. Its
// first hop samples plus the tails of earlier blocks are the next hop of output; its last N
// samples are added into the overlap. The first output sample of a block leaves with the
// block's last input sample, so the path delays by hop + N/2 − 1 samples.
//
// Buffers are allocated once, for the largest frame; process() allocates nothing, does no I/O
// and never waits: the owner's multiply reads the newest kernels published to it.

#include <cstdlib>
#include <memory>
#include <vector>

namespace dsp {

// What the convolver needs from its owner: the transforms and the multiply by the kernel
// spectra. Each call names the frame size N the convolver is running with, which may for a
// block or two still be the previous one after a reconfiguration.
class PathConvolutionOps {
public:
    virtual ~PathConvolutionOps() = default;
    // Half-interleaved time signal of 2N samples → packed spectrum, in place.
    virtual void forward(double* frame, int frameSize) = 0;
    // Packed spectrum → half-interleaved time signal, in place.
    virtual void inverse(double* frame, int frameSize) = 0;
    // Each side's frame ← frame · that side's kernel spectrum, both from the newest complete
    // kernel set, taken once per hop. Never waits. False (frames untouched) when that set is
    // not of this frame size: the hop then contributes silence, and the path keeps its delay.
    virtual bool multiplyByKernels(double* frameA, double* frameB, int frameSize) = 0;
};

class PathConvolver {
public:
    static constexpr int kMaxFrameSize = 32768;

    explicit PathConvolver(int maxFrameSize = kMaxFrameSize);

    // Frame size N (a power of two ≤ the maximum) and hop (1..N samples). Clears all state.
    void configure(int frameSize, int hop);
    int frameSize() const { return n_; }
    int hop() const { return hop_; }
    int delay() const { return hop_ + n_ / 2 - 1; }

    // Silence in frames, overlaps and outputs; fill and read positions at 0.
    void clear();

    // One sample of each side in, one out (the sample hop + N/2 − 1 samples earlier, after
    // the kernel).
    void process(double& a, double& b, PathConvolutionOps& ops) {
        frame_[0][fill_] = a;
        frame_[0][fill_ + 1] = 0.0;
        frame_[1][fill_] = b;
        frame_[1][fill_ + 1] = 0.0;
        fill_ += 2;
        if (fill_ == 2 * hop_) convolveBlock(ops);
        a = output_[0][read_];
        b = output_[1][read_];
        ++read_;
    }

    // How many convolved blocks had to be silenced because the kernel was not available.
    unsigned long silencedBlocks() const { return silenced_; }

private:
    void convolveBlock(PathConvolutionOps& ops);
    double frameSample(int side, int t) const {
        return t < n_ ? frame_[side][2 * t] : frame_[side][2 * (t - n_) + 1];
    }

    int maxN_;
    int n_ = 4096;
    int hop_ = 4096;
    int fill_ = 0;  // entries, advances by 2 per sample
    int read_ = 0;  // samples into output_
    unsigned long silenced_ = 0;
    struct FreeAligned {
        void operator()(double* p) const { std::free(p); }
    };
    std::unique_ptr<double[], FreeAligned> frame_[2];  // 2N, 64-byte aligned for the transforms
    std::vector<double> overlap_[2];  // N
    std::vector<double> output_[2];   // N (a hop is at most N)
};

}  // namespace dsp
