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
    for (int side = 0; side < 2; ++side) {
        double* frame = frame_[side].get();
        std::fill(frame + fill_, frame + entries, 0.0);
        ops.forward(frame, n_);
        if (!ops.multiplyByKernel(side, frame, n_)) {
            // Without the kernel the block cannot be filtered; it contributes silence rather
            // than an unfiltered (and unscaled) spectrum.
            std::fill(frame, frame + entries, 0.0);
            ++silenced_;
        } else {
            ops.inverse(frame, n_);
        }

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
