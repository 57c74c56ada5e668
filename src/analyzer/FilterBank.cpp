#include "analyzer/FilterBank.h"

namespace analyzer {
namespace {

void putSection(FilterQuad::Coefficients& quad, int lane, const SectionCoefficients& c) {
    quad.b0.v[lane] = c.b0;
    quad.b1.v[lane] = c.b1;
    quad.b2.v[lane] = c.b2;
    quad.a1.v[lane] = c.a1;
    quad.a2.v[lane] = c.a2;
    quad.g.v[lane] = c.g;
}

void putFilter(FilterQuad& quad, int lane, const SectionCascade& filter) {
    for (int k = 0; k < kMaxSections; ++k) putSection(quad.coef[k], lane, filter.section[k]);
}

}  // namespace

void FilterBank::loadCoefficients(const RateBandTables& bands, const SectionCascade& lowPass, int sections) {
    for (int k = 0; k < kBandsPerTable; ++k) {
        putFilter(quad_[kTopQuad + k / kLanes], k % kLanes, bands.top[k]);
        putFilter(quad_[kBottomQuad + k / kLanes], k % kLanes, bands.lower[k]);
    }
    // Every stage runs the first three filters of the lower table at its own rate.
    for (int s = 0; s < kStageCount; ++s) {
        FilterQuad& stage = quad_[kFirstStageQuad + s];
        for (int lane = 0; lane < kBandsPerStage; ++lane) putFilter(stage, lane, bands.lower[lane]);
        putFilter(stage, kLowPassLane, lowPass);
    }
    sections_ = sections;
}

void FilterBank::setDetectorCoefficients(const float (&coefficients)[kDetectorGroups]) {
    for (int g = 0; g < kDetectorGroups; ++g) detector_[g] = coefficients[g];
}

void FilterBank::clear() {
    for (FilterQuad& q : quad_) {
        for (FilterQuad::State& st : q.state) st = {};
    }
    for (Lanes& l : levels_) {
        for (float& v : l.v) storeLevel(v, kLevelFloor);
    }
    for (float& h : heldLowPass_) h = 0.0f;

    // Stage 1 then runs on samples 2, 4, 6 ...; stage 2 on 3, 7, 11 ...; stage 3 on 5, 13,
    // 21 ...; stage 4 on 9, 25, 41 ...; the bottom group on 17, 49, 81 ... (the first sample
    // after clearing is sample 1). Besides the top group and stage 0, which run on every
    // sample, no sample carries more than one further group.
    constexpr uint32_t kRestartPhases[kStageCount + 1] = {0, 0, 1, 3, 7, 15};
    for (int s = 0; s <= kStageCount; ++s) phase_[s] = kRestartPhases[s];
}

float FilterBank::level(int band) const {
    const BandSlot slot = bandSlot(band);
    return loadLevel(levels_[slot.quad].v[slot.lane]);
}

void FilterBank::setLevel(int band, float value) {
    const BandSlot slot = bandSlot(band);
    storeLevel(levels_[slot.quad].v[slot.lane], value);
}

}  // namespace analyzer
