#pragma once
// Hands finished kernel sets from the thread that builds them to the audio thread without a
// lock, so that a kernel build (milliseconds at the larger frame sizes) never holds up a
// process call.
//
// Scheme: three sets. The builder owns one ("back") and fills it completely; the audio thread
// owns one ("front") and reads only that; the third ("middle") is the newest finished set in
// transit. One atomic byte names the middle set and carries a "fresh" flag. publish() makes the
// filled back set the middle one (flag set) and takes the previous middle as its next back
// set; acquire() swaps its front set for the middle one only when the flag is set. Each set
// belongs to exactly one side at any moment, so the audio thread never meets a half-written
// set, and a set it holds cannot be rewritten under it: neither side waits or retries, and
// the acquire-release exchanges order the plain buffer writes before the reads.
//
// The audio thread acquires once per hop, before it multiplies either side, and holds that set
// until its next acquire: both sides of a block use one build, and the set stays valid for the
// whole hop. The partitioned convolution multiplies each input block with the partitions of
// the set held when the block completed. It keeps the blocks' spectra and sums their products
// while the set stays the same; before it acquires a newer one (it asks newerWaiting() first)
// it settles every kept block, and the tail's partly gathered block, with the set it still
// holds, adding the products to the outputs they will reach. So no set is needed beyond the
// hops that held it, and three sets remain enough however many partitions a set holds.
//
// Contract: one reader (the audio thread) and one writer at a time (builds are serialized by
// the owner's process lock).

#include <atomic>
#include <cstdint>

#include "dsp/AlignedBuffer.h"
#include "dsp/EqTypes.h"
#include "dsp/PartitionPlan.h"

namespace dsp {

// One build's kernel spectra, both sides, cut into the partitions of one plan
// (PartitionPlan.h): each side's head partitions one after another, then its tail partitions,
// each a packed spectrum scaled for the inverse transform.
class KernelSet {
public:
    explicit KernelSet(int maxFrameSize)
        : spectra_{AlignedBuffer(PartitionPlan::maxSpectrumDoubles(maxFrameSize)),
                   AlignedBuffer(PartitionPlan::maxSpectrumDoubles(maxFrameSize))} {}

    // The plan the spectra were built for; frame size 0 until a build has filled the set.
    const PartitionPlan& plan() const { return plan_; }
    void setPlan(const PartitionPlan& plan) { plan_ = plan; }
    int frameSize() const { return plan_.frameSize; }
    // All of one side's partitions; with a single partition (hop N) the packed spectrum of the
    // whole kernel, 2N doubles.
    double* spectrum(int side) { return spectra_[side].data(); }
    const double* spectrum(int side) const { return spectra_[side].data(); }
    const double* headPartition(int side, int p) const { return spectrum(side) + p * plan_.headPartitionDoubles(); }
    const double* tailPartition(int side, int q) const {
        return spectrum(side) + plan_.headDoubles() + q * plan_.tailPartitionDoubles();
    }

private:
    PartitionPlan plan_;
    AlignedBuffer spectra_[kSides];
};

class KernelSetExchange {
public:
    explicit KernelSetExchange(int maxFrameSize) : sets_{KernelSet(maxFrameSize), KernelSet(maxFrameSize), KernelSet(maxFrameSize)} {}
    KernelSetExchange(const KernelSetExchange&) = delete;
    KernelSetExchange& operator=(const KernelSetExchange&) = delete;

    // Writer: the set to fill for the next publish(); neither the newest nor the one read.
    KernelSet& back() { return sets_[back_]; }
    // Writer: the filled back set becomes the newest.
    void publish() {
        const int n = sets_[back_].frameSize();
        const uint8_t previous = middle_.exchange(static_cast<uint8_t>(back_ | kFresh), std::memory_order_acq_rel);
        back_ = previous & kIndexMask;
        newestFrameSize_.store(n, std::memory_order_relaxed);
    }
    // Frame size of the newest published set (any thread; 0 before the first).
    int newestFrameSize() const { return newestFrameSize_.load(std::memory_order_relaxed); }

    // Reader: whether a set newer than the one held is waiting. Only acquire() clears this, so
    // once true it stays true until the reader takes the set.
    bool newerWaiting() const { return middle_.load(std::memory_order_relaxed) & kFresh; }
    // Reader: the newest complete set, unchanged until the next acquire().
    const KernelSet& acquire() {
        if (middle_.load(std::memory_order_relaxed) & kFresh) {
            const uint8_t previous = middle_.exchange(front_, std::memory_order_acq_rel);
            front_ = previous & kIndexMask;
        }
        return sets_[front_];
    }

private:
    static constexpr uint8_t kIndexMask = 0x3;
    static constexpr uint8_t kFresh = 0x4;
    static_assert(std::atomic<uint8_t>::is_always_lock_free);

    KernelSet sets_[3];
    alignas(64) std::atomic<uint8_t> middle_{1};
    alignas(64) uint8_t front_ = 0;  // the reader's
    alignas(64) uint8_t back_ = 2;   // the writer's
    std::atomic<int> newestFrameSize_{0};
};

}  // namespace dsp
