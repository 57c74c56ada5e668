// The editor's type switches, solo strip, resolution selector and level readouts driven with
// mouse and wheel events against its off-screen frame; every outcome is read back through the
// plug-in's parameters and held peaks. With TYX_SNAPSHOT_DIR set, the scripts also leave
// pictures of an open type list and of readouts gone red there.

#include <gtest/gtest.h>

#include "EditorScriptFixture.h"

namespace {

// Band b's type switch (45 pixels wide from x = 75 + 69·b, y 248..270): a spot that opens its
// list, and row r of a list opened at shape s (rows 16 high, the current one from y = 251).
CPoint listSpot(int b) { return {105.0 + 69 * b, 259}; }
CPoint listRow(int b, int s, int r) { return {97.0 + 69 * b, 259.0 + 16 * (r - s)}; }
// Solo button b: 21 × 21 from y = 465, left edges below.
constexpr double kSoloLeft[8] = {87, 157, 226, 294, 364, 434, 502, 572};
CPoint soloSpot(int b) { return {kSoloLeft[b] + 10, 475}; }
constexpr CPoint kPanelSpot(400, 60);
constexpr CColor kHot{229, 53, 5, 255}, kCold{79, 79, 79, 255};

class SwitchesScript : public EditorScriptFixture {
protected:
    CColor pixel(int x, int y) { return frame().getImage().pixel(x, y); }
    int solo() { return step(params::kSolo, 256); }
};

}  // namespace

TEST_F(SwitchesScript, WheelStaysOnTheBandsSideOfBypass) {
    struct Case {
        int from;
        float distance;
        int to;
    };
    for (const Case& c : {Case{10, -5, 7}, Case{10, -1, 9}, Case{3, 20, 6}, Case{3, -1, 2}, Case{0, -3, 0}}) {
        setType(params::kType + 4, c.from);
        wheel(listSpot(4), c.distance);
        EXPECT_EQ(typeStep(params::kType + 4), c.to) << c.from << " by " << c.distance;
    }
}

TEST_F(SwitchesScript, ListRowKeepsTheBypassState) {
    struct Case {
        int from, row, to;
    };
    for (const Case& c : {Case{10, 4, 11}, Case{3, 4, 4}, Case{8, 0, 7}, Case{6, 0, 0}}) {
        setType(params::kType, c.from);
        click(listSpot(0));
        if (c.from == 3) writeSnapshot("popup-open.png");
        click(listRow(0, c.from % 7, c.row), kRButton);  // only a left click closes the list
        click(listRow(0, c.from % 7, c.row));
        EXPECT_EQ(typeStep(params::kType), c.to) << c.from << " row " << c.row;
    }
    click(listSpot(0));
    click(kPanelSpot);  // beside the rows: the list closes, nothing changes
    EXPECT_EQ(typeStep(params::kType), 0);
}

TEST_F(SwitchesScript, LeftThirteenPixelsToggleBypassAndABandOffOnBothSidesLeavesSolo) {
    // Band 2's switch starts at x = 144: pixels 144..156 toggle, 157 opens the list.
    for (auto [x, to] : {std::pair{144.0, 9}, {156.0, 9}, {157.0, 2}}) {
        setType(params::kType + 1, 2);
        click({x, 252});
        EXPECT_EQ(typeStep(params::kType + 1), to) << x;
        click(kPanelSpot);
    }
    p().setParameter(params::kChannel, 1.0f);  // LINK: the toggle reaches both sides
    p().setParameter(params::kSolo, params::stepCentre(0b11, 256));
    click({144, 252});
    EXPECT_EQ(solo(), 0b01);
    click({144, 252});
    EXPECT_EQ(solo(), 0b11);
}

TEST_F(SwitchesScript, SwitchesShowAndEditTheSideChannelSelects) {
    setType(params::kType + 2, 10);
    setType(params::kTypeR + 2, 3);
    p().setParameter(params::kChannel, params::stepCentre(1, 3));  // RIGHT: the switch shows step 3
    wheel(listSpot(2), 20);
    EXPECT_EQ(typeStep(params::kTypeR + 2), 6);
    EXPECT_EQ(typeStep(params::kType + 2), 10);
    p().setParameter(params::kChannel, params::stepCentre(0, 3));  // LEFT: back to step 10
    wheel(listSpot(2), -20);
    EXPECT_EQ(typeStep(params::kType + 2), 7);
}

TEST_F(SwitchesScript, SoloButtonsToggleGapsDoNothingModifiedClicksClear) {
    for (int b = 0; b < 8; ++b) setType(params::kType + b, 3);
    for (int b : {0, 7, 7, 2}) click(soloSpot(b));
    EXPECT_EQ(solo(), 0b101);
    // Around button 2 (x 157..177, y 465..485): gaps and edges belong to no button.
    for (CPoint at : {CPoint{156, 475}, CPoint{178, 475}, CPoint{167, 486}}) click(at);
    EXPECT_EQ(solo(), 0b101);
    for (int32_t buttons : {kLButton | kControl, kLButton | kDoubleClick, +kRButton, kLButton | kShift}) {
        click(soloSpot(4));
        click(soloSpot(4), buttons);
        EXPECT_EQ(solo(), 0) << buttons;
    }
}

TEST_F(SwitchesScript, SoloDropsBandsOffOnBothSides) {
    for (auto [band, left, right] : {std::tuple{0, 3, 3}, {1, 9, 9}, {2, 9, 2}}) {
        setType(params::kType + band, left);
        setType(params::kTypeR + band, right);
        click(soloSpot(band));
    }
    EXPECT_EQ(solo(), 0b101);  // band 2 is off on both sides
    const auto edits = h->host.of(audioMasterBeginEdit);
    EXPECT_EQ(edits.empty() ? -1 : edits.back().index, params::kSolo);
}

TEST_F(SwitchesScript, ResolutionSegmentsSetTheirStep) {
    // Three segments of 36 pixels from x = 591, 18 rows high from y = 169.
    for (auto [at, to] : {std::pair{CPoint{591, 169}, 0}, {{626, 186}, 0}, {{627, 169}, 1}, {{662, 186}, 1},
                          {{663, 169}, 2}, {{698, 186}, 2}, {{663, 187}, 0}}) {
        p().setParameter(params::kResolution, params::stepCentre(0, 3));
        click(at);
        EXPECT_EQ(step(params::kResolution, 3), to) << at.x << "," << at.y;
    }
}

TEST_F(SwitchesScript, HotSignalTurnsAReadoutRedAndALeftClickClearsBoth) {
    constexpr int kBlock = 512;
    startAudio();
    std::vector<float> left(kBlock, 0.0f), right(kBlock, 0.0f), outL(kBlock), outR(kBlock);
    for (int i = 0; i < kBlock; i += 64) left[i] = 1.5f, right[i] = -0.25f;
    float* in[2] = {left.data(), right.data()};
    float* out[2] = {outL.data(), outR.data()};
    float first = 0, second = 0;
    for (int block = 0; block < 400 && first <= 1.0f; ++block) {
        p().processReplacing(in, out, kBlock);
        p().getOutputPeaks(first, second);
    }
    ASSERT_GT(first, 1.0f);
    frame().redrawDirty();
    EXPECT_EQ(pixel(51, 166), kHot);
    EXPECT_EQ(pixel(511, 166), kCold);
    writeSnapshot("meters-red.png");

    click({526, 169}, kRButton);
    p().getOutputPeaks(first, second);
    EXPECT_GT(first, 1.0f);
    click({526, 169});
    p().getOutputPeaks(first, second);
    EXPECT_EQ(first + second, 0.0f);
    // The other readout follows at the editor's next idle step.
    EXPECT_TRUE(idleUntil(frame(), [&] {
        editor().idle();
        return pixel(51, 166) == kCold;
    }));
}
