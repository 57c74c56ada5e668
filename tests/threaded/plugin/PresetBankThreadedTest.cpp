// Automation from the audio thread against the preset bank's other users: it must never wait for
// the bank, what it writes must reach the bank, and (under ThreadSanitizer) no write may race a
// chunk load, a save, a preset change or a rename on another thread.

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <future>
#include <iterator>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "plugin/Plugin.h"
#include "presets/Parameters.h"
#include "support/TempStore.h"
#include "support/QuietHost.h"

namespace {

constexpr int kBlock = 64;
constexpr int kSpareSlot = 90;  // carried by the preset layer alone

// What the audio thread automates: slots written into the current preset, the analyzer's
// (written into every preset), spare ones, and band settings, which also go to the design lock:
// automated flat out, they must not keep the loading thread redesigning without end.
constexpr int kAutomated[] = {params::kPower, params::kLrMs, params::kOutput, params::kPlotRange,
                              params::kChannel, params::kSpan, params::kSpanColor, params::kSpanSpeed,
                              params::kAutoZoom, params::kSpanWidth, params::kListen, 85, kSpareSlot, 93,
                              // band settings: each one redesigns a band under the design lock
                              params::kGain + 2, params::kFreq + 4, params::kQ + 1, params::kType + 3};

class PresetBankThreads : public ::testing::Test {
protected:
    void SetUp() override {
        plugin = std::make_unique<Plugin>(&quietHost);
        plugin->setSampleRate(48000.0f);
        plugin->setBlockSize(kBlock);
        plugin->resume();
    }

    // One block on the calling thread, which the plug-in then takes for its audio thread.
    void processBlock() {
        float* in[2] = {input[0].data(), input[1].data()};
        float* out[2] = {output[0].data(), output[1].data()};
        plugin->processReplacing(in, out, kBlock);
    }

    float stored(int slot) { return plugin->getPreset(plugin->getCurrentPreset())->values[slot]; }

    ScopedStoreFolder folder;
    std::unique_ptr<Plugin> plugin;
    std::vector<float> input[2] = {std::vector<float>(kBlock, 0.1f), std::vector<float>(kBlock, -0.1f)};
    std::vector<float> output[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
};

TEST_F(PresetBankThreads, WhileAnotherThreadHoldsTheBankTheAudioThreadsWritesWaitForTheHolder) {
    processBlock();
    const float outputBefore = stored(params::kOutput);
    const float spareBefore = stored(kSpareSlot);
    const float speed = params::stepCentre(5, 16);
    std::promise<void> held, release;
    bool holderHasTheBank = false;
    std::thread holder([&] {
        CPresetSystemEffect::BankScope bank(*plugin);
        holderHasTheBank = static_cast<bool>(bank);
        held.set_value();
        release.get_future().wait();
    });
    held.get_future().wait();
    EXPECT_TRUE(holderHasTheBank);
    plugin->setParameter(params::kOutput, 0.8f);  // must return although the bank is held
    plugin->setParameter(kSpareSlot, 0.3f);
    plugin->setParameter(params::kSpanSpeed, speed);  // the analyzer's settings go into every preset
    processBlock();
    EXPECT_EQ(plugin->getParameter(params::kOutput), 0.8f);
    EXPECT_EQ(plugin->getParameter(kSpareSlot), 0.3f);
    EXPECT_EQ(stored(params::kOutput), outputBefore) << "written into the bank under another thread's lock";
    EXPECT_EQ(stored(kSpareSlot), spareBefore);
    release.set_value();
    holder.join();

    EXPECT_EQ(stored(params::kOutput), 0.8f) << "the holder did not apply the write when it let go";
    EXPECT_EQ(stored(kSpareSlot), 0.3f);
    EXPECT_EQ(plugin->getParameter(kSpareSlot), 0.3f);
    for (int p = 0; p < presets::kPresetCount; ++p) EXPECT_EQ(plugin->getPreset(p)->values[params::kSpanSpeed], speed) << p;
}

TEST_F(PresetBankThreads, AutomationWhileChunksLoadPresetsChangeAndNamesAreWritten) {
    std::atomic<bool> stop{false};
    std::atomic<long> blocks{0};
    std::thread audio([&] {
        std::mt19937 rng(3);
        std::uniform_real_distribution<float> value(-0.25f, 1.25f);
        while (!stop.load(std::memory_order_relaxed)) {
            processBlock();
            blocks.fetch_add(1, std::memory_order_relaxed);
            for (int i = 0; i < 4; ++i) plugin->setParameter(kAutomated[rng() % std::size(kAutomated)], value(rng));
            plugin->getParameter(kAutomated[rng() % std::size(kAutomated)]);
        }
    });

    std::mt19937 rng(4);
    char name[32];
    for (int action = 0; action < 120; ++action) {
        switch (action % 5) {
            case 0: {
                void* data = nullptr;
                const VstInt32 size = plugin->getChunk(&data);
                ASSERT_GT(size, 0);
                const std::vector<uint8_t> chunk(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size);
                EXPECT_EQ(plugin->setChunk(const_cast<uint8_t*>(chunk.data()), size), 0);
                break;
            }
            case 1: plugin->selectPreset(static_cast<int>(rng() % presets::kPresetCount)); break;
            case 2:
                std::strcpy(name, action % 2 ? "Automated" : "Renamed while playing");
                plugin->setProgramName(name);
                plugin->getProgramName(name);
                break;
            case 3: plugin->getProgramNameIndexed(0, static_cast<int>(rng() % presets::kPresetCount), name); break;
            default: {
                void* data = nullptr;
                plugin->getChunk(&data);
                plugin->resetPresetToTemplate(static_cast<int>(rng() % presets::kPresetCount));
                break;
            }
        }
    }
    stop.store(true);
    audio.join();
    EXPECT_GT(blocks.load(), 0);

    // Quiet again: a write lands at once, and nothing out of range got into the bank.
    plugin->setParameter(params::kOutput, 0.375f);
    EXPECT_EQ(stored(params::kOutput), 0.375f);
    for (int p = 0; p < presets::kPresetCount; ++p)
        for (int slot = 0; slot < presets::kPresetSlots; ++slot) {
            const float v = plugin->getPreset(p)->values[slot];
            ASSERT_TRUE(v >= 0.0f && v <= 1.0f) << "preset " << p << " slot " << slot << " holds " << v;
        }
}

}  // namespace
