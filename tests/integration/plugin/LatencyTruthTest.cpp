// The delay the plug-in reports against the delay its audio really has: an impulse through the
// built plug-in, with every band switched off, at each host rate, in each engine setting.

#include <algorithm>
#include <cmath>
#include <vector>

#include "EngineHost.h"

using namespace enginehost;

namespace {

constexpr int kBlock = 512;
// One rate of each rate class: its siblings share every figure and path. Rates from 50000 to
// 80000 Hz and from 100000 to 170000 Hz are left out on purpose: there the figures take the
// rate class by the 50/100 kHz limits while the path chooses its internal rate by the 80/170 kHz
// limits, so the figures do not describe the path.
constexpr int kRates[] = {48000, 88200, 192000};

struct Setting { bool power, linPhase, fat; int resolution; };  // resolution 0 low, 1 medium, 2 high

// The latency figures the plug-in reports, written out here independently of its own code.
int constantDelay(int rate) { return rate < 50000 ? 24638 : rate < 100000 ? 49276 : 98554; }

int pathLatency(int rate, const Setting& s) {
    const int frame = 4096 << (s.resolution + (s.fat ? 1 : 0));
    const int partition = std::min((rate <= 50000 ? 2 * kBlock : rate <= 100000 ? kBlock : kBlock / 2) * (s.fat ? 2 : 1),
                                   2 * frame);
    const int gathered = partition / 2 + frame / 2;
    if (!s.power) return 0;
    if (rate < 50000) return !s.linPhase ? (s.fat ? 63 : 0) : s.fat ? gathered / 2 + 63 - 1 : gathered - 1;
    if (!s.linPhase) return 0;
    if (rate < 100000) return s.fat ? gathered - 1 : 2 * (gathered - 1) + 126;
    return s.fat ? 2 * gathered + 124 : 2 * (2 * gathered + 124) + 3;
}

// The delay the audio must have in a latency mode: the path's own, padded to the constant in
// mode 2, and in mode 1 padded to 63 where minimum phase would otherwise report none.
int expectedDelay(int mode, int rate, const Setting& s) {
    if (mode == 2) return constantDelay(rate);
    const int path = pathLatency(rate, s);
    return mode == 1 && rate < 50000 && !s.linPhase && !(s.fat && s.power) ? path + 63 : path;
}

int expectedRecordDelay(int mode, int rate) { return mode == 2 ? constantDelay(rate) : mode == 1 && rate < 50000 ? 63 : 0; }

// Whether the audio path at this setting goes through half-band or quarter-band converters,
// which smear the impulse (its peak is at the figure); otherwise there is nothing but the
// equalizer and the compensation delay, an exact delay.
bool converted(int rate, const Setting& s) {
    if (!s.power) return false;
    if (!s.linPhase || rate < 80000) return s.fat && rate < 80000;
    return !(s.fat && rate < 170000);
}

void checkRate(int rate, int mode) {
    const Started started(static_cast<float>(rate), kBlock, mode);
    ASSERT_TRUE(started.plugin);
    vsthost::LoadedPlugin* plugin = started.plugin.get();
    // The mode's delay goes into the record whatever the engine settings.
    EXPECT_EQ(plugin->initialDelay(), expectedRecordDelay(mode, rate)) << rate;
    // Every setting in turn: Power on then off, LinPhase on then off, FAT off then on, each resolution.
    for (int k = 0; k < 24; ++k) {
        const Setting s{k < 12, k % 12 < 6, k % 6 >= 3, k % 3};
        SCOPED_TRACE("rate " + std::to_string(rate) + " mode " + std::to_string(mode) + " setting " + std::to_string(k));
        plugin->setParameter(params::kPower, onOff(s.power));
        plugin->setParameter(params::kLinPhase, onOff(s.linPhase));
        plugin->setParameter(params::kFat, onOff(s.fat));
        plugin->setParameter(params::kResolution, stepCentre(s.resolution, 3));
        restart(*plugin);
        ASSERT_LE(pathLatency(rate, s), constantDelay(rate));
        const size_t d = static_cast<size_t>(expectedDelay(mode, rate, s)), length = d + 2048;
        std::vector<double> inL(length, 0.0), inR(length, 0.0), outL, outR;
        inL[0] = 1.0;
        inR[0] = -0.5;
        run(*plugin, inL, inR, outL, outR, kBlock);
        if (converted(rate, s)) {
            EXPECT_EQ(argmaxAbs(outL), d);
            EXPECT_EQ(argmaxAbs(outR), d);
            EXPECT_GT(outL[d], 0.2);
        } else {
            EXPECT_NEAR(outL[d], 1.0, 1e-9);
            EXPECT_NEAR(outR[d], -0.5, 1e-9);
            double rest = 0.0;
            for (size_t i = 0; i < length; ++i)
                if (i != d) rest = std::max({rest, std::fabs(outL[i]), std::fabs(outR[i])});
            EXPECT_LT(rest, 1e-9);
        }
        if (::testing::Test::HasFailure()) return;
    }
}

}  // namespace

// Parameter: the latency mode, 0 (the path's own delay), 1 (minimum phase padded at ordinary
// rates) or 2 (one constant delay per rate class).
class LatencyTruth : public ::testing::TestWithParam<int> {};

TEST_P(LatencyTruth, AnImpulseComesOutAsLateAsTheFiguresSay) {
    for (int rate : kRates) checkRate(rate, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Modes, LatencyTruth, ::testing::Values(0, 1, 2));

// A rate the engine does not support runs as 44100 Hz; the smallest and a large host block
// change the path's gathering but not the constant delay of mode 2.
TEST(LatencyTruthAtTheLimits, OddRatesRunAt44100AndExtremeBlocksKeepTheDelay) {
    struct Case { float rate; int block, mode, delay; };
    const Case cases[] = {
        {3000.0f, 512, 2, 24638},    {250000.0f, 512, 2, 24638}, {250000.0f, 512, 0, 512 + 2048 - 1},
        {44100.0f, 1, 0, 1 + 2048 - 1}, {44100.0f, 1, 2, 24638},    {44100.0f, 8192, 0, 4096 + 2048 - 1},
        {44100.0f, 8192, 2, 24638},
    };
    for (const Case& c : cases) {
        const Started started(c.rate, c.block, c.mode);
        ASSERT_TRUE(started.plugin);
        vsthost::LoadedPlugin* plugin = started.plugin.get();
        std::vector<double> inL(static_cast<size_t>(c.delay) + 600, 0.0), inR(inL.size(), 0.0), outL, outR;
        inL[0] = inR[0] = 1.0;
        run(*plugin, inL, inR, outL, outR, c.block);
        EXPECT_EQ(argmaxAbs(outL), static_cast<size_t>(c.delay)) << c.rate << " Hz, block " << c.block;
        EXPECT_NEAR(outL[static_cast<size_t>(c.delay)], 1.0, 1e-9) << c.rate << " Hz, block " << c.block;
    }
}
