#include "dsp/PathConvolver.h"

#include <algorithm>
#include <cstring>

namespace dsp {
// The ring holds the tail's output from the current hop to the end of the latest tail output:
// at most H + 2·M2 ≤ 3N samples ahead.
PathConvolver::PathConvolver(int maxFrameSize, MacFamily mac, FftFamily fft)
    : maxN_(maxFrameSize),
      fft_(fft),
      mac_(spectrumMac(mac)),
      head_(PartitionPlan::maxSpectrumDoubles(maxFrameSize)),
      tail_(PartitionPlan::maxSpectrumDoubles(maxFrameSize)),
      work_(2 * static_cast<size_t>(maxFrameSize)),
      ringMask_(powerOfTwoAtLeast(4 * static_cast<size_t>(maxFrameSize)) - 1) {
    for (int side = 0; side < kSides; ++side) {
        Side& s = sides_[side];
        s.tailFrame = AlignedBuffer(2 * static_cast<size_t>(maxN_));
        s.ring = AlignedBuffer(ringMask_ + 1);
        s.output = AlignedBuffer(maxN_);
        s.overlap = AlignedBuffer(maxN_);
        output_[side] = s.output.data();
    }
    configure(std::min(4096, maxN_), std::min(4096, maxN_));
}

void PathConvolver::configure(int frameSize, int hop, int convolutionHop) {
    const int n = std::clamp(frameSize, 1, maxN_);
    hop_ = std::clamp(hop, 1, n);
    int blockLength = hop_;
    while (2L * blockLength <= std::min(convolutionHop, n)) blockLength *= 2;
    plan_ = PartitionPlan::forFrame(n, blockLength);
    head_.configure(plan_.headHalf, plan_.headCount);
    tail_.configure(std::max(plan_.tailHalf, 4), plan_.tailCount);
    held_ = nullptr;
    clear();
}

void PathConvolver::clear() {
    for (Side& s : sides_) {
        s.tailFrame.clear(plan_.tailPartitionDoubles());
        if (plan_.hasTail()) s.ring.clear();  // only the tail uses it; a new plan clears again
        s.output.clear(plan_.hop);
        s.overlap.clear(plan_.hop);
    }
    head_.clear();
    tail_.clear();
    for (int side = 0; side < kSides; ++side) input_[side] = head_.frame(side);
    fill_ = 0;
    boundary_ = hop_;
    tailGathered_ = 0;
    blockStart_ = 0;
    read_ = 0;  // until the first block completes, the silence before the input began
}

// The H-block just completed goes with the set taken now; the samples before it in the
// current block completed with the set held until now.
void PathConvolver::hopCompleted(PathConvolutionOps& ops) {
    if (!held_ || ops.newerKernelsWaiting()) {
        if (held_) settleHeldSet(fill_ - hop_);
        held_ = &ops.takeNewestKernels();
    }
    if (fill_ == plan_.hop) convolveBlock();
    else boundary_ += hop_;
}

void PathConvolver::convolveBlock() {
    const bool usable = held_->plan() == plan_;
    if (!usable) ++silenced_;

    const int h = plan_.hop;
    for (int side = 0; side < kSides; ++side) {
        if (plan_.hasTail()) {
            double* frame = sides_[side].tailFrame.data() + 2 * static_cast<size_t>(tailGathered_) * h;
            for (int t = 0; t < h; ++t) frame[2 * t] = input_[side][2 * t];
        }
        headBlock(side, usable);
    }
    head_.advance();
    for (int side = 0; side < kSides; ++side) input_[side] = head_.frame(side);

    if (plan_.hasTail()) {
        if (++tailGathered_ == plan_.tailHops) {
            for (int side = 0; side < kSides; ++side) tailBlock(side, usable);
            tail_.advance();
            tailGathered_ = 0;
        }
        for (int side = 0; side < kSides; ++side) addTailOutput(side);
    }
    blockStart_ += static_cast<size_t>(h);
    fill_ = 0;
    boundary_ = hop_;
    read_ = 0;
}

void PathConvolver::settleHeldSet(int partial) {
    const bool usable = held_->plan() == plan_;
    for (int side = 0; side < kSides; ++side) {
        double* input = input_[side];
        double* headPart = nullptr;
        if (partial > 0) {
            headPart = work_.data();
            std::copy(input, input + 2 * partial, headPart);
            std::fill(headPart + 2 * partial, headPart + 2 * plan_.headHalf, 0.0);
        }
        head_.catchUp(side, headPart, headKernels(side), usable, fft_, mac_);
        if (plan_.hasTail()) {
            // The tail's blocks gathered so far belong to the set held until now, and so does
            // the current block's part.
            double* frame = sides_[side].tailFrame.data();
            double* tailPart = frame + 2 * static_cast<size_t>(tailGathered_) * plan_.hop;
            for (int t = 0; t < partial; ++t) tailPart[2 * t] = input[2 * t];
            tail_.catchUp(side, tailGathered_ > 0 || partial > 0 ? frame : nullptr, tailKernels(side), usable, fft_,
                          mac_);
            std::fill(frame, frame + plan_.tailPartitionDoubles(), 0.0);
        }
        std::fill(input, input + 2 * partial, 0.0);
    }
    head_.changed();
    tail_.changed();
}

// The block through the head partitions: the first Hc samples of its output complete this
// block's output with what earlier blocks left; samples Hc..2Hc − 1 are left for the next one.
void PathConvolver::headBlock(int side, bool usable) {
    const int h = plan_.hop, m = plan_.headHalf;
    // Samples h..m − 1 of the block: silence, where the hop is no power of two.
    std::fill(input_[side] + 2 * h, input_[side] + 2 * m, 0.0);
    head_.complete(side, headKernels(side), usable, fft_, mac_);

    double* current = head_.output(side);
    double* output = output_[side];
    double* overlap = sides_[side].overlap.data();
    if (m == h) {
        for (int t = 0; t < h; ++t) {
            output[t] = overlap[t] + current[2 * t];
            overlap[t] = current[2 * t + 1];
            current[2 * t] = current[2 * t + 1] = 0.0;
        }
    } else {
        for (int t = 0; t < h; ++t) output[t] = overlap[t] + current[2 * t];
        for (int t = 0; t < h; ++t) overlap[t] = current[sampleEntry(m, h + t)];
        std::fill(current, current + 2 * m, 0.0);
    }
}

// The tail block just completed: its output begins one tail length after the block began,
// with the next block.
void PathConvolver::tailBlock(int side, bool usable) {
    // Gathered apart from the delay line: a kernel change before the block completes settles
    // the part gathered so far through the same frame.
    double* frame = sides_[side].tailFrame.data();
    const size_t entries = plan_.tailPartitionDoubles();
    std::copy(frame, frame + entries, tail_.frame(side));
    std::fill(frame, frame + entries, 0.0);
    tail_.complete(side, tailKernels(side), usable, fft_, mac_);
    double* output = tail_.output(side);
    addToRing(side, output, plan_.tailHalf, 2 * plan_.tailLength(), blockStart_ + static_cast<size_t>(plan_.hop));
    std::fill(output, output + plan_.tailPartitionDoubles(), 0.0);
}

// The signal's samples t < half are its even entries, the others its odd entries; each range
// is added in at most two stretches, split where the ring wraps round.
void PathConvolver::addToRing(int side, const double* signal, int half, int count, size_t at) {
    double* ring = sides_[side].ring.data();
    const auto add = [&](const double* from, int first, int end) {  // from: sample `first`
        for (int t = first; t < end;) {
            const size_t start = (at + t) & ringMask_;
            const int stretch = static_cast<int>(std::min<size_t>(end - t, ringMask_ + 1 - start));
            const double* in = from + 2 * (t - first);
            double* to = ring + start;
            for (int j = 0; j < stretch; ++j) to[j] += in[2 * j];
            t += stretch;
        }
    };
    add(signal, 0, std::min(count, half));
    if (count > half) add(signal + 1, half, count);
}

void PathConvolver::addTailOutput(int side) {
    double* ring = sides_[side].ring.data();
    double* output = output_[side];
    const int h = plan_.hop;
    for (int t = 0; t < h;) {
        const size_t start = (blockStart_ + t) & ringMask_;
        const int stretch = static_cast<int>(std::min<size_t>(h - t, ringMask_ + 1 - start));
        for (int j = 0; j < stretch; ++j) output[t + j] += ring[start + j];
        std::fill(ring + start, ring + start + stretch, 0.0);
        t += stretch;
    }
}

}  // namespace dsp
