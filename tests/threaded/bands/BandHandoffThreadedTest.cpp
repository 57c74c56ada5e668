// A writer keeps redesigning while the audio-side reader reads: every set the reader sees must
// be one complete published set, never a mix. Run under ThreadSanitizer in CI.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "dsp/BandCoefficientHandoff.h"
#include "dsp/BandModel.h"

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

TEST(BandModelPublication, RedesignsWhileTheAudioThreadReads) {
    // The designing side alternates band 4 between two known designs on both sides and,
    // between them, redesigns its neighbours; the reader checks band 4 on both sides.
    auto model = std::make_unique<dsp::BandModel>();
    const dsp::BandSettings first{3, 1000.0, 0.3, 9.0};
    const dsp::BandSettings second{1, 80.0, 0.9, 0.0};
    constexpr int kBand = 3;
    constexpr double kRate = 48000.0;

    BiquadCoefficients expected[2][dsp::kSides];
    for (int which = 0; which < 2; ++which) {
        for (int side = 0; side < dsp::kSides; ++side) model->setBand(side, kBand, which == 0 ? first : second);
        model->designBand(kBand, kRate);
        for (int side = 0; side < dsp::kSides; ++side) expected[which][side] = model->section(dsp::bandSlot(side, kBand));
    }
    ASSERT_FALSE(same(expected[0][0], expected[1][0]));

    std::atomic<bool> done{false};
    int foreign = 0, seen[2] = {0, 0};
    std::thread audio([&] {
        do {  // at least one pass, however fast the writer is
            for (int side = 0; side < dsp::kSides; ++side) {
                const BiquadCoefficients c = model->readPublished(dsp::bandSlot(side, kBand));
                if (same(c, expected[0][side]))
                    ++seen[0];
                else if (same(c, expected[1][side]))
                    ++seen[1];
                else
                    ++foreign;
            }
        } while (!done.load(std::memory_order_acquire));
    });
    for (int round = 0; round < 20000; ++round) {
        const dsp::BandSettings& next = round % 2 == 0 ? first : second;
        for (int side = 0; side < dsp::kSides; ++side) model->setBand(side, kBand, next);
        model->designBand(kBand, kRate);
        model->designBand(kBand - 1, kRate);
        model->designBand(kBand + 1, kRate);
    }
    done.store(true, std::memory_order_release);
    audio.join();

    EXPECT_EQ(foreign, 0);
    EXPECT_GT(seen[0] + seen[1], 0);
}

}  // namespace
