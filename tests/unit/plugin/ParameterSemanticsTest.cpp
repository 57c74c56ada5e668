// Parameter behaviour that a host cannot see directly: side linking, the editor's band setters,
// the preset bank's global slots and the analyzer settings.

#include <gtest/gtest.h>

#include <string>

#include "PluginHarness.h"
#include "analyzer/SPAN.h"
#include "gui/Editor.h"
#include "plugin/AnalyzerSettings.h"
#include "plugin/SideLink.h"

using namespace params;

namespace {

std::string display(Plugin& p, int index) {
    char text[64] = {};
    p.getParameterDisplay(index, text);
    return text;
}

std::vector<int> automatedIndexes(const RecordingHost& host) {
    std::vector<int> indexes;
    for (const auto& call : host.of(audioMasterAutomate)) indexes.push_back(call.index);
    return indexes;
}

}  // namespace

TEST(SideLinkTest, ChannelSetsWeightsAuditionSideAndLinking) {
    struct Case {
        int step;
        bool midSide;
        int stored;
        double a, b;
    } cases[] = {{0, false, kChannelLeft, 1, 0}, {1, false, kChannelRight, 0, 1}, {2, false, kChannelLink, 0.5, 0.5},
                 {0, true, kChannelLeft, 2, 0},  {1, true, kChannelRight, 0, 2},  {2, true, kChannelLink, 2, 0}};
    SideLink link;
    for (const Case& c : cases) {
        link.setChannel(c.step, c.midSide);
        EXPECT_EQ(link.channel(), c.stored);
        EXPECT_EQ(link.auditionSide(), c.stored == kChannelRight ? 1 : 0);
        EXPECT_EQ(link.analyzerWeights()[0], c.a);
        EXPECT_EQ(link.analyzerWeights()[1], c.b);
        EXPECT_EQ(link.linked(false), c.stored == kChannelLink);
        EXPECT_FALSE(link.linked(true)) << "a preset load sets each side on its own";
        // The editor writes the sides Channel selects; a mono input only has the left one.
        EXPECT_EQ(link.edits(0, false), c.stored != kChannelRight);
        EXPECT_EQ(link.edits(1, false), c.stored != kChannelLeft);
        EXPECT_TRUE(link.edits(0, true));
        EXPECT_FALSE(link.edits(1, true));
    }
    // LR<>MS alone keeps the weights, and stops auditioning the right side.
    link.setChannel(1, true);
    link.midSideChanged();
    EXPECT_EQ(link.analyzerWeights()[1], 2.0);
    EXPECT_EQ(link.auditionSide(), 0);
}

TEST(AnalyzerSettingsTest, StepsReachTheAnalyzer) {
    SPAN span;
    applyAnalyzerSetting(span, kSpanMode, 1);
    EXPECT_EQ(span.mode(), 1);
    applyAnalyzerSetting(span, kSpanSpeed, 2);
    EXPECT_EQ(span.speed(), 2);
    for (auto [step, order] : {std::pair{0, 2}, {1, 6}, {3, 6}}) {
        applyAnalyzerSetting(span, kSpanFilter, step);
        EXPECT_EQ(span.filterOrder(), order) << step;
    }
    applyAnalyzerSetting(span, kSpanHold, 5);  // the plot's business: nothing changes here
    EXPECT_EQ(span.speed(), 2);
}

using ParameterSemantics = PluginTest;

TEST_F(ParameterSemantics, GlobalSettingsGoIntoEveryPreset) {
    for (int index : {kSpan, kSpanType, kSpanColor, kSpanSpeed, kSpanMode, kSpanHold, kSpanResp, kAutoZoom, kSpanDrive,
                      kSpanWidth, kSpanFilter}) {
        const float v = 0.37f + index * 0.001f;
        p.setParameter(index, v);
        for (int preset = 0; preset < presets::kPresetCount; ++preset)
            EXPECT_EQ(p.getPreset(preset)->values[index], v) << index << " in preset " << preset;
    }
    // Preset parameters stay with their preset, and selecting another keeps the global values.
    p.setParameter(kOutput, 0.9f);
    EXPECT_EQ(p.getPreset(1)->values[kOutput], 0.5f);
    p.selectPreset(4);
    EXPECT_EQ(p.getParameter(kSpanColor), 0.37f + 0.074f);
    EXPECT_EQ(p.getParameter(kOutput), 0.5f);
}

TEST_F(ParameterSemantics, EditorBandSettersFollowChannel) {
    // RIGHT: only the right side, one notification with the value.
    p.setParameter(kChannel, stepCentre(1, 3));
    h.host.calls.clear();
    p.setBandFrequency(2, 0.5f);
    EXPECT_EQ(p.getParameter(kFreqR + 2), 0.5f);
    EXPECT_EQ(p.getParameter(kFreq + 2), 0.365637f);
    EXPECT_EQ(display(p, kFreqR + 2), "632");
    EXPECT_EQ(automatedIndexes(h.host), std::vector<int>{kFreqR + 2});
    EXPECT_EQ(h.host.of(audioMasterAutomate)[0].value, 0.5f);
    EXPECT_EQ(p.getPreset(0)->values[kFreqR + 2], 0.5f);

    // A mono input always edits the left side, whatever Channel says.
    VstSpeakerArrangement mono{}, stereo{};
    mono.numChannels = 1;
    stereo.numChannels = 2;
    p.setSpeakerArrangement(&mono, &mono);
    EXPECT_TRUE(p.getPluginEditor()->isMonoInput());
    h.host.calls.clear();
    p.setBandGain(2, 0.75f);
    EXPECT_EQ(p.getParameter(kGain + 2), 0.75f);
    EXPECT_EQ(p.getParameter(kGainR + 2), 0.5f);
    EXPECT_EQ(automatedIndexes(h.host), std::vector<int>{kGain + 2});

    // LINK with stereo: both sides, left notified first; bands that do not exist are ignored.
    p.setSpeakerArrangement(&stereo, &mono);
    EXPECT_FALSE(p.getPluginEditor()->isMonoInput());
    p.setParameter(kChannel, stepCentre(2, 3));
    h.host.calls.clear();
    p.setBandQ(7, 1.0f);
    p.setBandQ(8, 1.0f);
    p.setBandQ(-1, 1.0f);
    EXPECT_EQ(p.getParameter(kQ + 7), 1.0f);
    EXPECT_EQ(p.getParameter(kQR + 7), 1.0f);
    EXPECT_EQ(automatedIndexes(h.host), (std::vector<int>{kQ + 7, kQR + 7}));
}

TEST_F(ParameterSemantics, PresetLoadSetsEachSideOnItsOwn) {
    p.setParameter(kChannel, 0.0f);  // LEFT
    p.setParameter(kFreq, 0.1f);
    p.setParameter(kChannel, 1.0f);  // back to LINK, stored in the preset too
    const std::string right = display(p, kFreqR);
    p.selectPreset(0);
    EXPECT_EQ(display(p, kFreq), "40");
    EXPECT_EQ(display(p, kFreqR), right);
    EXPECT_EQ(p.getParameter(kFreqR), 0.132647f);
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
