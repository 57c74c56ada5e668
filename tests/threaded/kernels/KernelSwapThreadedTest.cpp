// Kernel builds on parameter threads while the audio thread multiplies with the newest
// published kernels, without a lock: the audio thread must only ever see a whole kernel set,
// never one being rewritten while it holds it, and a build whose lock wait runs out must leave
// everything as it was. Run under ThreadSanitizer.

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <future>
#include <thread>
#include <vector>

#include "dsp/AlignedBuffer.h"
#include "dsp/KernelDesigner.h"
#include "platform/TimedLock.h"
#include "unit/kernels/KernelTestSupport.h"

namespace {

using dsp::AlignedBuffer;
using dsp::BiquadCoefficients;
using dsp::KernelBuild;
using dsp::KernelDesigner;
using kernel_test::peaking;

constexpr int kN = 4096;

struct BandSet : kernel_test::SectionSet {
    BandSet(double f0, double gainDb) { with(1, peaking(f0, gainDb, 1.0, 44100)).with(8 + 5, peaking(2 * f0, -gainDb, 2.0, 44100)); }
};

// The frame the audio thread multiplies: any spectrum will do; this one has no zeros.
void fillProbe(double* a, double* b, int n) {
    for (int e = 0; e < 2 * n; ++e) {
        a[e] = 1.0 + 0.25 * std::sin(0.37 * e);
        b[e] = 1.0 - 0.25 * std::cos(0.11 * e);
    }
}

// What the probe becomes with the kernels of one band set (same family, single thread).
struct Expected {
    std::vector<double> a, b;
};
Expected expectedProduct(const BandSet& set, int n) {
    platform::TimedLock process;
    KernelDesigner d;
    EXPECT_EQ(d.buildKernels(set.s, n, 44100.0, true, process), KernelBuild::Built);
    AlignedBuffer a(2 * n), b(2 * n);
    fillProbe(a.data(), b.data(), n);
    EXPECT_TRUE(d.multiplyByNewest(a.data(), b.data(), n));
    return {std::vector<double>(a.data(), a.data() + 2 * n), std::vector<double>(b.data(), b.data() + 2 * n)};
}

bool same(const double* got, const std::vector<double>& want) {
    return std::memcmp(got, want.data(), sizeof(double) * want.size()) == 0;
}

class KernelSwapThreaded : public ::testing::Test {
protected:
    platform::TimedLock processLock;
    KernelDesigner designer;
};

// Two parameter threads rebuild with band sets A and B in turn; the audio thread multiplies a
// probe with the newest set, both sides at once, and finds exactly A's or B's product on both
// sides every time.
TEST_F(KernelSwapThreaded, AudioThreadOnlyEverSeesAWholeKernelSet) {
    const BandSet setA(400, 9), setB(3000, -7);
    const Expected wantA = expectedProduct(setA, kN), wantB = expectedProduct(setB, kN);
    ASSERT_EQ(designer.buildKernels(setA.s, kN, 44100.0, true, processLock), KernelBuild::Built);

    std::atomic<int> buildersRunning{2};
    const auto builder = [&](bool startWithB) {
        dsp::KernelCurves curves;
        for (int i = 0; i < 24; ++i) {
            const BandSet& set = ((i % 2 == 0) == startWithB) ? setB : setA;
            EXPECT_EQ(designer.buildKernels(set.s, kN, 44100.0, true, processLock, &curves), KernelBuild::Built);
        }
        buildersRunning.fetch_sub(1);
    };

    int seenA = 0, seenB = 0, multiplies = 0;
    std::thread audio([&] {
        AlignedBuffer a(2 * kN), b(2 * kN);
        while (buildersRunning.load() > 0 || multiplies < 8) {
            fillProbe(a.data(), b.data(), kN);
            ASSERT_TRUE(designer.multiplyByNewest(a.data(), b.data(), kN));
            ++multiplies;
            if (same(a.data(), wantA.a) && same(b.data(), wantA.b)) {
                ++seenA;
            } else if (same(a.data(), wantB.a) && same(b.data(), wantB.b)) {
                ++seenB;
            } else {
                ADD_FAILURE() << "multiply " << multiplies << " met a torn or unknown kernel pair";
                return;
            }
        }
    });
    std::thread first(builder, false), second(builder, true);
    first.join();
    second.join();
    audio.join();
    EXPECT_EQ(seenA + seenB, multiplies);
    EXPECT_FALSE(designer.rebuildPending());
}

// Rebuilds that switch the frame size: a multiply at the old size is refused while the new
// size is active, and otherwise gives that size's exact product.
TEST_F(KernelSwapThreaded, FrameSizeSwitchesNeverMixSizes) {
    const BandSet set(700, 6);
    const Expected want = expectedProduct(set, kN);
    std::atomic<bool> building{true};
    std::thread builder([&] {
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(designer.buildKernels(set.s, i % 2 ? 2 * kN : kN, 44100.0, true, processLock),
                      KernelBuild::Built);
        building.store(false);
    });
    AlignedBuffer a(2 * kN), b(2 * kN);
    int refused = 0, matched = 0;
    do {
        fillProbe(a.data(), b.data(), kN);
        if (!designer.multiplyByNewest(a.data(), b.data(), kN)) {
            ++refused;
            continue;
        }
        ASSERT_TRUE(same(a.data(), want.a) && same(b.data(), want.b));
        ++matched;
    } while (building.load());
    builder.join();
    EXPECT_GT(refused + matched, 0);
    EXPECT_EQ(designer.activeFrameSize(), 2 * kN);
}

// The set the audio thread holds stays as it was however many builds are published meanwhile;
// its next acquire then gets the newest.
TEST_F(KernelSwapThreaded, AHeldSetIsNeverRewritten) {
    const BandSet held(250, 8), later(5000, -3);
    ASSERT_EQ(designer.buildKernels(held.s, kN, 44100.0, true, processLock), KernelBuild::Built);
    const dsp::KernelSet& set = designer.acquireNewest();
    const std::vector<double> before(set.spectrum(0), set.spectrum(0) + 2 * kN);
    std::thread builder([&] {
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(designer.buildKernels((i % 3 ? held : later).s, i % 2 ? 2 * kN : kN, 44100.0, true, processLock),
                      KernelBuild::Built);
    });
    builder.join();
    EXPECT_TRUE(same(set.spectrum(0), before));
    EXPECT_EQ(set.frameSize(), kN);
    EXPECT_EQ(designer.acquireNewest().frameSize(), 2 * kN);  // build 11 was the last
}

// A build whose process-lock wait runs out (another build holds it) is skipped without a trace
// and asks to be redone; the next build that gets through clears the request.
TEST_F(KernelSwapThreaded, LockTimeoutSkipsTheBuildAndKeepsTheNewestSet) {
    const BandSet before(500, 4), after(1500, -4);
    const Expected wantBefore = expectedProduct(before, kN);
    ASSERT_EQ(designer.buildKernels(before.s, kN, 44100.0, true, processLock), KernelBuild::Built);
    std::promise<void> taken, release;
    std::thread holder([&] {
        platform::TimedLock::Guard guard(processLock);
        taken.set_value();
        release.get_future().wait();
    });
    taken.get_future().wait();
    dsp::KernelCurves curves;
    curves.side[0][0] = curves.side[1][0] = -7.0f;
    EXPECT_EQ(designer.buildKernels(after.s, 2 * kN, 44100.0, true, processLock, &curves, 20), KernelBuild::Skipped);
    EXPECT_TRUE(designer.rebuildPending());
    EXPECT_EQ(designer.activeFrameSize(), kN);
    EXPECT_EQ(curves.side[0][0], -7.0f);
    release.set_value();
    holder.join();

    AlignedBuffer a(2 * kN), b(2 * kN);
    fillProbe(a.data(), b.data(), kN);
    ASSERT_TRUE(designer.multiplyByNewest(a.data(), b.data(), kN));
    EXPECT_TRUE(same(a.data(), wantBefore.a) && same(b.data(), wantBefore.b));

    EXPECT_EQ(designer.buildKernels(after.s, 2 * kN, 44100.0, true, processLock, &curves), KernelBuild::Built);
    EXPECT_FALSE(designer.rebuildPending());
    EXPECT_EQ(designer.activeFrameSize(), 2 * kN);
    EXPECT_NE(curves.side[0][0], -7.0f);
}

}  // namespace
