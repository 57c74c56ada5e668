// One thread processes, a second automates every kind of parameter and auditions bands, a third
// pauses, reconfigures and reads the analyzer, with an editor window reported open so that the
// analyzer is fed. Meant for ThreadSanitizer; the output must stay finite throughout.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "gui/Editor.h"
#include "plugin/Plugin.h"
#include "presets/Parameters.h"
#include "support/QuietHost.h"
#include "support/TempStore.h"

namespace {

struct OpenWindow : AEffEditor {
    bool isOpen() override { return true; }
};

// The analyzer parameters that reach the analyzer, all stepped in 16.
constexpr int kAnalyzerSettings[] = {params::kSpanSpeed, params::kSpanMode, params::kSpanResp, params::kSpanFilter};
constexpr int kAnalyzerSteps = 16;

}  // namespace

TEST(PluginThreads, ProcessWhileAutomatingAndReconfiguring) {
    ScopedStoreFolder folder;
    auto plugin = std::make_unique<Plugin>(&quietHost);
    plugin->setSampleRate(48000.0f);
    plugin->setBlockSize(256);
    OpenWindow window;
    plugin->setEditor(&window);
    plugin->setParameter(params::kSpan, params::stepCentre(1, 2));
    plugin->resume();

    std::atomic<bool> stop{false};
    std::atomic<long> blocks{0}, nonFinite{0};
    const auto processBlock = [&](auto sample, auto process, std::mt19937& rng) {
        using T = decltype(sample);
        std::uniform_real_distribution<T> d(-0.5, 0.5);
        std::vector<T> inL(256), inR(256), outL(256), outR(256);
        for (int i = 0; i < 256; ++i) inL[i] = d(rng), inR[i] = d(rng);
        T* in[2] = {inL.data(), inR.data()};
        T* out[2] = {outL.data(), outR.data()};
        (plugin.get()->*process)(in, out, 256);
        for (int i = 0; i < 256; ++i)
            if (!std::isfinite(outL[i]) || !std::isfinite(outR[i])) nonFinite.fetch_add(1);
    };
    std::thread audio([&] {
        std::mt19937 rng(1);
        while (!stop.load(std::memory_order_relaxed)) {
            if (blocks.fetch_add(1, std::memory_order_relaxed) % 2 == 0)
                processBlock(0.0f, &Plugin::processReplacing, rng);
            else
                processBlock(0.0, &Plugin::processDoubleReplacing, rng);
            float a, b;
            plugin->getOutputPeaks(a, b);
        }
    });

    std::thread automation([&] {
        std::mt19937 rng(2);
        std::uniform_real_distribution<float> u(0.0f, 1.0f);
        std::uniform_int_distribution<int> band(0, params::kBands - 1);
        int round = 0;
        while (!stop.load(std::memory_order_relaxed)) {
            const int b = band(rng);
            plugin->setParameter(params::kType + b, params::stepCentre(rng() % 7, params::kBandTypeSteps));
            plugin->setParameter(params::kFreq + b, u(rng));
            plugin->setParameter(params::kQ + b, u(rng));
            plugin->setParameter(params::kGain + b, u(rng));
            plugin->setParameter(params::kOutput, u(rng));
            plugin->setParameter(params::kLrMs, params::stepCentre(rng() % 2, 2));
            plugin->setParameter(params::kListen, params::stepCentre(rng() % 3, 3));
            switch (round++ % 3) {
                case 0: plugin->setParameter(params::kFat, params::stepCentre(rng() % 2, 2)); break;
                case 1: plugin->setParameter(params::kResolution, params::stepCentre(rng() % 2, 3)); break;
                default: plugin->setParameter(params::kLinPhase, params::stepCentre(rng() % 2, 2)); break;
            }
            plugin->setAuditionBand(round % 4 == 0 ? b : -1);
            plugin->setAuditionWidth(u(rng));
            plugin->setAuditionLevel(u(rng));
            plugin->resetOutputPeaks();
            plugin->setParameter(kAnalyzerSettings[round % 4], params::stepCentre(rng() % 5, kAnalyzerSteps));
            if (round % 16 == 0) plugin->setParameter(params::kSpan, params::stepCentre(rng() % 2, 2));
        }
    });

    std::thread lifecycle([&] {
        const int sizes[] = {256, 64, 512, 128};
        int k = 0;
        while (!stop.load(std::memory_order_relaxed)) {
            plugin->suspend();
            plugin->setBlockSize(sizes[k % 4]);
            if (k % 8 == 7) plugin->setSampleRate(k % 16 == 7 ? 48000.0f : 44100.0f);
            if (k % 8 == 3) plugin->setSampleRate(32000.0f);  // the analyzer has no tables for it
            ++k;
            char text[Plugin::kLatencyTextSize];
            plugin->getLatencyText(text);
            float bars[SPAN::kBands];
            plugin->getAnalyzerBars(bars);
            for (float v : bars)
                if (!std::isfinite(v)) nonFinite.fetch_add(1);
            plugin->resume();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });

    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (std::chrono::steady_clock::now() < until && blocks.load() < 4000)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    stop.store(true);
    audio.join();
    automation.join();
    lifecycle.join();
    plugin->setEditor(plugin->getPluginEditor());  // the plug-in deletes its own editor only

    EXPECT_GT(blocks.load(), 10);
    EXPECT_EQ(nonFinite.load(), 0);
}
