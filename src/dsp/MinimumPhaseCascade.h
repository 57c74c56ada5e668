#pragma once
// The equalizer with the linear-phase filter switched off: per side, the eight bands in order,
// each band's section run twice in series (two states, the same coefficients). Twice gives the
// band its designed |H|² while keeping minimum phase and adding no delay.
//
// The coefficients are read once per block through a reader the owner supplies, so the band
// model's lock-free view (or anything else that yields a BiquadCoefficients per slot) serves.
// A switched-off band is skipped; its state is cleared, so it starts from rest when it comes
// back on.
//
// Both sides run in one pass over stages: stage p holds the p-th active band of side A and the
// p-th active band of side B, as the two sides of a pair (SidePair.h), so that the SSE2 family
// filters both with one instruction stream. Where one side has more active bands than the
// other, the stages beyond the shorter side's last band still compute both sides (the missing
// band has zero coefficients), and the shorter side's value from before them is kept: each
// side goes through exactly its own bands, in order, whatever the family.
//
// A block runs as a wavefront: at step t, section j filters sample t − j, the sample section
// j − 1 finished one step earlier. The sections of one step do not depend on each other, so the
// processor overlaps them, where one sample taken through all sections would be one long chain
// of dependent additions. Every section still sees its samples in order and computes exactly
// what it would one sample at a time.
//
// Where the processor has AVX-512, the SSE2 family runs the whole wavefront on 512-bit
// registers (four stages' first or second passes in one), with every coefficient and state in
// a register for the whole stretch; where it has AVX2 only, the steps in which every section
// has a sample run on 256-bit registers. Same operations in the same order, no fused
// multiply-add: the numbers are those of the pair routine, bit for bit.
//
// A section adds nothing to keep a decaying tail out of the denormal range: the engine runs
// with denormals flushed to zero (DenormalFlush.h), which costs nothing per section.

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "dsp/EqTypes.h"
#include "dsp/SidePair.h"

namespace dsp {

// Stage p of the cascade: the coefficients and states of both sides' p-th active band, [side]
// in each.
struct alignas(16) CascadeStage {
    static constexpr int kPasses = 2;
    enum { kX1, kX2, kY1, kY2, kStateCount };
    double b0[kSides], b1[kSides], b2[kSides], a1[kSides], a2[kSides];
    double state[kPasses][kStateCount][kSides];
};

// Steps from..to − 1 of the wavefront of `stageCount` stages (1..8) over `pairs`, all of them
// steps where every section has a sample (to ≤ the block length, from ≥ 2·stageCount − 1).
// Leaves the states, and the in-flight samples in `pairs`, as the pair routine would.
void cascadeFullStepsAvx2(CascadeStage* stages, int stageCount, double* pairs, int from, int to);
// The whole wavefront of `stageCount` stages (1..8) over `count` pairs, in place.
void cascadeBlockAvx512(CascadeStage* stages, int stageCount, double* pairs, int count);

// The widest registers the SSE2 family's cascade may use.
enum class CascadeWidth { Pairs, Avx2, Avx512 };

inline CascadeWidth widestCascadeWidth() {
    if (platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx512)) return CascadeWidth::Avx512;
    return avx2Usable() ? CascadeWidth::Avx2 : CascadeWidth::Pairs;
}

class MinimumPhaseCascade {
public:
    static constexpr int kSectionsPerBand = CascadeStage::kPasses;
    static constexpr int kMaxBlock = 512;  // pairs per process() call

    // `widest`: the SSE2 family uses registers up to this width, where the machine has them.
    explicit MinimumPhaseCascade(CascadeWidth widest = CascadeWidth::Avx512)
        : width_(std::min(widest, widestCascadeWidth())) {}

    // Bit s set: slot s (bands 1..8 of side A, then of side B) runs. A band type of 7 or more
    // is a band switched off.
    static uint32_t activeSlots(const int (&bandTypes)[kBandSlots]) {
        uint32_t mask = 0;
        for (int s = 0; s < kBandSlots; ++s)
            if (bandTypes[s] >= 0 && bandTypes[s] < 7) mask |= 1u << s;
        return mask;
    }

    // Start of a block: takes each active slot's section from reader(slot), which returns a
    // BiquadCoefficients. Allocation-free; the reader decides whether it is lock-free.
    template <class Reader>
    void load(Reader&& reader, uint32_t activeSlots) {
        if (activeSlots != wasActive_) regroup(activeSlots);
        for (int side = 0; side < kSides; ++side) {
            for (int p = 0; p < count_[side]; ++p) {
                const BiquadCoefficients c = reader(slot_[side][p]);
                Stage& st = stages_[p];
                st.b0[side] = c.b0;
                st.b1[side] = c.b1;
                st.b2[side] = c.b2;
                st.a1[side] = c.a1;
                st.a2[side] = c.a2;
            }
        }
    }

    // `count` (at most kMaxBlock) consecutive samples of each side through its active bands, in
    // place: interleaved (A, B) pairs on a 16-byte boundary.
    template <class P>
    void process(double* pairs, int count) {
        wavefront<P>(pairs, count, 0, paired_);
        if (paired_ == longest_) return;
        std::copy(pairs, pairs + 2 * count, shorterDone_);
        wavefront<P>(pairs, count, paired_, longest_);
        for (int i = 0; i < count; ++i) {
            const P longer = P::load(pairs + 2 * i), shorter = P::load(shorterDone_ + 2 * i);
            (longerSide_ == 0 ? P::sides(longer, shorter) : P::sides(shorter, longer)).store(pairs + 2 * i);
        }
    }

    // All sections at rest (after a pause).
    void clear() {
        for (Stage& st : stages_) clearStates(st);
    }

private:
    using Stage = CascadeStage;
    enum { kX1 = Stage::kX1, kX2 = Stage::kX2, kY1 = Stage::kY1, kY2 = Stage::kY2, kStateCount = Stage::kStateCount };

    // A stage's coefficients, loaded once for both of its sections.
    template <class P>
    struct Coefficients {
        P b0, b1, b2, a1, a2;
        explicit Coefficients(const Stage& st)
            : b0(P::load(st.b0)), b1(P::load(st.b1)), b2(P::load(st.b2)), a1(P::load(st.a1)), a2(P::load(st.a2)) {}
    };

    template <class P>
    static P section(const Coefficients<P>& c, double (&s)[kStateCount][kSides], P x) {
        const P x1 = P::load(s[kX1]), x2 = P::load(s[kX2]), y1 = P::load(s[kY1]), y2 = P::load(s[kY2]);
        const P y = c.b0 * x + c.b1 * x1 + c.b2 * x2 - c.a1 * y1 - c.a2 * y2;
        x1.store(s[kX2]);
        x.store(s[kX1]);
        y1.store(s[kY2]);
        y.store(s[kY1]);
        return y;
    }

    // Stages first..last − 1 over the block; section j of the wavefront is pass j % 2 of the
    // j / 2-th of these stages. Where the whole wavefront fits the block, its middle steps
    // run every section without bounds checks.
    template <class P>
    void wavefront(double* pairs, int count, int first, int last) {
        const int sections = kSectionsPerBand * (last - first);
        if (sections == 0) return;
        if constexpr (std::is_same_v<P, Sse2Pair>) {
            if (width_ == CascadeWidth::Avx512) return cascadeBlockAvx512(stages_ + first, last - first, pairs, count);
        }
        const int fullFrom = sections - 1, fullTo = count;  // steps where every section has a sample
        auto step = [&](int t, bool checked) {
            for (int p = first; p < last; ++p) {
                Stage& st = stages_[p];
                const Coefficients<P> c(st);
                const int n = t - kSectionsPerBand * (p - first);  // pass 0's sample, pass 1 on n − 1
                for (int pass = 0; pass < kSectionsPerBand; ++pass) {
                    const int i = n - pass;
                    if (checked && (i < 0 || i >= count)) continue;
                    double* v = pairs + 2 * i;
                    section(c, st.state[pass], P::load(v)).store(v);
                }
            }
        };
        int t = 0;
        for (; t < fullFrom && t < count + sections - 1; ++t) step(t, true);
        if constexpr (std::is_same_v<P, Sse2Pair>) {
            if (width_ == CascadeWidth::Avx2 && t < fullTo) {
                cascadeFullStepsAvx2(stages_ + first, last - first, pairs, t, fullTo);
                t = fullTo;
            }
        }
        for (; t < fullTo; ++t) step(t, false);
        for (; t < count + sections - 1; ++t) step(t, true);
    }

    static void clearStates(Stage& st) {
        for (auto& sectionState : st.state)
            for (auto& v : sectionState) v[0] = v[1] = 0.0;
    }

    // A new set of active slots: the bands that stay on keep their state and move to their new
    // stage; the ones switched off are cleared; the ones switched on start from rest.
    void regroup(uint32_t activeSlots) {
        double kept[kBandSlots][kSectionsPerBand][kStateCount] = {};
        for (int side = 0; side < kSides; ++side)
            for (int p = 0; p < count_[side]; ++p)
                for (int k = 0; k < kSectionsPerBand; ++k)
                    for (int v = 0; v < kStateCount; ++v) kept[slot_[side][p]][k][v] = stages_[p].state[k][v][side];

        for (Stage& st : stages_) {
            clearStates(st);
            for (int side = 0; side < kSides; ++side)
                st.b0[side] = st.b1[side] = st.b2[side] = st.a1[side] = st.a2[side] = 0.0;
        }
        for (int side = 0; side < kSides; ++side) {
            count_[side] = 0;
            for (int band = 0; band < kBandsPerSide; ++band) {
                const int slot = side * kBandsPerSide + band;
                if (!((activeSlots >> slot) & 1u)) continue;
                const int p = count_[side]++;
                slot_[side][p] = slot;
                for (int k = 0; k < kSectionsPerBand; ++k)
                    for (int v = 0; v < kStateCount; ++v) stages_[p].state[k][v][side] = kept[slot][k][v];
            }
        }
        paired_ = count_[0] < count_[1] ? count_[0] : count_[1];
        longest_ = count_[0] < count_[1] ? count_[1] : count_[0];
        longerSide_ = count_[0] < count_[1] ? 1 : 0;
        wasActive_ = activeSlots;
    }

    const CascadeWidth width_;
    Stage stages_[kBandsPerSide] = {};
    int slot_[kSides][kBandsPerSide] = {};  // the slot of each side's p-th active band
    int count_[kSides] = {};
    int paired_ = 0;      // stages where both sides have a band
    int longest_ = 0;     // stages where at least one side has a band
    int longerSide_ = 0;  // the side with bands in stages paired_..longest_ − 1
    uint32_t wasActive_ = 0;
    alignas(16) double shorterDone_[2 * kMaxBlock];  // the shorter side's results, while the longer one goes on
};

}  // namespace dsp
