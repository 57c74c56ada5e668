#include "dsp/CompensationDelay.h"

#include <algorithm>

namespace dsp {

CompensationDelay::CompensationDelay(int maxDelay)
    : maxDelay_(std::max(0, maxDelay)),
      ringA_(static_cast<size_t>(maxDelay_) + 1, 0.0),
      ringB_(static_cast<size_t>(maxDelay_) + 1, 0.0) {}

void CompensationDelay::setDelay(int samples) { delay_ = std::clamp(samples, 0, maxDelay_); }

void CompensationDelay::clear() {
    std::fill(ringA_.begin(), ringA_.end(), 0.0);
    std::fill(ringB_.begin(), ringB_.end(), 0.0);
    index_ = 0;
}

}  // namespace dsp
