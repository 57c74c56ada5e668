// What the built plug-in does to audio: pass-through with Power off, the process calls alike,
// block sizes and earlier non-finite input without effect, and the gain of a peaking band.

#include <numbers>
#include <random>

#include "EngineHost.h"

using namespace enginehost;

namespace {

// Floats so that the same samples can be given to both process calls exactly.
std::vector<float> noise(size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<float> out(n);
    for (float& x : out) x = std::uniform_real_distribution<float>(-0.5f, 0.5f)(rng);
    return out;
}

std::vector<double> widen(const std::vector<float>& x) { return std::vector<double>(x.begin(), x.end()); }

// Band 3 of both sides (Channel is LINK) as a peaking band at 1 kHz, +12 dB per section.
class AudioPath : public ::testing::Test {
protected:
    void startWithPeakingBand(int latencyMode) {
        started = std::make_unique<Started>(44100.0f, 512, latencyMode);
        plugin = started->plugin.get();
        ASSERT_TRUE(plugin);
        plugin->setParameter(params::kType + 2, stepCentre(3, params::kBandTypeSteps));
        plugin->setParameter(params::kFreq + 2, static_cast<float>(std::log10(1000.0 / 20.0) / 3.0));
        plugin->setParameter(params::kGain + 2, 1.0f);
    }
    std::unique_ptr<Started> started;
    vsthost::LoadedPlugin* plugin = nullptr;
};

}  // namespace

TEST_F(AudioPath, PowerOffWithoutCompensationPassesEverySampleUnchanged) {
    startWithPeakingBand(0);
    plugin->setParameter(params::kOutput, 1.0f);  // the output gain is not applied either
    plugin->setParameter(params::kPower, onOff(false));
    restart(*plugin);
    EXPECT_EQ(plugin->initialDelay(), 0);

    const std::vector<float> inL = noise(3000, 1), inR = noise(3000, 2);
    std::vector<float> outL, outR;
    run(*plugin, inL, inR, outL, outR, 512);
    EXPECT_EQ(outL, inL);
    EXPECT_EQ(outR, inR);
    std::vector<double> dOutL, dOutR;
    run(*plugin, widen(inL), widen(inR), dOutL, dOutR, 300);
    EXPECT_EQ(dOutL, widen(inL));
    EXPECT_EQ(dOutR, widen(inR));
    // In place, as many hosts process.
    std::vector<float> l = inL, r = inR;
    float* io[2] = {l.data(), r.data()};
    plugin->process(io, io, 512);
    EXPECT_EQ(l, inL);
    EXPECT_EQ(r, inR);
}

// On every path (linear or minimum phase, FAT off or on), from silence: the float call gives the
// double call's output rounded to float (all arithmetic is double), host blocks of any sizes give
// the same output as whole ones, and a burst of NaN and infinities leaves no trace once the host
// has paused the plug-in.
TEST_F(AudioPath, SameOutputWhateverTheCallTheBlocksOrEarlierNonFiniteInput) {
    startWithPeakingBand(2);
    const std::vector<float> inL = noise(24638 + 8192, 3), inR = noise(24638 + 8192, 4);
    std::vector<double> burstL = widen(noise(4096, 8)), burstR = burstL;
    for (size_t i = 100; i < 200; ++i) {
        burstL[i] = i % 2 ? NAN : INFINITY;
        burstR[i] = i % 3 ? -INFINITY : NAN;
    }
    std::mt19937 rng(7);
    std::vector<int> sizes(4000);
    for (int& s : sizes) s = std::uniform_int_distribution<int>(1, 512)(rng);
    for (int path = 0; path < 4; ++path) {
        SCOPED_TRACE("linphase " + std::to_string(path < 2) + " fat " + std::to_string(path % 2));
        plugin->setParameter(params::kLinPhase, onOff(path < 2));
        plugin->setParameter(params::kFat, onOff(path % 2));
        restart(*plugin);
        std::vector<double> dL, dR, rL, rR;
        run(*plugin, widen(inL), widen(inR), dL, dR, 512);
        double energy = 0.0;
        for (double x : dL) energy += x * x;
        EXPECT_GT(energy, 1.0) << "the signal came through";

        restart(*plugin);
        std::vector<float> fL, fR;
        run(*plugin, inL, inR, fL, fR, 512);
        for (size_t i = 0; i < dL.size(); ++i) {
            ASSERT_EQ(fL[i], static_cast<float>(dL[i])) << i;
            ASSERT_EQ(fR[i], static_cast<float>(dR[i])) << i;
        }

        run(*plugin, burstL, burstR, rL, rR, 512);
        restart(*plugin);
        run(*plugin, widen(inL), widen(inR), rL, rR, 0, sizes);
        EXPECT_EQ(rL, dL);
        EXPECT_EQ(rR, dR);
    }
}

TEST_F(AudioPath, PeakingBandRaisesItsFrequencyThroughTheLinearPhasePath) {
    startWithPeakingBand(0);
    plugin->setParameter(params::kLinPhase, onOff(true));
    const size_t n = 44100, from = n - 13230;  // the last 0.3 s, long after delay and ringing
    std::vector<double> in(n), outL, outR;
    for (size_t i = 0; i < n; ++i) in[i] = 0.01 * std::sin(2.0 * std::numbers::pi * 1000.0 * i / 44100.0);
    auto gainDb = [&](const std::vector<double>& out) {
        double sumOut = 0.0, sumIn = 0.0;
        for (size_t i = from; i < n; ++i) sumOut += out[i] * out[i], sumIn += in[i] * in[i];
        return 10.0 * std::log10(sumOut / sumIn);
    };
    for (int resolution = 0; resolution < 3; ++resolution) {
        plugin->setParameter(params::kResolution, stepCentre(resolution, 3));
        restart(*plugin);
        run(*plugin, in, in, outL, outR, 512);
        EXPECT_NEAR(gainDb(outL), 24.0, 0.2) << "resolution " << resolution;
        EXPECT_NEAR(gainDb(outR), 24.0, 0.2) << "resolution " << resolution;
    }
}
