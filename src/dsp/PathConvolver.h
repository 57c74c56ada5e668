#pragma once
// The linear-phase equalizer of both sides: the incoming signal convolved with each side's
// kernel (N + 1 symmetric taps, centre at N/2) by partitioned convolution in the frequency
// domain (the partitions: PartitionPlan.h).
//
// Two hops. The hop H is the grain of kernel changes: every H input samples make a block that
// is multiplied with the kernel set held when it completed. The convolution hop Hc (H·2^j,
// at most N) is the block length of the partitioned convolution: when Hc samples are
// complete they are transformed once and convolved with the head partitions
// (PartitionStage.h); the output spectrum is transformed back and completes the next Hc
// samples of output. Where the plan has a tail, k blocks are gathered and convolved with the
// tail partitions in the same way. A longer Hc costs less work per sample (fewer, longer
// transforms and fewer partitions) and delays by Hc − H samples more.
//
// Kernel sets are looked at every H samples. When a newer one is taken, everything gathered
// for the held set is settled with it first: the kept blocks, the tail's partly gathered
// block, and the samples of the current Hc block that completed their H-block before now;
// those samples are then taken out of the gathering buffers, so that nothing is multiplied
// again with the newer set. With Hc = H the current block holds none of them.
//
// The first output sample of a block leaves with the block's last input sample, so the path
// delays by Hc + N/2 − 1 samples, the same for every plan.
//
// Buffers are allocated once, for the largest frame; process() allocates nothing, does no I/O
// and never waits: the owner hands over the newest published kernel set without a lock.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "dsp/AlignedBuffer.h"
#include "dsp/EqTypes.h"
#include "dsp/Fft.h"
#include "dsp/KernelSetExchange.h"
#include "dsp/PartitionPlan.h"
#include "dsp/PartitionStage.h"
#include "dsp/SpectrumMac.h"

namespace dsp {

// Where the convolver takes its kernels from: the reader's side of a KernelSetExchange.
class PathConvolutionOps {
public:
    virtual ~PathConvolutionOps() = default;
    // A set newer than the one last taken is waiting; stays true until it is taken.
    virtual bool newerKernelsWaiting() = 0;
    // The newest complete set, unchanged until the next call. A set of another plan than the
    // convolver's silences the blocks multiplied while it is held; the path keeps its delay.
    virtual const KernelSet& takeNewestKernels() = 0;
};

class PathConvolver {
public:
    static constexpr int kMaxFrameSize = 32768;

    explicit PathConvolver(int maxFrameSize = kMaxFrameSize, MacFamily mac = preferredMacFamily(),
                           FftFamily fft = preferredFftFamily());
    PathConvolver(const PathConvolver&) = delete;
    PathConvolver& operator=(const PathConvolver&) = delete;

    // Frame size N (a power of two ≤ the maximum), hop H (1..N samples) and convolution hop
    // (H·2^j ≤ N; otherwise the longest such below it). Clears all state.
    void configure(int frameSize, int hop, int convolutionHop);
    void configure(int frameSize, int hop) { configure(frameSize, hop, hop); }
    int frameSize() const { return plan_.frameSize; }
    int hop() const { return hop_; }
    int convolutionHop() const { return plan_.hop; }
    int delay() const { return plan_.hop + plan_.frameSize / 2 - 1; }
    // The partitions this convolver expects its kernel sets to be cut into.
    const PartitionPlan& plan() const { return plan_; }

    // Silence in every buffer; the next sample starts a block.
    void clear();

    // One sample of each side in, one out (the sample Hc + N/2 − 1 samples earlier, after the
    // kernel).
    [[gnu::always_inline]] void process(double& a, double& b, PathConvolutionOps& ops) {
        input_[0][2 * fill_] = a;
        input_[0][2 * fill_ + 1] = 0.0;
        input_[1][2 * fill_] = b;
        input_[1][2 * fill_ + 1] = 0.0;
        if (++fill_ == boundary_) hopCompleted(ops);
        a = output_[0][read_];
        b = output_[1][read_];
        ++read_;
    }

    // process() on `count` interleaved (A, B) pairs in place, with the same numbers: the
    // block's bookkeeping once per run of samples up to the next hop's end, not per sample.
    void processPairs(double* pairs, int count, PathConvolutionOps& ops) {
        for (int i = 0; i < count;) {
            const int run = std::min(count - i, boundary_ - fill_);
            const bool completes = fill_ + run == boundary_;
            double* x = pairs + 2 * i;
            double* inA = input_[0] + 2 * fill_;
            double* inB = input_[1] + 2 * fill_;
            for (int k = 0; k < run; ++k) {
                inA[2 * k] = x[2 * k];
                inA[2 * k + 1] = 0.0;
                inB[2 * k] = x[2 * k + 1];
                inB[2 * k + 1] = 0.0;
            }
            fill_ += run;
            // A run's last sample completes the hop; after a block it leaves with its first output.
            const int before = completes ? run - 1 : run;
            const double* outA = output_[0] + read_;
            const double* outB = output_[1] + read_;
            for (int k = 0; k < before; ++k) {
                x[2 * k] = outA[k];
                x[2 * k + 1] = outB[k];
            }
            read_ += before;
            if (completes) {
                hopCompleted(ops);
                x[2 * before] = output_[0][read_];
                x[2 * before + 1] = output_[1][read_];
                ++read_;
            }
            i += run;
        }
    }

    // How many blocks were silenced because the kernel set held did not fit the plan.
    unsigned long silencedBlocks() const { return silenced_; }

private:
    struct Side {
        AlignedBuffer tailFrame;  // the tail's gathered blocks, 2·M2 entries
        AlignedBuffer ring;       // the tail's output samples by time, ringMask_ + 1 entries
        AlignedBuffer output;     // the block of output being read, Hc samples
        AlignedBuffer overlap;    // the head's output for the next block, Hc samples
    };

    // An H-block is complete: the newest kernel set if one waits, then the block if it is
    // complete too.
    void hopCompleted(PathConvolutionOps& ops);
    void convolveBlock();
    // Before a newer set is taken: everything gathered so far settled with the set held until
    // now, the first `partial` samples of the current block included (and then cleared).
    void settleHeldSet(int partial);
    void headBlock(int side, bool usable);
    void tailBlock(int side, bool usable);
    // Adds samples 0..count − 1 of a half-interleaved signal of 2·half samples to the ring.
    void addToRing(int side, const double* signal, int half, int count, size_t at);
    // The tail's share of this hop's output, leaving the ring silent there.
    void addTailOutput(int side);
    PartitionSpectra headKernels(int side) const {
        return {held_->headPartition(side, 0), plan_.headPartitionDoubles()};
    }
    PartitionSpectra tailKernels(int side) const {
        return {held_->tailPartition(side, 0), plan_.tailPartitionDoubles()};
    }

    int maxN_;
    Fft fft_;
    SpectrumMac mac_;
    PartitionPlan plan_;
    Side sides_[kSides];
    PartitionStage head_;
    PartitionStage tail_;
    AlignedBuffer work_;  // the settled part of the current block, 2M entries
    size_t ringMask_;

    // The block being gathered, straight into the head's frame for it: sample t at entry 2t,
    // entry 2t + 1 (sample M + t of the transform) zero, the padding the product grows into.
    double* input_[kSides];
    double* output_[kSides];
    const KernelSet* held_ = nullptr;  // taken at the latest H-block
    int hop_ = 1;                      // H
    int fill_ = 0;                     // samples of the block gathered
    int boundary_ = 1;                 // fill_ at the end of the current H-block
    int tailGathered_ = 0;             // blocks of the tail block gathered
    size_t blockStart_ = 0;            // time of the current block's first sample
    int read_ = 0;                     // the next output sample of output_
    unsigned long silenced_ = 0;
};

}  // namespace dsp
