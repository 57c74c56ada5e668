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
      work_(2 * static_cast<size_t>(maxFrameSize)),
      ringMask_(powerOfTwoAtLeast(4 * static_cast<size_t>(maxFrameSize)) - 1) {
    for (int side = 0; side < kSides; ++side) {
        Side& s = sides_[side];
        s.input = AlignedBuffer(maxN_);
        s.tailFrame = AlignedBuffer(2 * static_cast<size_t>(maxN_));
        s.slots = AlignedBuffer(PartitionPlan::maxSpectrumDoubles(maxN_));
        s.ring = AlignedBuffer(ringMask_ + 1);
        s.output = AlignedBuffer(maxN_);
        s.overlap = AlignedBuffer(maxN_);
        input_[side] = s.input.data();
        output_[side] = s.output.data();
    }
    configure(std::min(4096, maxN_), std::min(4096, maxN_));
}

void PathConvolver::configure(int frameSize, int hop) {
    const int n = std::clamp(frameSize, 1, maxN_);
    plan_ = PartitionPlan::forFrame(n, std::clamp(hop, 1, n));
    held_ = nullptr;
    clear();
}

void PathConvolver::clear() {
    for (Side& s : sides_) {
        s.input.clear(plan_.hop);
        s.tailFrame.clear(plan_.tailPartitionDoubles());
        s.slots.clear(plan_.spectrumDoubles());
        s.ring.clear();
        s.output.clear(plan_.hop);
        s.overlap.clear(plan_.hop);
    }
    fill_ = 0;
    headBase_ = 0;
    tailBase_ = 0;
    tailGathered_ = 0;
    blockStart_ = 0;
    read_ = 0;  // until the first block completes, the silence before the input began
}

void PathConvolver::convolveBlock(PathConvolutionOps& ops) {
    if (!held_ || ops.newerKernelsWaiting()) {
        // The tail's blocks gathered so far belong to the set held until now.
        if (tailGathered_ > 0) {
            const bool usable = held_ && held_->plan() == plan_;
            for (int side = 0; side < kSides; ++side) multiplyTail(side, usable);
        }
        held_ = &ops.takeNewestKernels();
    }
    const bool usable = held_->plan() == plan_;
    if (!usable) ++silenced_;

    const int h = plan_.hop;
    for (int side = 0; side < kSides; ++side) {
        if (plan_.hasTail()) {
            double* frame = sides_[side].tailFrame.data() + 2 * static_cast<size_t>(tailGathered_) * h;
            for (int t = 0; t < h; ++t) frame[2 * t] = input_[side][t];
        }
        headBlock(side, usable);
    }
    headBase_ = headBase_ + 1 == plan_.headCount ? 0 : headBase_ + 1;

    if (plan_.hasTail() && ++tailGathered_ == plan_.tailHops) {
        for (int side = 0; side < kSides; ++side) {
            multiplyTail(side, usable);
            finishTail(side);
        }
        tailBase_ = tailBase_ + 1 == plan_.tailCount ? 0 : tailBase_ + 1;
        tailGathered_ = 0;
    }
    if (plan_.hasTail())
        for (int side = 0; side < kSides; ++side) addTailOutput(side);
    blockStart_ += static_cast<size_t>(h);
    fill_ = 0;
    read_ = 0;
}

// The block's spectrum into the head slots it reaches; the current slot is then complete and
// becomes output samples.
void PathConvolver::headBlock(int side, bool usable) {
    const int h = plan_.hop, m = plan_.headHalf;
    double* frame = work_.data();
    const double* input = input_[side];
    for (int t = 0; t < h; ++t) {
        frame[2 * t] = input[t];
        frame[2 * t + 1] = 0.0;
    }
    std::fill(frame + 2 * h, frame + 2 * m, 0.0);
    fft_.forwardAny(frame, m);
    swapMacLayout(frame, m);
    if (usable) {
        int slot = headBase_;
        for (int p = 0; p < plan_.headCount; ++p) {
            mac_(headSlot(side, slot), frame, held_->headPartition(side, p), m);
            slot = slot + 1 == plan_.headCount ? 0 : slot + 1;
        }
    }
    double* current = headSlot(side, headBase_);
    swapMacLayout(current, m);
    fft_.inverseAny(current, m);
    // Samples 0..H − 1 complete this hop's output with what earlier blocks left; H..2H − 1
    // are left for the next hop.
    double* output = output_[side];
    double* overlap = sides_[side].overlap.data();
    if (m == h) {
        for (int t = 0; t < h; ++t) {
            output[t] = overlap[t] + current[2 * t];
            overlap[t] = current[2 * t + 1];
        }
    } else {
        for (int t = 0; t < h; ++t) output[t] = overlap[t] + current[2 * t];
        for (int t = 0; t < h; ++t) overlap[t] = current[sampleEntry(m, h + t)];
    }
    std::fill(current, current + 2 * m, 0.0);
}

// The gathered tail blocks into the tail slots they reach, with the set held now; the frame is
// then cleared for the blocks still to come.
void PathConvolver::multiplyTail(int side, bool usable) {
    const int m = plan_.tailHalf;
    double* frame = sides_[side].tailFrame.data();
    if (usable) {
        fft_.forwardAny(frame, m);
        swapMacLayout(frame, m);
        int slot = tailBase_;
        for (int q = 0; q < plan_.tailCount; ++q) {
            mac_(tailSlot(side, slot), frame, held_->tailPartition(side, q), m);
            slot = slot + 1 == plan_.tailCount ? 0 : slot + 1;
        }
    }
    std::fill(frame, frame + 2 * m, 0.0);
}

// The tail block just completed: the next tail slot is complete. Its output begins one tail
// length after that block began, with the next block.
void PathConvolver::finishTail(int side) {
    const int m = plan_.tailHalf;
    double* current = tailSlot(side, tailBase_);
    swapMacLayout(current, m);
    fft_.inverseAny(current, m);
    addToRing(side, current, m, 2 * plan_.tailLength(), blockStart_ + static_cast<size_t>(plan_.hop));
    std::fill(current, current + 2 * m, 0.0);
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
