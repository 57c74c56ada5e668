#include "dsp/PathConvolver.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace dsp {
namespace {

double* allocateAligned(size_t count) {
    constexpr size_t kAlignment = 64;
    const size_t bytes = (count * sizeof(double) + kAlignment - 1) / kAlignment * kAlignment;
    auto* p = static_cast<double*>(std::aligned_alloc(kAlignment, bytes));
    if (!p) throw std::bad_alloc();
    std::fill(p, p + count, 0.0);
    return p;
}

}  // namespace

PathConvolver::PathConvolver(int maxFrameSize) : maxN_(maxFrameSize) {
    for (int side = 0; side < 2; ++side) {
        frame_[side].reset(allocateAligned(2 * static_cast<size_t>(maxN_)));
        overlap_[side].assign(maxN_, 0.0);
        output_[side].assign(maxN_, 0.0);
    }
    configure(std::min(4096, maxN_), std::min(4096, maxN_));
}

void PathConvolver::configure(int frameSize, int hop) {
    n_ = std::clamp(frameSize, 1, maxN_);
    hop_ = std::clamp(hop, 1, n_);
    clear();
}

void PathConvolver::clear() {
    for (int side = 0; side < 2; ++side) {
        std::fill(frame_[side].get(), frame_[side].get() + 2 * static_cast<size_t>(maxN_), 0.0);
        std::fill(overlap_[side].begin(), overlap_[side].end(), 0.0);
        std::fill(output_[side].begin(), output_[side].end(), 0.0);
    }
    fill_ = 0;
    read_ = 0;
}

void PathConvolver::convolveBlock(PathConvolutionOps& ops) {
    const int entries = 2 * n_;
    double* frame[2] = {frame_[0].get(), frame_[1].get()};
    for (double* f : frame) {
        std::fill(f + fill_, f + entries, 0.0);
        ops.forward(f, n_);
    }
    if (ops.multiplyByKernels(frame[0], frame[1], n_)) {
        for (double* f : frame) ops.inverse(f, n_);
    } else {
        // Without kernels of this size the block cannot be filtered; it contributes silence
        // rather than an unfiltered (and unscaled) spectrum.
        for (double* f : frame) std::fill(f, f + entries, 0.0);
        ++silenced_;
    }

    for (int side = 0; side < 2; ++side) {
        double* overlap = overlap_[side].data();
        double* output = output_[side].data();
        for (int t = 0; t < hop_; ++t) output[t] = frameSample(side, t) + overlap[t];
        std::memmove(overlap, overlap + hop_, static_cast<size_t>(n_ - hop_) * sizeof(double));
        std::fill(overlap + (n_ - hop_), overlap + n_, 0.0);
        for (int j = 0; j < n_; ++j) overlap[j] += frameSample(side, hop_ + j);
    }
    fill_ = 0;
    read_ = 0;
}

}  // namespace dsp
