// What the built plug-in does to audio: pass-through with Power off, the two process calls
// alike, host block sizes without effect on the result, recovery after non-finite input, and
// the gain of a peaking band through the linear-phase path.

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "EngineHost.h"

using namespace enginehost;

namespace {

constexpr double kPi = 3.14159265358979323846;

// Floats so that the same samples can be given to both process calls exactly.
std::vector<float> noise(size_t n, unsigned seed, float amplitude = 0.5f) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> d(-amplitude, amplitude);
    std::vector<float> out(n);
    for (float& x : out) x = d(rng);
    return out;
}

std::vector<double> widen(const std::vector<float>& x) { return std::vector<double>(x.begin(), x.end()); }

// Band 3 of both sides (Channel is LINK) as a peaking band at 1 kHz, +12 dB per section.
void peakingBandAt1k(vsthost::LoadedPlugin& plugin) {
    const int band = 2;
    plugin.setParameter(params::kType + band, stepValue(3, params::kBandTypeSteps));
    plugin.setParameter(params::kFreq + band, static_cast<float>(std::log10(1000.0 / 20.0) / 3.0));
    plugin.setParameter(params::kGain + band, 1.0f);
}

class AudioPath : public ::testing::Test {
protected:
    void startWith(int latencyMode, float rate = 44100.0f) {
        plugin = start(rate, 512, latencyMode, &store);
        ASSERT_TRUE(plugin);
    }
    void TearDown() override {
        plugin.reset();
        removeStore(store);
    }

    std::string store;
    std::unique_ptr<vsthost::LoadedPlugin> plugin;
};

}  // namespace

TEST_F(AudioPath, PowerOffWithoutCompensationPassesEverySampleUnchanged) {
    startWith(0);
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

TEST_F(AudioPath, FloatAndDoubleCallsAgreeToFloatRounding) {
    startWith(2);
    peakingBandAt1k(*plugin);
    const size_t n = 24638 + 8192;
    const std::vector<float> inL = noise(n, 3), inR = noise(n, 4);
    for (bool linPhase : {true, false}) {
        plugin->setParameter(params::kLinPhase, onOff(linPhase));
        restart(*plugin);
        std::vector<float> fL, fR;
        run(*plugin, inL, inR, fL, fR, 512);
        restart(*plugin);
        std::vector<double> dL, dR;
        run(*plugin, widen(inL), widen(inR), dL, dR, 512);
        double energy = 0.0;
        for (size_t i = 0; i < n; ++i) {
            // All arithmetic is double; the float call only rounds what it writes.
            ASSERT_EQ(fL[i], static_cast<float>(dL[i])) << "linphase " << linPhase << " at " << i;
            ASSERT_EQ(fR[i], static_cast<float>(dR[i])) << "linphase " << linPhase << " at " << i;
            energy += dL[i] * dL[i];
        }
        EXPECT_GT(energy, 1.0) << "the signal came through";
    }
}

TEST_F(AudioPath, HostBlockSizesDoNotChangeTheOutput) {
    startWith(2);
    peakingBandAt1k(*plugin);
    const size_t n = 24638 + 10000;
    const std::vector<double> inL = widen(noise(n, 5)), inR = widen(noise(n, 6));
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> size(1, 512);
    std::vector<int> sizes(4000);
    for (int& s : sizes) s = size(rng);
    for (bool linPhase : {true, false}) {
        for (bool fat : {false, true}) {
            plugin->setParameter(params::kLinPhase, onOff(linPhase));
            plugin->setParameter(params::kFat, onOff(fat));
            restart(*plugin);
            std::vector<double> wholeL, wholeR;
            run(*plugin, inL, inR, wholeL, wholeR, 512);
            restart(*plugin);
            std::vector<double> rL, rR;
            run(*plugin, inL, inR, rL, rR, 0, sizes);
            EXPECT_EQ(rL, wholeL) << "linphase " << linPhase << " fat " << fat;
            EXPECT_EQ(rR, wholeR) << "linphase " << linPhase << " fat " << fat;
        }
    }
}

TEST_F(AudioPath, NonFiniteInputIsForgottenAfterASuspend) {
    startWith(2);
    peakingBandAt1k(*plugin);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (bool linPhase : {true, false}) {
        for (bool fat : {false, true}) {
            plugin->setParameter(params::kLinPhase, onOff(linPhase));
            plugin->setParameter(params::kFat, onOff(fat));
            restart(*plugin);
            std::vector<double> burstL = widen(noise(4096, 8)), burstR = burstL, outL, outR;
            for (size_t i = 100; i < 200; ++i) {
                burstL[i] = i % 2 ? nan : inf;
                burstR[i] = i % 3 ? -inf : nan;
            }
            run(*plugin, burstL, burstR, outL, outR, 512);
            restart(*plugin);
            const size_t n = 24638 + 8192;
            const std::vector<double> inL = widen(noise(n, 9)), inR = widen(noise(n, 10));
            run(*plugin, inL, inR, outL, outR, 512);
            size_t bad = 0;
            for (size_t i = 0; i < n; ++i) bad += !std::isfinite(outL[i]) || !std::isfinite(outR[i]);
            EXPECT_EQ(bad, 0u) << "linphase " << linPhase << " fat " << fat;
            EXPECT_GT(std::fabs(outL[n - 1]) + std::fabs(outL[n - 2]), 0.0) << "audio flows again";
        }
    }
}

TEST_F(AudioPath, PeakingBandRaisesItsFrequencyThroughTheLinearPhasePath) {
    startWith(0);
    peakingBandAt1k(*plugin);
    plugin->setParameter(params::kLinPhase, onOff(true));
    plugin->setParameter(params::kPower, onOff(true));
    for (int resolution = 0; resolution < 3; ++resolution) {
        plugin->setParameter(params::kResolution, stepValue(resolution, 3));
        restart(*plugin);
        const size_t n = 44100;
        std::vector<double> inL(n), inR(n), outL, outR;
        for (size_t i = 0; i < n; ++i) inL[i] = inR[i] = 0.01 * std::sin(2.0 * kPi * 1000.0 * i / 44100.0);
        run(*plugin, inL, inR, outL, outR, 512);
        // The last 0.3 s, long after the path's delay and the band's ringing.
        auto rms = [](const std::vector<double>& x, size_t from) {
            double sum = 0.0;
            for (size_t i = from; i < x.size(); ++i) sum += x[i] * x[i];
            return std::sqrt(sum / static_cast<double>(x.size() - from));
        };
        const size_t from = n - 13230;
        EXPECT_NEAR(20.0 * std::log10(rms(outL, from) / rms(inL, from)), 24.0, 0.2) << "resolution " << resolution;
        EXPECT_NEAR(20.0 * std::log10(rms(outR, from) / rms(inR, from)), 24.0, 0.2) << "resolution " << resolution;
    }
}
