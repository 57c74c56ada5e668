// A writer keeps redesigning while the audio-side reader reads: every set the reader sees must
// be one complete published set, never a mix. Run under ThreadSanitizer in CI.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "dsp/BandCoefficientHandoff.h"

namespace {

using dsp::BiquadCoefficients;

bool same(const BiquadCoefficients& x, const BiquadCoefficients& y) {
    return x.b0 == y.b0 && x.b1 == y.b1 && x.b2 == y.b2 && x.a1 == y.a1 && x.a2 == y.a2;
}

// Five coefficients that all encode n, so a torn set is one whose fields disagree.
BiquadCoefficients numbered(int n) {
    const double x = n;
    return {x, x + 0.25, x + 0.5, -x, x * 2.0};
}

TEST(BandCoefficientHandoff, ReaderOnlySeesWholeSetsInPublicationOrder) {
    auto handoff = std::make_unique<dsp::BandCoefficientHandoff>();
    constexpr int kSets = 200000;
    constexpr int kSlot = 5;
    std::atomic<bool> done{false};
    int torn = 0, backwards = 0, reads = 0;

    std::thread reader([&] {
        int last = -1;
        while (!done.load(std::memory_order_acquire) || last < kSets - 1) {
            const BiquadCoefficients c = handoff->read(kSlot);
            ++reads;
            if (c.b0 == 1.0 && c.b1 == 0.0 && c.b2 == 0.0 && c.a1 == 0.0 && c.a2 == 0.0) continue;  // none yet
            const int n = static_cast<int>(c.b0);
            if (!same(c, numbered(n))) ++torn;
            if (n < last) ++backwards;
            last = n;
        }
    });
    for (int n = 0; n < kSets; ++n) handoff->publish(kSlot, numbered(n));
    done.store(true, std::memory_order_release);
    reader.join();

    EXPECT_EQ(torn, 0);
    EXPECT_EQ(backwards, 0);
    EXPECT_GT(reads, 0);
}

}  // namespace
