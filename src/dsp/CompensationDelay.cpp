#include "dsp/CompensationDelay.h"

#include <algorithm>

namespace dsp {

CompensationDelay::CompensationDelay(int maxDelay)
    : maxDelay_(std::max(0, maxDelay)), ring_(2 * (static_cast<size_t>(maxDelay_) + 1)) {}

void CompensationDelay::setDelay(int samples) { delay_ = std::clamp(samples, 0, maxDelay_); }

void CompensationDelay::processBlock(double* pairs, int count) {
    double* const ring = ring_.data();
    if (count <= 0) return;
    if (delay_ == 0 && index_ == 0) {  // no delay: only the last pair stays in the ring
        ring[0] = pairs[2 * count - 2];
        ring[1] = pairs[2 * count - 1];
        return;
    }
    int i = 0;
    while (i < count) {
        // Right after a shorter delay was set the index can lie beyond the ring in use, and at
        // its last entry the next read wraps: those samples take the one-sample step.
        if (index_ >= delay_) {
            process(PlainPair::load(pairs + 2 * i)).store(pairs + 2 * i);
            ++i;
            continue;
        }
        // A run that neither wraps nor reads an entry it has written itself: each pair goes in
        // at the index and the pair one entry further on comes out.
        const int run = std::min(count - i, delay_ - index_);
        double* x = pairs + 2 * i;
        double* r = ring + 2 * static_cast<size_t>(index_);
        for (int k = 0; k < 2 * run; ++k) {
            const double out = r[k + 2];
            r[k] = x[k];
            x[k] = out;
        }
        index_ += run;
        i += run;
    }
}

void CompensationDelay::clear() {
    ring_.clear();
    index_ = 0;
}

}  // namespace dsp
