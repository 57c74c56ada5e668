// The filter-type legend against its row rule, with artwork whose every row is painted in a
// colour naming its source row.

#include <gtest/gtest.h>

#include "gui/controls/CFilterType.h"
#include "gui/toolkit/CBitmap.h"
#include "unit/toolkit/ToolkitSupport.h"

TEST(FilterTypeLegend, RowsSixteenApartFromSourceRowsThirtyTwoApart) {
    constexpr int width = 64, height = 256;
    std::vector<uint32_t> argb(width * height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) argb[y * width + x] = 0xff000000u | uint32_t(y) << 16;
    const auto png = makePng(width, height, argb);
    CBitmap* art = new CBitmap(png.data(), png.size());
    CFrame frame(CRect(0, 0, 200, 200));
    frame.addView(new CFilterType(CRect(10, 20, 74, 148), art));
    art->forget();
    frame.redrawDirty();
    for (int b = 0; b < 8; ++b) {
        for (int dy : {0, 15}) {
            const CColor shown = frame.getImage().pixel(40, 20 + 16 * b + dy);
            EXPECT_EQ(shown, (CColor{uint8_t(32 * b + dy), 0, 0, 255})) << "band " << b << " row " << dy;
        }
    }
    EXPECT_EQ(frame.getImage().pixel(40, 148), kBlackCColor);  // nothing below the eighth row
}
