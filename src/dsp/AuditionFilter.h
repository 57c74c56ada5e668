#pragma once
// Band audition: while the user holds a band in the editor, both raw input channels go
// through a resonant band-pass at that band's frequency instead of the equalizer, so the band's
// region can be heard on its own. Width sets its Q, level its gain.
//
// The section is y = b0·x + b1·x1 − a1·y1 − a2·y2 with b1 = −b0 (a zero at DC only), designed
// at the host rate whatever rate the equalizer runs at.
//
// Threads: the editor decides the section (AuditionSection::design) and hands it over with
// AuditionHandoff::publish; the audio thread picks up the newest one per block with
// AuditionHandoff::read and runs it in its own AuditionFilter. Neither side ever waits.

#include <atomic>
#include <cstdint>

#include "dsp/SidePair.h"

namespace dsp {

struct AuditionSection {
    double b0 = 1.0, b1 = 0.0, a1 = 0.0, a2 = 0.0;
    bool active = false;  // a band is being auditioned

    // Q = 20^(0.5·width + 0.5) and the gain 2^(4·level) at the centre, width and level in
    // [0, 1], frequency at the host rate; every coefficient flushed of denormals.
    static AuditionSection design(double frequencyHz, double width, double level, double hostRate);
    // No band (index −1): b0 = 1 and the rest 0, a plain wire.
    static AuditionSection off() { return {}; }
};

class AuditionFilter {
public:
    // The state is kept across a change of section, so a moving band glides.
    void setSection(const AuditionSection& s) { section_ = s; }
    const AuditionSection& section() const { return section_; }
    bool active() const { return section_.active; }

    void clear() {
        for (State& s : state_) s = State{};
    }

    // One sample of channel 0 or 1. With Sample = float each result is rounded to float before
    // it becomes state and output, as the float host path would hold it.
    template <typename Sample>
    double process(int channel, double x) {
        State& s = state_[channel];
        double y = section_.b0 * x + section_.b1 * s.x1 - section_.a1 * s.y1 - section_.a2 * s.y2;
        if constexpr (sizeof(Sample) == sizeof(float)) y = static_cast<float>(y);
        // An input large enough to overflow the resonance would otherwise ring as NaN for good.
        y = finiteOrZero((y + 1e-30) - 1e-30);
        s.x1 = x;
        s.y2 = s.y1;
        s.y1 = y;
        return y;
    }

private:
    struct State {
        double x1 = 0.0, y1 = 0.0, y2 = 0.0;
    };

    AuditionSection section_;
    State state_[2];
};

// The newest section from one writer thread to the audio thread: a triple buffer. The writer
// owns one copy, the reader one, and the third is in transit; an atomic byte names the copy in
// transit and flags it fresh. Wait-free on both sides; each copy is touched by one side at a
// time.
class AuditionHandoff {
public:
    void publish(const AuditionSection& s) {
        copies_[back_] = s;
        back_ = middle_.exchange(static_cast<uint8_t>(back_ | kFresh), std::memory_order_acq_rel) & kIndex;
    }
    const AuditionSection& read() {
        if (middle_.load(std::memory_order_relaxed) & kFresh)
            front_ = middle_.exchange(front_, std::memory_order_acq_rel) & kIndex;
        return copies_[front_];
    }

private:
    static constexpr uint8_t kIndex = 0x3;
    static constexpr uint8_t kFresh = 0x4;

    AuditionSection copies_[3];
    std::atomic<uint8_t> middle_{1};
    uint8_t front_ = 0;  // reader's
    uint8_t back_ = 2;   // writer's
};

}  // namespace dsp
