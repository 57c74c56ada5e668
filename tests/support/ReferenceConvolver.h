#pragma once
// The linear-phase convolution as the plug-in first ran it, kept as the reference the
// partitioned convolver must equal: every hop, the block is transformed in a frame of 2N
// samples, multiplied by the whole kernel's spectrum held at that hop, transformed back, and
// overlap-added. Slow (two transforms of 2N per hop) and plainly right.

#include <algorithm>
#include <vector>

#include "dsp/AlignedBuffer.h"
#include "dsp/Fft.h"
#include "dsp/FftLayout.h"

namespace testsupport {

// The kernels the reference multiplies with, set tap by tap; `silenced` makes the hops that
// meet it contribute nothing, as a kernel set of another plan does in the plug-in.
class ReferenceKernels {
public:
    explicit ReferenceKernels(int n) : n_(n), spectra_{dsp::AlignedBuffer(2 * n), dsp::AlignedBuffer(2 * n)} {}

    void set(const std::vector<double>& a, const std::vector<double>& b) {
        for (int side = 0; side < 2; ++side) {
            const std::vector<double>& g = side ? b : a;
            double* s = spectra_[side].data();
            spectra_[side].clear();
            for (int t = 0; t <= n_ && t < static_cast<int>(g.size()); ++t) s[dsp::sampleEntry(n_, t)] = g[t];
            fft_.forwardAny(s, n_);
            s[0] /= 2.0 * n_;
            s[1] /= 2.0 * n_;
            for (int e = 2; e < 2 * n_; ++e) s[e] /= n_;
        }
        silenced = false;
    }
    bool silenced = false;

    void forward(double* frame) const { fft_.forwardAny(frame, n_); }
    void inverse(double* frame) const { fft_.inverseAny(frame, n_); }
    void multiply(double* frame, int side) const {
        const double* k = spectra_[side].data();
        frame[0] *= k[0];
        frame[1] *= k[1];
        for (int e = 2; e < 2 * n_; e += 2) {
            const double re = frame[e] * k[e] - frame[e + 1] * k[e + 1];
            const double im = frame[e + 1] * k[e] + frame[e] * k[e + 1];
            frame[e] = re;
            frame[e + 1] = im;
        }
    }

private:
    int n_;
    dsp::AlignedBuffer spectra_[2];
    dsp::Fft fft_;
};

class ReferenceConvolver {
public:
    ReferenceConvolver(int n, int hop)
        : n_(n), hop_(hop), frame_{dsp::AlignedBuffer(2 * n), dsp::AlignedBuffer(2 * n)},
          overlap_{std::vector<double>(n), std::vector<double>(n)}, output_{std::vector<double>(n), std::vector<double>(n)} {}

    int delay() const { return hop_ + n_ / 2 - 1; }

    void process(double& a, double& b, const ReferenceKernels& kernels) {
        frame_[0][fill_] = a;
        frame_[0][fill_ + 1] = 0.0;
        frame_[1][fill_] = b;
        frame_[1][fill_ + 1] = 0.0;
        fill_ += 2;
        if (fill_ == 2 * hop_) convolveBlock(kernels);
        a = output_[0][read_];
        b = output_[1][read_];
        ++read_;
    }

private:
    double frameSample(int side, int t) const { return frame_[side][dsp::sampleEntry(n_, t)]; }

    void convolveBlock(const ReferenceKernels& kernels) {
        for (int side = 0; side < 2; ++side) {
            double* f = frame_[side].data();
            std::fill(f + fill_, f + 2 * n_, 0.0);
            if (kernels.silenced) {
                std::fill(f, f + 2 * n_, 0.0);
            } else {
                kernels.forward(f);
                kernels.multiply(f, side);
                kernels.inverse(f);
            }
            double* overlap = overlap_[side].data();
            double* output = output_[side].data();
            for (int t = 0; t < hop_; ++t) output[t] = frameSample(side, t) + overlap[t];
            std::copy(overlap + hop_, overlap + n_, overlap);
            std::fill(overlap + (n_ - hop_), overlap + n_, 0.0);
            for (int j = 0; j < n_; ++j) overlap[j] += frameSample(side, hop_ + j);
        }
        fill_ = 0;
        read_ = 0;
    }

    int n_, hop_;
    int fill_ = 0, read_ = 0;
    dsp::AlignedBuffer frame_[2];
    std::vector<double> overlap_[2], output_[2];
};

}  // namespace testsupport
