#pragma once
// Hands each band's newest section from the designing thread to the audio thread, five
// coefficients at a time, so that the audio thread never runs a mix of an old and a new set.
//
// Scheme: a triple buffer per band slot. Of the three copies of a slot, the writer owns one
// ("back"), the reader owns one ("front"), and the third ("middle") is in transit; a single
// atomic byte names the middle copy and carries a "fresh" flag. publish() fills the back copy
// and exchanges it with the middle one (setting the flag); read() exchanges its front copy
// with the middle one only when the flag is set, and then reads its own front copy. Every copy
// is owned by exactly one side at a time, so no copy is ever read while it is written.
//
// Both sides are wait-free: no lock, no retry loop, no allocation. A reader is never held up
// by a writer that was preempted half-way, and a writer never waits for the reader; a reader
// that falls behind simply skips the sets that were superseded before it looked. The
// acquire-release exchanges order the plain copies, so the scheme is race-free to the
// language's memory model (and to ThreadSanitizer).
//
// Contract: one reader thread (the audio thread) and one writer at a time (the designing
// thread, serialized by the caller's design lock). The writer may be a different thread from
// one design to the next as long as the lock hands it over.

#include <atomic>
#include <cstdint>

#include "dsp/EqTypes.h"

namespace dsp {

class BandCoefficientHandoff {
public:
    BandCoefficientHandoff() = default;
    BandCoefficientHandoff(const BandCoefficientHandoff&) = delete;
    BandCoefficientHandoff& operator=(const BandCoefficientHandoff&) = delete;

    // Writer: makes `section` the newest set of the slot.
    void publish(int slot, const BiquadCoefficients& section) {
        Slot& s = slots_[slot];
        s.copy[s.back] = section;
        const uint8_t previous = s.middle.exchange(static_cast<uint8_t>(s.back | kFresh), std::memory_order_acq_rel);
        s.back = previous & kIndexMask;
    }

    // Reader: the newest complete set published for the slot (identity before the first).
    BiquadCoefficients read(int slot) {
        Slot& s = slots_[slot];
        if (s.middle.load(std::memory_order_relaxed) & kFresh) {
            const uint8_t previous = s.middle.exchange(s.front, std::memory_order_acq_rel);
            s.front = previous & kIndexMask;
        }
        return s.copy[s.front];
    }

private:
    static constexpr uint8_t kIndexMask = 0x3;
    static constexpr uint8_t kFresh = 0x4;

    // One cache line per slot, so that neighbouring bands' traffic does not bounce lines.
    struct alignas(64) Slot {
        BiquadCoefficients copy[3];
        std::atomic<uint8_t> middle{1};
        uint8_t front = 0;  // touched by the reader only
        uint8_t back = 2;   // touched by the writer only
    };
    static_assert(std::atomic<uint8_t>::is_always_lock_free);

    Slot slots_[kBandSlots];
};

}  // namespace dsp
