#pragma once
// The equalizer with the linear-phase filter switched off: per side, the eight bands in order,
// each band's section run twice in series (two states, the same coefficients). Twice gives the
// band its designed |H|² while keeping minimum phase and adding no delay.
//
// The coefficients are read once per block through a reader the owner supplies, so the band
// model's lock-free view (or anything else that yields a BiquadCoefficients per slot) serves.
// A switched-off band is skipped; its state is cleared, so it starts from rest when it comes
// back on.

#include <cstdint>

#include "dsp/EqTypes.h"

namespace dsp {

class MinimumPhaseCascade {
public:
    static constexpr int kSectionsPerBand = 2;

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
        for (int side = 0; side < kSides; ++side) {
            Side& s = sides_[side];
            s.count = 0;
            for (int band = 0; band < kBandsPerSide; ++band) {
                const int slot = side * kBandsPerSide + band;
                const bool on = (activeSlots >> slot) & 1u;
                if (!on) {
                    if (wasActive_ & (1u << slot)) clearSlot(slot);
                    continue;
                }
                const BiquadCoefficients c = reader(slot);
                s.run[s.count++] = slot;
                coefficients_[slot] = c;
            }
        }
        wasActive_ = activeSlots;
    }

    // One sample of each side through its active bands.
    void process(double& a, double& b) {
        a = runSide(sides_[0], a);
        b = runSide(sides_[1], b);
    }

    // All sections at rest (after a pause).
    void clear() {
        for (int slot = 0; slot < kBandSlots; ++slot) clearSlot(slot);
    }

private:
    struct State {
        double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    };
    struct Side {
        int run[kBandsPerSide] = {};
        int count = 0;
    };

    static double section(const BiquadCoefficients& c, State& s, double x) {
        double y = c.b0 * x + c.b1 * s.x1 + c.b2 * s.x2 - c.a1 * s.y1 - c.a2 * s.y2;
        y = (y + 1e-30) - 1e-30;  // a decaying tail never reaches the denormal range
        s.x2 = s.x1;
        s.x1 = x;
        s.y2 = s.y1;
        s.y1 = y;
        return y;
    }

    double runSide(const Side& side, double x) {
        for (int i = 0; i < side.count; ++i) {
            const int slot = side.run[i];
            const BiquadCoefficients& c = coefficients_[slot];
            x = section(c, states_[slot][0], x);
            x = section(c, states_[slot][1], x);
        }
        return x;
    }

    void clearSlot(int slot) {
        for (State& st : states_[slot]) st = State{};
    }

    BiquadCoefficients coefficients_[kBandSlots];
    State states_[kBandSlots][kSectionsPerBand];
    Side sides_[kSides];
    uint32_t wasActive_ = 0;
};

}  // namespace dsp
