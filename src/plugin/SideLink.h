#pragma once
// How the two sides of the bands are tied together. Channel says which side or sides an edit
// reaches, what the analyzer listens to (its two input weights) and which side's band the
// audition follows.

#include "plugin/RelaxedAtomic.h"
#include "presets/Parameters.h"

class SideLink {
public:
    using Weights = RelaxedAtomic<double>[2];

    // Channel's step (0 LEFT, 1 RIGHT, 2 LINK), weighed for LR<>MS as it stands now. A step
    // without a meaning keeps the weights it had.
    void setChannel(int step, bool midSide);
    // LR<>MS keeps the weights of the previous mode until Channel is set again, and auditions
    // the left/mid side meanwhile.
    void midSideChanged() { auditionSelector_ = params::kChannelLeft; }

    // Channel in its stored form: params::kChannelLeft, kChannelRight or kChannelLink.
    int channel() const { return channel_; }
    // With LINK, outside a preset load, a band's left/mid parameter drives both sides and its
    // right/side parameter only records its value.
    bool linked(bool loadingPreset) const { return channel_ == params::kChannelLink && !loadingPreset; }
    // Whether an edit from the editor writes side 0 (left/mid) or 1 (right/side): a mono input
    // only ever has the left one.
    bool edits(int side, bool monoInput) const;
    // The side (0 or 1) whose band frequency the audition plays.
    int auditionSide() const { return auditionSelector_ == params::kChannelRight ? 1 : 0; }
    // The analyzer hears left · weights[0] + right · weights[1].
    const Weights& analyzerWeights() const { return weights_; }

private:
    RelaxedAtomic<int> channel_ = params::kChannelLink;
    RelaxedAtomic<int> auditionSelector_ = params::kChannelLink;
    Weights weights_ = {0.5, 0.5};
};
