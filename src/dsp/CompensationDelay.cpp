#include "dsp/CompensationDelay.h"

#include <algorithm>

namespace dsp {

CompensationDelay::CompensationDelay(int maxDelay)
    : maxDelay_(std::max(0, maxDelay)), ring_(2 * (static_cast<size_t>(maxDelay_) + 1)) {}

void CompensationDelay::setDelay(int samples) { delay_ = std::clamp(samples, 0, maxDelay_); }

void CompensationDelay::clear() {
    ring_.clear();
    index_ = 0;
}

}  // namespace dsp
