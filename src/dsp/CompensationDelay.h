#pragma once
// The delay that pads the path's own latency up to what the host was told, for both sides at
// once: one ring of (A, B) pairs. Allocated once, for the largest delay any setting can ask
// for; the per-sample call never allocates, locks or waits.

#include "dsp/AlignedBuffer.h"
#include "dsp/SidePair.h"

namespace dsp {

class CompensationDelay {
public:
    // The largest constant delay the latency accounting ever asks for (high-rate class).
    static constexpr int kMaxDelay = 98554;

    explicit CompensationDelay(int maxDelay = kMaxDelay);

    // The delay in samples for the samples that follow, clamped to 0..maxDelay(). The ring in
    // use is the first D + 1 entries; a change keeps the contents (the index simply wraps at
    // the new length), so only the samples around the change are a mix of old and new.
    void setDelay(int samples);
    int delay() const { return delay_; }
    int maxDelay() const { return maxDelay_; }

    // Writes the pair at the write index, advances it (wrapping to 0 after D) and returns the
    // pair read at the new index: the inputs of D samples ago.
    template <class P>
    P process(P x) {
        x.store(&ring_[2 * static_cast<size_t>(index_)]);
        if (++index_ > delay_) index_ = 0;
        return P::load(&ring_[2 * static_cast<size_t>(index_)]);
    }

    // process() on `count` interleaved pairs in place, with the same results and ring
    // afterwards, but moving whole runs of the ring at a time.
    void processBlock(double* pairs, int count);

    // Silence in the ring and the index at 0 (after a pause).
    void clear();

private:
    int maxDelay_;
    int delay_ = 0;
    int index_ = 0;
    AlignedBuffer ring_;  // D + 1 pairs in use
};

}  // namespace dsp
