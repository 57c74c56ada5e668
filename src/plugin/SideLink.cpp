#include "plugin/SideLink.h"

using namespace params;

namespace {

struct WeightRow {
    double lr[2], ms[2];
};
// By Channel's stored form 1..3: in mid/side the analyzer hears the mid (or the side) at twice
// its level, which is what a left/right signal of that side alone would show.
constexpr WeightRow kWeights[3] = {{{1.0, 0.0}, {2.0, 0.0}}, {{0.0, 1.0}, {0.0, 2.0}}, {{0.5, 0.5}, {2.0, 0.0}}};

}  // namespace

void SideLink::setChannel(int step, bool midSide) {
    channel_ = step + 1;
    auditionSelector_ = step + 1;
    if (channel_ < kChannelLeft || channel_ > kChannelLink) return;
    const double* w = midSide ? kWeights[channel_ - 1].ms : kWeights[channel_ - 1].lr;
    weights_[0] = w[0];
    weights_[1] = w[1];
}

bool SideLink::edits(int side, bool monoInput) const {
    const int c = channel_;
    if (side == 0) return c == kChannelLeft || c == kChannelLink || monoInput;
    return (c == kChannelRight || c == kChannelLink) && !monoInput;
}
