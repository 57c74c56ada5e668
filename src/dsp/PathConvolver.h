#pragma once
// The linear-phase equalizer of both sides: the incoming signal convolved with each side's
// kernel (N + 1 symmetric taps, centre at N/2) by partitioned convolution in the frequency
// domain (the partitions: PartitionPlan.h).
//
// Input arrives in blocks of one hop H. When a block is complete it is transformed once and
// convolved with the head partitions (PartitionStage.h); the output spectrum of the block is
// transformed back and completes the next hop of output. Where the plan has a tail, k blocks
// are gathered and convolved with the tail partitions in the same way. Each input block is
// multiplied with the kernel set held when it completed, whatever set later blocks see: when
// a newer set is taken, the blocks of the old one are settled with it first, the tail's
// partly gathered block included, and nothing is multiplied again with a newer set.
//
// The first output sample of a block leaves with the block's last input sample, so the path
// delays by H + N/2 − 1 samples, the same for every plan.
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

    // Frame size N (a power of two ≤ the maximum) and hop (1..N samples). Clears all state.
    void configure(int frameSize, int hop);
    int frameSize() const { return plan_.frameSize; }
    int hop() const { return plan_.hop; }
    int delay() const { return plan_.hop + plan_.frameSize / 2 - 1; }
    // The partitions this convolver expects its kernel sets to be cut into.
    const PartitionPlan& plan() const { return plan_; }

    // Silence in every buffer; the next sample starts a block.
    void clear();

    // One sample of each side in, one out (the sample H + N/2 − 1 samples earlier, after the
    // kernel).
    [[gnu::always_inline]] void process(double& a, double& b, PathConvolutionOps& ops) {
        input_[0][fill_] = a;
        input_[1][fill_] = b;
        if (++fill_ == plan_.hop) convolveBlock(ops);
        a = output_[0][read_];
        b = output_[1][read_];
        ++read_;
    }

    // process() on `count` interleaved (A, B) pairs in place, with the same numbers: the
    // block's bookkeeping once per run of samples up to the next block end, not per sample.
    void processPairs(double* pairs, int count, PathConvolutionOps& ops) {
        for (int i = 0; i < count;) {
            const int run = std::min(count - i, plan_.hop - fill_);
            const bool completes = fill_ + run == plan_.hop;
            double* x = pairs + 2 * i;
            double* inA = input_[0] + fill_;
            double* inB = input_[1] + fill_;
            for (int k = 0; k < run; ++k) {
                inA[k] = x[2 * k];
                inB[k] = x[2 * k + 1];
            }
            fill_ += run;
            // A run's last sample completes the block and leaves with the block's first output.
            const int before = completes ? run - 1 : run;
            const double* outA = output_[0] + read_;
            const double* outB = output_[1] + read_;
            for (int k = 0; k < before; ++k) {
                x[2 * k] = outA[k];
                x[2 * k + 1] = outB[k];
            }
            read_ += before;
            if (completes) {
                convolveBlock(ops);
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
        AlignedBuffer input;      // the block being gathered, H samples
        AlignedBuffer tailFrame;  // the tail's gathered blocks, 2·M2 entries
        AlignedBuffer ring;       // the tail's output samples by time, ringMask_ + 1 entries
        AlignedBuffer output;     // the hop of output being read, H samples
        AlignedBuffer overlap;    // the head's output for the next hop, H samples
    };

    void convolveBlock(PathConvolutionOps& ops);
    // Before a newer set is taken: every block so far settled with the set held until now.
    void settleHeldSet();
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
    AlignedBuffer work_;  // one head transform, 2M entries
    size_t ringMask_;

    double* input_[kSides];
    double* output_[kSides];
    const KernelSet* held_ = nullptr;  // taken at the latest block
    int fill_ = 0;                     // samples of the block gathered
    int tailGathered_ = 0;             // blocks of the tail block gathered
    size_t blockStart_ = 0;            // time of the current block's first sample
    int read_ = 0;                     // the next output sample of output_
    unsigned long silenced_ = 0;
};

}  // namespace dsp
