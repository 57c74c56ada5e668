// The response plot inside the editor, opened off screen and driven with mouse and wheel events;
// every outcome is read back through the plug-in's parameters and the user's store.

#include <gtest/gtest.h>

#include "EditorScriptFixture.h"

namespace {

using namespace params;

// The plot's inner area in frame pixels: 40 pixels in from the view's left, 16 down from its
// top; 453 pixels across three decades, 126 pixels tall around the 0 dB line at 99.
constexpr double kLeft = 70, kWidth = 453, kCentre = 99, kHalf = 63, kHeight = 126;
// Band 1 at 1 kHz: 20·1000^v = 1000.
const float kOneKilohertz = static_cast<float>(std::log10(50.0) / 3.0);

double rangeDbFor(float p) { return 6.0 * std::pow(2.0, 2.0 - 3.0 * p); }
float gainValueForDb(double dB) { return static_cast<float>(0.5 + dB / 48.0); }

class PlotScript : public EditorScriptFixture {
protected:
    PlotScript() { p().setParameter(kChannel, 1.0f); }  // LINK: both sides follow the plot

    // Band b switched on with the given type step, frequency and gain values.
    void band(int b, int type, float frequency, float gain) {
        p().setParameter(kType + b, stepCentre(type, kBandTypeSteps));
        p().setParameter(kTypeR + b, stepCentre(type, kBandTypeSteps));
        p().setParameter(kFreq + b, frequency);
        p().setParameter(kGain + b, gain);
    }
    // Where the plot draws a peaking band's handle at plot range value range.
    static CPoint handle(float frequency, float gain, float range) {
        return {kLeft + std::trunc(kWidth * frequency), kCentre - (2 * gain - 1) * kHalf * 24 / rangeDbFor(range)};
    }
    // A press as a pointer brings it: the modifiers are seen on the way in.
    void press(CPoint at, int32_t buttons = kLButton) {
        move(at, buttons & CButtonState::kModifiers);
        EditorScriptFixture::press(at, buttons);
    }
    void release(CPoint at) { frame().onMouseUp(at, kLButton); }
};

TEST_F(PlotScript, GainDetentLatchesWithinFivePixelsOfTheCentreLine) {
    p().setParameter(kPlotRange, 0.0f);  // ±24 dB: a pixel moves the normalized gain by 1/126
    band(0, 3, 0.5f, 0.6f);
    const CPoint start = handle(0.5f, 0.6f, 0.0f);
    press(start);
    // Drag heights relative to the centre line, and the gain each leaves.
    struct Step {
        double offset;
        float gain;
    };
    const Step steps[] = {
        {-10, 0.5f + 10 / kHeight},  // not near yet
        {-4, 0.5f},                   // moving in: latched
        {4, 0.5f},                    // held through the line
        {5, 0.5f - 5 / kHeight},      // five pixels away lets go
        {4.5, 0.5f},                  // moving back in latches again
    };
    for (const Step& s : steps) {
        move(CPoint(start.x, kCentre + s.offset), kLButton);
        EXPECT_NEAR(param(kGain), s.gain, 1e-4) << s.offset;
        EXPECT_EQ(param(kGainR), param(kGain));
    }
    release(start);
}

TEST_F(PlotScript, VerticalDragOfHalfTheHeightScalesWithTheRange) {
    struct Case {
        float range;
        float change;
    };
    for (const Case c : {Case{1.0f / 3, 0.25f}, Case{0.0f, 0.5f}}) {
        p().setParameter(kPlotRange, c.range);
        band(0, 3, 0.3f, 0.4f);
        const CPoint start = handle(0.3f, 0.4f, c.range);
        press(start);
        move(CPoint(start.x, start.y - kHeight / 2), kLButton);
        release(start);
        EXPECT_NEAR(param(kGain), 0.4f + c.change, 1e-4) << c.range;
        EXPECT_NEAR(param(kFreq), 0.3f, 1.0 / kWidth) << "a vertical drag keeps the frequency";
    }
}

TEST_F(PlotScript, AltDragsOnlyVerticallyAndShiftDragTurnsQ) {
    p().setParameter(kPlotRange, 0.0f);
    band(0, 3, 0.3f, 0.5f);
    CPoint start = handle(0.3f, 0.5f, 0.0f);
    press(start, kLButton | kAlt);
    move(CPoint(start.x + 40, start.y - 20), kLButton | kAlt);
    release(start);
    EXPECT_EQ(param(kFreq), 0.3f);
    EXPECT_NEAR(param(kGain), 0.5f + 20 / kHeight, 1e-4);

    band(0, 3, 0.3f, 0.5f);
    const float q = param(kQ);
    press(start, kLButton | kShift);
    move(CPoint(start.x + 40, start.y - 20), kLButton | kShift);
    release(start);
    EXPECT_NEAR(param(kQ), q + 40 / 400.0f + 20 / 200.0f, 1e-5);
    EXPECT_EQ(param(kFreq), 0.3f);
    EXPECT_EQ(param(kGain), 0.5f);
}

TEST_F(PlotScript, CtrlOrTheRightButtonAuditionsTheBandAndTheWheelSetsItsLevel) {
    startAudio();
    // A band on a whole pixel, so that grabbing its handle leaves its frequency where it is.
    const float v = 256.0f / 453;
    const double hz = 20 * std::pow(1000.0, v);
    band(0, 3, v, 0.5f);
    const float plain = peakOfSine(hz, 1.5);  // past the latency
    // The audition band-pass at its own frequency: gain 2^(4·level) / (2·cos(π·f/rate)).
    const auto heard = [&](double level) { return 0.5 * std::pow(2.0, 4 * level) / (2 * std::cos(M_PI * hz / 48000)); };
    CPoint at = handle(v, 0.5f, param(kPlotRange));

    move(at, kControl);
    EXPECT_NEAR(peakOfSine(hz, 0.5), heard(0.5), 0.005);
    wheel(at, 1, kControl);  // level 0.5 + 0.1 × 2.5
    EXPECT_NEAR(peakOfSine(hz, 0.5), heard(0.75), 0.005);
    move(at);  // Ctrl let go
    EXPECT_NEAR(peakOfSine(hz, 0.5), plain, 1e-3);

    frame().onMouseDown(at, kRButton);
    EXPECT_NEAR(peakOfSine(hz, 0.5), heard(0.75), 0.005);
    frame().onMouseUp(at, kRButton);
    EXPECT_NEAR(peakOfSine(hz, 0.5), plain, 1e-3);
    p().suspend();
}

TEST_F(PlotScript, OverlappingHandlesGiveTheLowerBand) {
    p().setParameter(kPlotRange, 0.0f);
    band(1, 3, 0.4f, 0.7f);
    band(2, 3, 0.4f, 0.7f);
    const CPoint start = handle(0.4f, 0.7f, 0.0f);
    press(start);
    move(CPoint(start.x + 45, start.y), kLButton);
    release(start);
    EXPECT_NEAR(param(kFreq + 1), 0.4f + 45 / kWidth, 1.5 / kWidth);
    EXPECT_EQ(param(kFreq + 2), 0.4f);
}

TEST_F(PlotScript, HarmonicSnappingLandsOnTheNearestMultiple) {
    p().setParameter(kPlotRange, 0.0f);
    const double targets[] = {500, 1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000, 10000};
    for (double hz : targets) {
        band(0, 3, kOneKilohertz, 0.5f);
        CPoint start = handle(kOneKilohertz, 0.5f, 0.0f);
        move(start, kControl);           // audition the band
        move(start, kControl | kShift);  // and arm the harmonics of its 1 kHz
        frame().onMouseDown(start, kLButton | kControl | kShift);
        const double wanted = std::log10(hz / 20.0) / 3.0;
        move(CPoint(kLeft + kWidth * wanted + 2, start.y), kLButton | kControl | kShift);
        frame().onMouseUp(start, kLButton | kControl | kShift);
        move(CPoint(300, 40));
        EXPECT_NEAR(param(kFreq), wanted, 1e-6) << hz;
    }
}

TEST_F(PlotScript, WheelZoomsOnEmptySpaceDrivesWithCtrlAndTurnsQOverABand) {
    p().setParameter(kPlotRange, 0.5f);
    band(0, 3, 0.5f, 0.5f);
    const CPoint empty(200, 50);
    const float drive = param(kSpanDrive);
    move(empty);
    wheel(empty, 1);
    EXPECT_NEAR(param(kPlotRange), 0.6f, 1e-6);
    EXPECT_EQ(param(kSpanDrive), drive);

    move(empty, kControl);
    wheel(empty, -1, kControl);
    EXPECT_NEAR(param(kSpanDrive), drive - 0.1f, 1e-6);
    EXPECT_NEAR(param(kPlotRange), 0.6f, 1e-6);

    const float q = param(kQ);
    const CPoint onBand = handle(0.5f, 0.5f, 0.6f);
    move(onBand);
    wheel(onBand, 1);
    EXPECT_NEAR(param(kQ), q + 0.1f, 1e-6);
    EXPECT_EQ(param(kQR), param(kQ));
}

TEST_F(PlotScript, InformationPageIgnoresTheWheelUntilAClickReturnsToThePlot) {
    p().setParameter(kPlotRange, 0.5f);
    const CPoint empty(200, 50);
    editor().infoClicked();  // the settings page
    editor().infoClicked();  // the information
    wheel(empty, 1);
    EXPECT_EQ(param(kPlotRange), 0.5f);
    click(empty);
    wheel(empty, 1);
    EXPECT_NEAR(param(kPlotRange), 0.6f, 1e-6);
}

TEST_F(PlotScript, AutomaticRangeFitsTheLoudestFeature) {
    // A band of ±12 dB: the range that shows its curve's peak with a tenth to spare.
    for (double dB : {12.0, -12.0}) {
        band(0, 3, kOneKilohertz, gainValueForDb(dB));
        p().setParameter(kAutoZoom, 0.75f);
        float peak = 0;
        for (float curve : p().getBandCurves(0, 0)) peak = std::max(peak, std::fabs(curve));
        EXPECT_NEAR(param(kPlotRange), (2.0 - std::log2(1.1 * peak / 6.0)) / 3.0, 1e-5) << dB;
        p().setParameter(kAutoZoom, 0.25f);
    }
    band(0, 3, kOneKilohertz, gainValueForDb(0));
    p().setParameter(kAutoZoom, 0.75f);  // switching it on applies it
    EXPECT_EQ(param(kPlotRange), 1.0f) << "flat: the closest range, ±3 dB";
    band(0, 3, kOneKilohertz, gainValueForDb(22));
    p().applyAutoZoom();
    EXPECT_EQ(param(kPlotRange), 0.0f) << "beyond 21.8 dB: the widest range, ±24 dB";
}

// Row centres of the settings page, and how many values each row steps through.
struct Row {
    int item;
    int parameter;  // −1: the latency mode
    int steps;      // the parameter's step count
    int count;
    CPoint at;
};
constexpr Row kRows[] = {
    {0, -1, 3, 3, {162, 31}},          {1, kAutoZoom, 2, 2, {162, 43}},
    {2, kSpanColor, 16, 4, {414, 83}}, {3, kSpanSpeed, 16, 5, {162, 67}},
    {4, kSpanMode, 16, 2, {162, 79}},  {5, kSpanHold, 16, 6, {162, 91}},
    {6, kSpanResp, 16, 3, {162, 103}}, {9, kSpanWidth, 16, 3, {162, 139}},
    {10, kSpanFilter, 16, 2, {162, 151}},
};
constexpr CPoint kStoreButton(347, 147), kExitButton(510, 147), kGainRow(162, 127);

TEST_F(PlotScript, SettingsRowsCycleAroundAndPersistThroughTheStore) {
    editor().showSettingsPage();
    const auto current = [&](const Row& r) {
        if (r.parameter >= 0) return step(r.parameter, r.steps);
        int mode = 0;
        p().getLatencyMode(mode);
        return mode;
    };
    for (const Row& r : kRows) {
        const int first = current(r);
        for (int i = 1; i <= r.count; ++i) {
            click(r.at);
            const int shown = r.item == 1 ? 1 - current(r) : current(r);  // AUTOMATIC is listed first
            const int firstShown = r.item == 1 ? 1 - first : first;
            EXPECT_EQ(shown, (firstShown + i) % r.count) << "item " << r.item << " click " << i;
        }
        click(r.at);  // one past the start, then stored
    }
    click(kStoreButton);
    std::vector<int> stored;
    for (const Row& r : kRows) stored.push_back(current(r));

    editor().close();
    h = std::make_unique<PluginHarness>();  // a new instance reads the store
    for (size_t i = 0; i < std::size(kRows); ++i) EXPECT_EQ(current(kRows[i]), stored[i]) << kRows[i].item;
    editor().openOffscreen();
}

TEST_F(PlotScript, GainRowDragsTheDriveAndExitLeavesThePage) {
    editor().showSettingsPage();
    p().setParameter(kSpanDrive, 1.0f / 3);  // 0 dB
    drag(kGainRow, 80, -40);  // +2 dB and +2 dB
    EXPECT_NEAR(param(kSpanDrive) * 36 - 12, 4.0, 1e-4);
    click(kExitButton);
    const float range = param(kPlotRange);
    wheel(CPoint(200, 50), 1);  // the plot again: the wheel zooms
    EXPECT_NE(param(kPlotRange), range);
}

}  // namespace
