// The band type switch in a frame of its own, with artwork whose every cell is painted in a
// colour naming its frame and column: where the closed cell and the open list's rows land on
// screen, which column they come from, and that the list leaves no trace once closed.

#include <gtest/gtest.h>

#include <vector>

#include "gui/Editor.h"
#include "gui/controls/CMySwitch.h"
#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"
#include "unit/toolkit/ToolkitSupport.h"

namespace {

// Frame k of the first column in (10·k + 5, 0, 0), row r of the bypassed column in (10·r + 5, 0, 200).
CBitmap* typeArtwork() {
    constexpr int width = 134, height = 224;
    std::vector<uint32_t> argb(width * height, 0);
    for (int y = 0; y < height; ++y) {
        const uint32_t k = static_cast<uint32_t>(y / 16) * 10 + 5;
        for (int x = 0; x < 22; ++x) argb[y * width + x] = 0xff000000u | k << 16;
        for (int x = 112; x < width && y < 7 * 16; ++x) argb[y * width + x] = 0xff000000u | k << 16 | 200;
    }
    const auto png = makePng(width, height, argb);
    return new CBitmap(png.data(), png.size());
}

// An editor without an effect that records the bands the switch selects.
struct SwitchOwner : Editor {
    SwitchOwner() : Editor(nullptr) {}
    std::vector<int> selected;
    void selectBand(int band) override { selected.push_back(band); }
};

}  // namespace

TEST(TypeSwitch, CellAndListRowsComeFromTheirColumnsAndTheListLeavesNoTrace) {
    setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-unit-tests", 0);
    SwitchOwner owner;
    CFrame frame(CRect(0, 0, 750, 509));
    CBitmap* art = typeArtwork();
    auto* typeSwitch = new CMySwitch(CRect(213, 248, 258, 271), &owner, params::kType + 2, art, CPoint(11, 3));
    art->forget();
    frame.addView(typeSwitch);
    auto drawnAt = [&](int x, int y) {
        frame.redrawDirty();
        return frame.getImage().pixel(x, y);
    };

    for (int step : {3, 10, 0}) {
        SCOPED_TRACE(step);
        const int shape = step % 7;
        const uint8_t column = step >= 7 ? 200 : 0;
        typeSwitch->setValue(params::stepCentre(step, 14));
        // The closed cell: 22 × 16 at (11, 3) inside the switch, frame = the step.
        EXPECT_EQ(drawnAt(224, 251), (CColor{uint8_t(10 * step + 5), 0, 0, 255}));
        EXPECT_EQ(drawnAt(245, 266), (CColor{uint8_t(10 * step + 5), 0, 0, 255}));
        EXPECT_EQ(drawnAt(223, 251), kBlackCColor);

        click(frame, 240, 259);
        ASSERT_TRUE(typeSwitch->isPopupOpen());
        // Row r spans x 224..245 and starts 16·(r − shape) below y = 251.
        for (int r = 0; r < 7; ++r)
            EXPECT_EQ(drawnAt(235, 259 + 16 * (r - shape)), (CColor{uint8_t(10 * r + 5), 0, column, 255})) << r;
        click(frame, 5, 5);  // a click anywhere closes the list
        EXPECT_FALSE(typeSwitch->isPopupOpen());
        for (int r : {0, 6}) {
            if (r == shape) continue;  // inside the switch
            EXPECT_EQ(drawnAt(235, 259 + 16 * (r - shape)), kBlackCColor) << r;
        }
    }
    EXPECT_EQ(owner.selected, (std::vector<int>{2, 2, 2}));
}
