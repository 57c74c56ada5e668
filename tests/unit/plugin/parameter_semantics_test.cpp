// Parameter behaviour that a host cannot see directly: channel weights, the editor's band
// setters, the preset bank's global slots, and the engine's frame and partition lengths.
// (Steps, value texts and the natural values behind them are checked through the library.)

#include <gtest/gtest.h>

#include <cmath>

#include "PluginHarness.h"
#include "gui/Editor.h"

class ParameterSemantics : public ::testing::Test {
protected:
    std::vector<int> automatedIndexes() const {
        std::vector<int> indexes;
        for (const auto& call : h.host.of(audioMasterAutomate)) indexes.push_back(call.index);
        return indexes;
    }
    PluginHarness h;
    Plugin& p = *h.plugin;
};

TEST_F(ParameterSemantics, ChannelAndAnalyzerWeights) {
    double a, b;
    struct Case {
        float channel, lrms;
        int stored;
        double a, b;
    } cases[] = {{0.0f, 0.25f, 1, 1, 0},   {0.5f, 0.25f, 2, 0, 1},   {1.0f, 0.25f, 3, 0.5, 0.5},
                 {0.0f, 0.75f, 1, 2, 0},   {0.5f, 0.75f, 2, 0, 2},   {1.0f, 0.75f, 3, 2, 0}};
    for (const Case& c : cases) {
        p.setParameter(2, c.lrms);
        p.setParameter(71, c.channel);
        EXPECT_EQ(p.channelMode(), c.stored);
        EXPECT_EQ(p.auditionChannel(), c.stored);
        p.analyzerInputWeights(a, b);
        EXPECT_EQ(a, c.a);
        EXPECT_EQ(b, c.b);
    }
    // LR<>MS alone keeps the weights, and stops auditioning the right side.
    p.setParameter(71, 0.5f);
    p.setParameter(2, 0.25f);
    p.analyzerInputWeights(a, b);
    EXPECT_EQ(b, 2.0);
    EXPECT_NE(p.auditionChannel(), 2);
}

TEST_F(ParameterSemantics, GlobalSettingsGoIntoEveryPreset) {
    for (int index : {72, 73, 74, 75, 76, 77, 78, 80, 81, 82, 83}) {
        const float v = 0.37f + index * 0.001f;
        p.setParameter(index, v);
        for (int preset = 0; preset < presets::kPresetCount; ++preset)
            EXPECT_EQ(p.getPreset(preset)->values[index], v) << index << " in preset " << preset;
    }
    // Preset parameters stay with their preset.
    p.setParameter(5, 0.9f);
    EXPECT_EQ(p.getPreset(0)->values[5], 0.9f);
    EXPECT_EQ(p.getPreset(1)->values[5], 0.5f);
    // Selecting another preset keeps the global values.
    p.selectPreset(4);
    EXPECT_EQ(p.getParameter(74), 0.37f + 0.074f);
    EXPECT_EQ(p.getParameter(5), 0.5f);
    EXPECT_EQ(p.getParameter(70), 0.516667f);
}

TEST_F(ParameterSemantics, EditorBandSettersFollowChannel) {
    // RIGHT: only the right side, one notification.
    p.setParameter(71, 0.5f);
    h.host.calls.clear();
    p.setBandFrequency(2, 0.5f);
    EXPECT_EQ(p.getParameter(32), 0.5f);
    EXPECT_EQ(p.getParameter(24), 0.365637f);
    EXPECT_EQ(p.band(1, 2).frequency, static_cast<double>(20.0f * std::pow(10.0f, 1.5f)));
    EXPECT_EQ(automatedIndexes(), std::vector<int>{32});
    EXPECT_EQ(h.host.of(audioMasterAutomate)[0].value, 0.5f);
    EXPECT_EQ(p.getPreset(0)->values[32], 0.5f);

    // A mono input always edits the left side, whatever Channel says.
    p.setSpeakerArrangement(nullptr, nullptr);
    VstSpeakerArrangement mono{};
    mono.numChannels = 1;
    p.setSpeakerArrangement(&mono, &mono);
    EXPECT_TRUE(p.getPluginEditor()->isMonoInput());
    h.host.calls.clear();
    p.setBandGain(2, 0.75f);
    EXPECT_EQ(p.getParameter(56), 0.75f);
    EXPECT_EQ(p.getParameter(64), 0.5f);
    EXPECT_EQ(automatedIndexes(), std::vector<int>{56});

    // LINK with stereo: both sides, left notified first.
    VstSpeakerArrangement stereo{};
    stereo.numChannels = 2;
    p.setSpeakerArrangement(&stereo, &mono);
    EXPECT_FALSE(p.getPluginEditor()->isMonoInput());
    p.setParameter(71, 1.0f);
    h.host.calls.clear();
    p.setBandQ(7, 1.0f);
    EXPECT_EQ(p.getParameter(45), 1.0f);
    EXPECT_EQ(p.getParameter(53), 1.0f);
    p.setBandQ(8, 1.0f);  // no such band: nothing happens
    p.setBandQ(-1, 1.0f);
    EXPECT_EQ(automatedIndexes(), (std::vector<int>{45, 53}));
}

TEST_F(ParameterSemantics, PresetLoadSetsEachSideOnItsOwn) {
    p.setParameter(71, 0.0f);  // LEFT
    p.setParameter(22, 0.1f);
    p.setParameter(71, 1.0f);  // back to LINK, stored in the preset too
    const double right = p.band(1, 0).frequency;
    p.selectPreset(0);
    EXPECT_NEAR(p.band(0, 0).frequency, 20.0 * std::pow(10.0, 0.3), 1e-4);
    EXPECT_EQ(p.band(1, 0).frequency, right);
    EXPECT_EQ(p.getParameter(30), 0.132647f);
}

TEST_F(ParameterSemantics, SelectPresetTellsTheHostOnce) {
    p.selectPreset(7);
    EXPECT_EQ(p.getCurrentPreset(), 7);
    EXPECT_EQ(h.host.of(audioMasterUpdateDisplay).size(), 1u);
    ASSERT_EQ(h.host.of(audioMasterBeginEdit).size(), 1u);
    EXPECT_EQ(h.host.of(audioMasterBeginEdit)[0].index, 0);
    EXPECT_EQ(h.host.of(audioMasterEndEdit).size(), 1u);
    EXPECT_TRUE(h.host.of(audioMasterAutomate).empty());
    EXPECT_FALSE(p.isLoadingPreset());
    p.selectPreset(99);  // a bad index falls back to the first preset
    EXPECT_EQ(p.getCurrentPreset(), 0);
}

TEST_F(ParameterSemantics, SampleRateAndPartitionLength) {
    for (float odd : {4999.9f, 250000.0f, std::nanf("")}) {
        p.setSampleRate(odd);
        EXPECT_EQ(p.integerSampleRate(), 44100) << odd;
    }
    p.setSampleRate(96000.0f);
    EXPECT_EQ(p.integerSampleRate(), 96000);

    p.setBlockSize(512);
    EXPECT_EQ(p.partitionLength(), 512);
    p.setParameter(1, 0.75f);  // FAT doubles the frame and the partition
    EXPECT_EQ(p.fftLength(), 8192);
    EXPECT_EQ(p.partitionLength(), 1024);
    p.setBlockSize(100000);  // never more than twice the frame
    EXPECT_EQ(p.partitionLength(), 2 * 8192);
    p.setParameter(4, 1.0f);
    EXPECT_EQ(p.fftLength(), 32768);
    p.setParameter(1, 0.25f);
    EXPECT_EQ(p.fftLength(), 16384);

    p.setSampleRate(48000.0f);
    p.setBlockSize(512);
    EXPECT_EQ(p.partitionLength(), 1024);
    p.setSampleRate(192000.0f);
    p.setBlockSize(-5);  // a hop of at least one sample, whatever the host says
    EXPECT_EQ(p.partitionLength(), 2);
}

TEST_F(ParameterSemantics, AnalyzerFollowsItsParameters) {
    SPAN* span = p.getAnalyzer();
    ASSERT_NE(span, nullptr);
    // A first run's settings: speed fast, peak mode, order 6.
    EXPECT_EQ(span->speed(), 0);
    EXPECT_EQ(span->mode(), 0);
    EXPECT_EQ(span->filterOrder(), 6);
    p.setParameter(76, 1.5f / 16);
    EXPECT_EQ(span->mode(), 1);
    p.setParameter(75, 2.5f / 16);
    EXPECT_EQ(span->speed(), 2);
    p.setParameter(83, 0.5f / 16);
    EXPECT_EQ(span->filterOrder(), 2);
    p.setParameter(83, 3.5f / 16);  // every step but 0 is order 6
    EXPECT_EQ(span->filterOrder(), 6);
    p.setSampleRate(32000.0f);  // no tables for this rate: the analyzer goes quiet
    EXPECT_EQ(span->sampleRate(), 0.0f);
    float bars[31];
    p.getAnalyzerBars(bars);
    EXPECT_LT(bars[13], -90.0f);
    // No editor window is open, so the audio path would feed nothing.
    p.setParameter(72, 0.75f);
    EXPECT_FALSE(p.analyzerFeedActive());
}
