// The header, the jog and the edit knobs driven with mouse, wheel and key events against the
// editor opened off screen; every outcome is read back through the plug-in's parameters and
// what it told the host.

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "EditorScriptFixture.h"

namespace {

// Centres of the controls the scripts use (frame pixels).
constexpr CPoint kFrequencyKnob[] = {{98, 319}, {167, 319}, {236, 319}};
constexpr CPoint kGainKnob[] = {{97, 376}, {166, 376}, {235, 376}};
constexpr CPoint kQKnob1(98, 434);
constexpr CPoint kOutputKnob(673, 397);
constexpr CPoint kHeaderOutput(490, 173);
constexpr CPoint kJogCentre(645, 89);
constexpr CPoint kJogUpperLeft(605, 59), kJogUpperRight(685, 59), kJogTop(645, 40);
constexpr CPoint kJogLowerLeft(605, 119), kJogLowerRight(685, 119), kJogDeadRing(645, 46);
constexpr CPoint kEmptyPanel(560, 200);  // no control there

constexpr float kLeft = 0.0f, kRight = 0.5f, kLink = 1.0f;  // Channel values

class ValueControlsScript : public EditorScriptFixture {
protected:
    ValueControlsScript() {
        p().setParameter(params::kAutoZoom, 0.25f);
        p().setParameter(params::kChannel, kLink);
        h->host.calls.clear();
    }

    void typeInto(CPoint field, const std::string& text) {
        click(field, kLButton | kDoubleClick);
        for (char c : text) {
            VstKeyCode key{c, 0, 0};
            editor().onKeyDown(key);
        }
        VstKeyCode enter{0, VKEY_RETURN, 0};
        editor().onKeyDown(enter);
    }
    std::vector<int> begunEdits() const {
        std::vector<int> indexes;
        for (const auto& c : h->host.of(audioMasterBeginEdit)) indexes.push_back(c.index);
        return indexes;
    }
};

struct SideCase {
    float channel;
    bool left, right;
};
constexpr SideCase kSideCases[] = {{kLeft, true, false}, {kRight, false, true}, {kLink, true, true}};

TEST_F(ValueControlsScript, AKnobDragWritesAndBracketsTheSidesChannelSelects) {
    for (const SideCase& c : kSideCases) {
        p().setParameter(params::kChannel, c.channel);
        p().setParameter(params::kFreq + 1, 0.5f);
        p().setParameter(params::kFreqR + 1, 0.5f);
        h->host.calls.clear();
        drag(kFrequencyKnob[1], 0, -50);  // a tenth of the range
        EXPECT_NEAR(param(params::kFreq + 1), c.left ? 0.6f : 0.5f, 1e-6) << c.channel;
        EXPECT_NEAR(param(params::kFreqR + 1), c.right ? 0.6f : 0.5f, 1e-6) << c.channel;
        std::vector<int> expected;
        if (c.left) expected.push_back(params::kFreq + 1);
        if (c.right) expected.push_back(params::kFreqR + 1);
        EXPECT_EQ(begunEdits(), expected) << c.channel;
        EXPECT_EQ(h->host.of(audioMasterEndEdit).size(), expected.size()) << c.channel;
    }
}

TEST_F(ValueControlsScript, ShiftPressedMidDragChangesOnlyTheSensitivity) {
    p().setParameter(params::kGain, 0.5f);
    const CPoint k = kGainKnob[0];
    press(k);
    move(CPoint(k.x, k.y - 100), kLButton);
    EXPECT_NEAR(param(params::kGain), 0.7f, 1e-5);
    move(CPoint(k.x, k.y - 101), kLButton | kShift);  // the pixel that brought Shift still counts at 1/500
    EXPECT_NEAR(param(params::kGain), 0.702f, 1e-5);
    move(CPoint(k.x, k.y - 226), kLButton | kShift);  // then 1/1250 per pixel
    EXPECT_NEAR(param(params::kGain), 0.802f, 1e-5);
    ::release(frame(), k.x, k.y - 226);
}

TEST_F(ValueControlsScript, OneWheelUnitMovesAHundredthOrWithShiftAThousandth) {
    p().setParameter(params::kGain, 0.5f);
    wheel(kGainKnob[0], 1);
    EXPECT_NEAR(param(params::kGain), 0.51f, 1e-6);
    wheel(kGainKnob[0], -1, kShift);
    EXPECT_NEAR(param(params::kGain), 0.509f, 1e-6);
    h->host.calls.clear();
    wheel({300, 173}, 1);  // the header left of its output: nothing
    wheel(kHeaderOutput, 1);
    EXPECT_NEAR(param(params::kOutput), 0.51f, 1e-6);
    EXPECT_EQ(begunEdits(), std::vector<int>{params::kOutput}) << "one edit per wheel step";
    EXPECT_EQ(h->host.of(audioMasterEndEdit).size(), 1u);
    wheel(kOutputKnob, 1);
    EXPECT_NEAR(param(params::kOutput), 0.52f, 1e-6);
    p().setParameter(params::kPlotRange, 0.5f);
    wheel(kJogCentre, -2);
    EXPECT_NEAR(param(params::kPlotRange), 0.48f, 1e-6);
}

TEST_F(ValueControlsScript, HeaderAndJogDragTheirOwnSpans) {
    p().setParameter(params::kOutput, 0.5f);
    drag(kHeaderOutput, 0, -50);
    EXPECT_NEAR(param(params::kOutput), 0.6f, 1e-6);
    drag({300, 173}, 0, -50);  // left of the output area: nothing
    EXPECT_NEAR(param(params::kOutput), 0.6f, 1e-6);
    p().setParameter(params::kPlotRange, 0.5f);
    drag(kJogCentre, 30, 0);  // 300 pixels for the range
    EXPECT_NEAR(param(params::kPlotRange), 0.6f, 1e-6);
    drag(kJogCentre, 0, -150, kLButton | kShift);  // 1500 with Shift
    EXPECT_NEAR(param(params::kPlotRange), 0.7f, 1e-6);
}

TEST_F(ValueControlsScript, CtrlClickPutsDefaultsBack) {
    p().setParameter(params::kGain + 2, 0.8f);
    p().setParameter(params::kOutput, 0.8f);
    p().setParameter(params::kPlotRange, 0.9f);
    p().setParameter(params::kFreq + 2, 0.8f);
    for (CPoint at : {kGainKnob[2], kOutputKnob, kJogCentre, kFrequencyKnob[2]}) click(at, kLButton | kControl);
    EXPECT_EQ(param(params::kGain + 2), 0.5f);
    EXPECT_EQ(param(params::kGainR + 2), 0.5f);
    EXPECT_EQ(param(params::kOutput), 0.5f);
    EXPECT_EQ(param(params::kPlotRange), 0.5f);
    EXPECT_EQ(param(params::kFreq + 2), 0.8f) << "a frequency has no default";
}

struct TypingCase {
    const char* what;
    CPoint field;
    int bandType;  // of band 1 on both sides
    const char* text;
    int index;
    double expected;  // < 0: unchanged
};
const TypingCase kTypingCases[] = {
    {"kilohertz", kFrequencyKnob[0], 3, "1.5 kHz", params::kFreq, std::log10(75.0) / 3},
    {"plain hertz", kFrequencyKnob[0], 3, "200", params::kFreqR, 1.0 / 3},
    {"not a number", kFrequencyKnob[0], 3, "1.5 kHz?", params::kFreq, -1},
    {"gain in dB", kGainKnob[0], 3, "-3 dB", params::kGain, 0.4375},
    {"gain of a cut: no typing", kGainKnob[0], 0, "6", params::kGain, -1},
    {"Q of a shelf", kQKnob1, 2, "0.7", params::kQ, (std::log2(0.7) + 1.5) / 2},
    {"Q of a 12 dB/oct cut: no typing", kQKnob1, 5, "2", params::kQ, -1},
    {"output, signed", kOutputKnob, 3, "+2.5", params::kOutput, 0.5 + 2.5 / 24},
};

TEST_F(ValueControlsScript, DoubleClickOpensTypingInDisplayUnits) {
    for (const TypingCase& c : kTypingCases) {
        setType(params::kType, c.bandType);
        for (int index : {params::kFreq, params::kQ, params::kGain, params::kOutput}) p().setParameter(index, 0.25f);
        typeInto(c.field, c.text);
        EXPECT_NEAR(param(c.index), c.expected < 0 ? 0.25 : c.expected, 1e-5) << c.what;
    }
}

// The jog's ring, from a start state of Listen and Channel, with the analyzer and mid/side off.
struct JogCase {
    const char* what;
    int listen;
    float channel;
    CPoint at;
    int32_t buttons;
    int listenAfter, channelStepAfter, spanAfter, midSideAfter;
};
constexpr JogCase kJogCases[] = {
    {"analyzer button", 0, kLink, kJogLowerLeft, kLButton, 0, 2, 1, 0},
    {"analyzer button, Alt stays a left click", 0, kLink, kJogLowerLeft, kLButton | kAlt, 0, 2, 1, 0},
    {"analyzer button, right click is the settings page", 0, kLink, kJogLowerLeft, kRButton, 0, 2, 0, 0},
    {"mid/side button", 0, kLink, kJogLowerRight, kLButton, 0, 2, 0, 1},
    {"mid/side button, right click", 0, kLink, kJogLowerRight, kRButton, 0, 2, 0, 1},
    {"top from LINK", 0, kLink, kJogTop, kLButton, 0, 0, 0, 0},
    {"top from RIGHT", 0, kRight, kJogTop, kRButton, 0, 2, 0, 0},
    {"upper left ends listening, picks LEFT", 2, kRight, kJogUpperLeft, kLButton, 0, 0, 0, 0},
    {"upper left keeps LINK", 1, kLink, kJogUpperLeft, kLButton, 0, 2, 0, 0},
    {"upper left right click listens to the left", 0, kRight, kJogUpperLeft, kRButton, 1, 0, 0, 0},
    {"upper left right click again stops", 1, kLeft, kJogUpperLeft, kRButton, 0, 0, 0, 0},
    {"upper left right click cancels the right", 2, kLink, kJogUpperLeft, kRButton, 1, 2, 0, 0},
    {"upper right Alt-click listens to the right", 0, kLeft, kJogUpperRight, kLButton | kAlt, 2, 1, 0, 0},
    {"upper right left click", 0, kLeft, kJogUpperRight, kLButton, 0, 1, 0, 0},
    {"dead ring", 1, kLeft, kJogDeadRing, kLButton, 1, 0, 0, 0},
    {"middle button does nothing", 0, kLink, kJogLowerLeft, kMButton, 0, 2, 0, 0},
};

TEST_F(ValueControlsScript, JogRingButtons) {
    for (const JogCase& c : kJogCases) {
        p().setParameter(params::kListen, params::stepCentre(c.listen, 3));
        p().setParameter(params::kChannel, c.channel);
        p().setParameter(params::kSpan, 0.25f);
        p().setParameter(params::kLrMs, 0.25f);
        click(c.at, c.buttons);
        EXPECT_EQ(step(params::kListen, 3), c.listenAfter) << c.what;
        EXPECT_EQ(step(params::kChannel, 3), c.channelStepAfter) << c.what;
        EXPECT_EQ(step(params::kSpan, 2), c.spanAfter) << c.what;
        EXPECT_EQ(step(params::kLrMs, 2), c.midSideAfter) << c.what;
    }
}

TEST_F(ValueControlsScript, TogglesAreOneEditEachAndListeningIsNone) {
    p().setParameter(params::kListen, params::stepCentre(0, 3));
    click(kJogLowerRight);
    click(kJogLowerLeft);
    click(kJogUpperLeft, kRButton);
    EXPECT_EQ(begunEdits(), (std::vector<int>{params::kLrMs, params::kSpan}));
}

TEST_F(ValueControlsScript, LinkingDropsBandsOffOnBothSidesFromSolo) {
    p().setParameter(params::kChannel, kLeft);
    setType(params::kType, 3);
    setType(params::kType + 1, 9);
    setType(params::kTypeR + 1, 10);
    p().setParameter(params::kSolo, params::stepCentre(0b11, 256));
    click(kJogTop);
    EXPECT_EQ(step(params::kChannel, 3), 2);
    EXPECT_EQ(step(params::kSolo, 256), 0b01);
}

TEST_F(ValueControlsScript, WithAMonoInputOnlyTheKnobAndTheAnalyzerButtonAnswer) {
    editor().close();
    editor().setMonoInput(true);
    editor().openOffscreen();
    p().setParameter(params::kSpan, 0.25f);
    for (CPoint at : {kJogUpperLeft, kJogUpperRight, kJogTop, kJogLowerRight}) click(at, kRButton);
    EXPECT_EQ(step(params::kChannel, 3), 2);
    EXPECT_EQ(step(params::kListen, 3), 0);
    EXPECT_EQ(step(params::kLrMs, 2), 0);
    click(kJogLowerLeft);
    EXPECT_EQ(step(params::kSpan, 2), 1);
    p().setParameter(params::kPlotRange, 0.5f);
    drag(kJogCentre, 0, -30);
    EXPECT_NEAR(param(params::kPlotRange), 0.6f, 1e-6);
}

TEST_F(ValueControlsScript, RightClickOnAFrequencyKnobAuditionsItsBandUntilThePointerLeaves) {
    startAudio();
    p().setParameter(params::kFreq, static_cast<float>(std::log10(5.0) / 3));  // band 1 at 100 Hz
    const CPoint k = kFrequencyKnob[0];
    EXPECT_NEAR(peakOfSine(5000, 1.5), 0.5f, 0.01f);  // past the reported latency
    move(k);
    click(k, kRButton);
    EXPECT_LT(peakOfSine(5000, 0.2), 0.05f) << "5 kHz far outside the 100 Hz band-pass";
    move(kEmptyPanel);
    EXPECT_NEAR(peakOfSine(5000, 0.2), 0.5f, 0.01f);
}

// Idles the editor (its own 25 ms gate) until the header's drive line, shown for the first
// second after opening, has gone.
void idlePastTheDriveLine(Editor& editor) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(1100);
    while (std::chrono::steady_clock::now() < until) {
        editor.idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    editor.idle();
}

// The header's pixels as drawn now.
std::vector<CColor> headerPixels(CFrame& frame) {
    frame.redrawDirty();
    std::vector<CColor> pixels;
    for (int y = 164; y < 184; ++y)
        for (int x = 85; x < 455; ++x) pixels.push_back(frame.getImage().pixel(x, y));
    return pixels;
}

TEST_F(ValueControlsScript, SelectedBandShowsInTheHeaderAndAHoveredOneWhileHovered) {
    setType(params::kType + 2, 3);
    p().setParameter(params::kFreq + 2, 0.5f);
    p().setParameter(params::kGain + 2, 0.625f);
    p().setParameter(params::kQ + 2, 0.6f);
    p().setParameter(params::kSpan, 0.75f);
    move(kGainKnob[2]);
    click(kGainKnob[2]);
    idlePastTheDriveLine(editor());
    move(kEmptyPanel);  // off the knobs: still the selected band
    const std::vector<CColor> selected = headerPixels(frame());
    // The band number's highlighted cell: its sixth column carries no ink.
    EXPECT_EQ(frame().getImage().pixel(91, 170), (CColor{79, 79, 79, 255}));
    writeSnapshot("band-selected.png");
    move(kQKnob1);
    EXPECT_NE(headerPixels(frame()), selected) << "band 1 hovered";
    move(kEmptyPanel);
    EXPECT_EQ(headerPixels(frame()), selected);
}

}  // namespace
