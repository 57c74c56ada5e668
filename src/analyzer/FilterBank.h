#pragma once
// The analyzer's multirate filter bank: coefficients, filter state, detector levels and the
// decimation schedule, laid out four filters to a quad so that the vector routine runs a
// quad as one register per coefficient and the scalar routine walks the same lanes.
//
// Quads: 0-1 the eight top bands; 2-6 the stages 0-4, each with its three band filters in
// lanes 0-2 and its decimation low-pass in lane 3; 7-8 the eight bottom bands. Every lane
// has a level; that of a low-pass lane is kept up like the others and never read.

#include <atomic>
#include <cstdint>

#include "analyzer/BandFilterDesign.h"
#include "analyzer/Detector.h"

namespace analyzer {

inline constexpr int kLanes = 4;
inline constexpr int kStageCount = 5;
inline constexpr int kTopQuad = 0;
inline constexpr int kFirstStageQuad = 2;
inline constexpr int kBottomQuad = 7;
inline constexpr int kQuadCount = 9;
inline constexpr int kLowPassLane = 3;
inline constexpr int kBandsPerStage = 3;
inline constexpr int kFirstStageBand = kBandsPerTable;                           // band 8
inline constexpr int kFirstBottomBand = kFirstStageBand + kBandsPerStage * kStageCount;  // band 23

struct alignas(16) Lanes {
    float v[kLanes];
};

struct FilterQuad {
    struct Coefficients {
        Lanes b0, b1, b2, a1, a2, g;
    };
    struct State {
        Lanes x1, x2, w1, w2;  // last two inputs and last two unscaled outputs
    };
    Coefficients coef[kMaxSections];
    State state[kMaxSections];
};

// Where band i's filter and level live.
struct BandSlot {
    int quad;
    int lane;
};

constexpr BandSlot bandSlot(int band) {
    if (band < kFirstStageBand) return {kTopQuad + band / kLanes, band % kLanes};
    if (band < kFirstBottomBand) {
        return {kFirstStageQuad + (band - kFirstStageBand) / kBandsPerStage, (band - kFirstStageBand) % kBandsPerStage};
    }
    return {kBottomQuad + (band - kFirstBottomBand) / kLanes, (band - kFirstBottomBand) % kLanes};
}

class FilterBank {
public:
    // Band filters of the rate, the low-pass of the order, and how many sections run.
    void loadCoefficients(const RateBandTables& bands, const SectionCascade& lowPass, int sections);
    void setDetectorCoefficients(const float (&coefficients)[kDetectorGroups]);

    // Clears filter state and held outputs, puts every level on the floor and restarts the
    // decimation schedule.
    void clear();

    // Levels are read by other threads while the audio thread writes them; each is a 32-bit
    // value written and read whole.
    float level(int band) const;
    void setLevel(int band, float value);

    // One input sample through every group that is due. Kernel::run<sections>(quad, levels,
    // c, input, peak) runs one quad, updates its four levels and returns lane 3's output.
    template <class Kernel>
    void process(float x, bool peak);

private:
    template <class Kernel, int Sections>
    void processWith(float x, bool peak);
    float detectorOf(int q) const;

    FilterQuad quad_[kQuadCount];
    Lanes levels_[kQuadCount];
    float detector_[kDetectorGroups] = {};
    float heldLowPass_[kStageCount] = {};
    uint32_t phase_[kStageCount + 1] = {};  // stages 0-4, then the bottom group
    int sections_ = 1;
};

inline float loadLevel(const float& slot) {
    return std::atomic_ref<float>(const_cast<float&>(slot)).load(std::memory_order_relaxed);
}

inline void storeLevel(float& slot, float value) {
    std::atomic_ref<float>(slot).store(value, std::memory_order_relaxed);
}

inline float FilterBank::detectorOf(int q) const {
    if (q < kFirstStageQuad) return detector_[kTopGroup];
    if (q < kBottomQuad) return detector_[kFirstStageGroup + q - kFirstStageQuad];
    return detector_[kBottomGroup];
}

template <class Kernel>
void FilterBank::process(float x, bool peak) {
    if (sections_ == 1) {
        processWith<Kernel, 1>(x, peak);
    } else {
        processWith<Kernel, kMaxSections>(x, peak);
    }
}

template <class Kernel, int Sections>
void FilterBank::processWith(float x, bool peak) {
    for (int q = kTopQuad; q < kFirstStageQuad; ++q) {
        Kernel::template run<Sections>(quad_[q], levels_[q], detectorOf(q), x, peak);
    }

    // Stage s runs every 2^s samples on the latest low-pass output of stage s - 1; the
    // phases set by clear() keep the decimated stages off each other's samples.
    for (int s = 0; s < kStageCount; ++s) {
        phase_[s] = (phase_[s] + 1) & ((1u << s) - 1);
        if (phase_[s] != 0) continue;
        const float input = s == 0 ? x : heldLowPass_[s - 1];
        const int q = kFirstStageQuad + s;
        heldLowPass_[s] = Kernel::template run<Sections>(quad_[q], levels_[q], detectorOf(q), input, peak);
    }

    phase_[kStageCount] = (phase_[kStageCount] + 1) & 31u;
    if (phase_[kStageCount] == 0) {
        const float input = heldLowPass_[kStageCount - 1];
        for (int q = kBottomQuad; q < kQuadCount; ++q) {
            Kernel::template run<Sections>(quad_[q], levels_[q], detectorOf(q), input, peak);
        }
    }
}

// The two routines; both give the same results.
void processScalar(FilterBank& bank, float x, bool peak);
void processVector(FilterBank& bank, float x, bool peak);

}  // namespace analyzer
