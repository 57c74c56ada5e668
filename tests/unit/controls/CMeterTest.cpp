// The level readout against its text, place and colour rules: drawn with synthetic font sheets
// whose every glyph is painted in a colour naming its index and sheet, so that the text on
// screen can be read back pixel by pixel.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "gui/Editor.h"
#include "gui/controls/CMeter.h"
#include "gui/toolkit/CBitmap.h"
#include "unit/toolkit/ToolkitSupport.h"

namespace {

// An editor without an effect whose held peaks the test sets.
struct PeakOwner : Editor {
    PeakOwner() : Editor(nullptr) {}
    float first = 0, second = 0;
    void getOutputPeaks(float* a, float* b) override {
        *a = first;
        *b = second;
    }
    void resetOutputPeaks() override {}
};

constexpr CRect kBoxes[2] = {CRect(51, 164, 82, 174), CRect(511, 164, 542, 174)};
constexpr int kRightEnds[2] = {82, 542};
constexpr int kGlyphTop = 173 - 7;

class MeterTest : public ::testing::Test {
protected:
    MeterTest() { setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-unit-tests", 0); }
    ~MeterTest() override {
        first->forget();
        second->forget();
    }

    // What channel shows, read back from the glyphs right-aligned on its end: the characters
    // and the sheet they came from (1 the first, 2 the second; 0 when they disagree).
    struct Shown {
        std::string text;
        int sheet = -1;
        CColor background;
    };
    Shown draw(CExtendedListener* owner, int channel, size_t length) {
        CFrame frame(CRect(0, 0, 560, 180));
        frame.addView(new CMeter(kBoxes[channel], owner, nullptr, first, second, channel));
        frame.redrawDirty();
        Shown shown;
        for (size_t i = 0; i < length; ++i) {
            const CColor g = frame.getImage().pixel(kRightEnds[channel] - 6 * static_cast<int>(length - i), kGlyphTop);
            shown.text += static_cast<char>(g.red - 96 + 32);  // highlighted glyphs follow the normal ones
            shown.sheet = shown.sheet < 0 || shown.sheet == g.blue ? g.blue : 0;
        }
        shown.background = frame.getImage().pixel(static_cast<int>(kBoxes[channel].left), 174);  // one row below the box
        return shown;
    }

    CBitmap* first = glyphSheet(1);
    CBitmap* second = glyphSheet(2);
    PeakOwner owner;
};

}  // namespace

TEST_F(MeterTest, TextSheetAndBackgroundFollowTheHeldPeak) {
    struct Case {
        float peak;
        const char* text;
        bool hot;
    };
    const Case cases[] = {
        {1.0f, "+0.0", false},      {1.0001f, "+0.0", true},  {1e-5f, " -oo ", false}, {1.1e-5f, "-99.2", false},
        {0.0f, " -oo ", false},     {2.0f, "+6.0", true},     {0.5f, "-6.0", false},   {NAN, " -oo ", false},
        {1000.0f, "+60.0", true},
    };
    for (const Case& c : cases) {
        for (int channel = 0; channel < 2; ++channel) {
            SCOPED_TRACE(std::string(c.text) + " channel " + std::to_string(channel));
            // The other channel holds a different peak, which must not show here.
            owner.first = channel == 0 ? c.peak : 0.25f;
            owner.second = channel == 1 ? c.peak : 0.25f;
            const Shown shown = draw(&owner, channel, std::strlen(c.text));
            EXPECT_EQ(shown.text, c.text);
            EXPECT_EQ(shown.sheet, c.hot ? 2 : 1);
            EXPECT_EQ(shown.background, c.hot ? CMeter::kHotColour : CMeter::kColdColour);
        }
    }
}

TEST_F(MeterTest, WithoutOwnerShowsSilenceOnGrey) {
    for (int channel = 0; channel < 2; ++channel) {
        const Shown shown = draw(nullptr, channel, 5);
        EXPECT_EQ(shown.text, " -oo ");
        EXPECT_EQ(shown.background, CMeter::kColdColour);
    }
}
