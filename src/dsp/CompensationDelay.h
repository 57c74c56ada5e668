#pragma once
// The delay that pads the path's own latency up to what the host was told, for both sides at
// once: two rings of doubles that share one write index. Allocated once, for the largest
// delay any setting can ask for; the per-sample call never allocates, locks or waits.

#include <vector>

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

    // Writes a and b at the write index, advances it (wrapping to 0 after D) and replaces a
    // and b with the values read at the new index: the inputs of D samples ago.
    void process(double& a, double& b) {
        ringA_[index_] = a;
        ringB_[index_] = b;
        if (++index_ > delay_) index_ = 0;
        a = ringA_[index_];
        b = ringB_[index_];
    }

    // Silence in both rings and the index at 0 (after a pause).
    void clear();

private:
    int maxDelay_;
    int delay_ = 0;
    int index_ = 0;
    std::vector<double> ringA_;
    std::vector<double> ringB_;
};

}  // namespace dsp
