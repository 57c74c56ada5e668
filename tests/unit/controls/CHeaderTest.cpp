// The header on its own: what it shows for a band (fields by type), how its wheel brackets the
// output change, and how long the drive line stays.

#include <gtest/gtest.h>

#include "gui/controls/CHeader.h"
#include "unit/toolkit/ToolkitSupport.h"

namespace {

constexpr int32_t kOutputTag = 5;

class Header : public ::testing::Test {
protected:
    Header() {
        header->setOutput(0.5f);
        frame.addView(header);
    }
    SpyListener spy;
    CFrame frame{CRect(0, 0, 750, 509)};
    CHeader* header = new CHeader(CRect(85, 164, 510, 184), &spy, kOutputTag, nullptr);
};

TEST_F(Header, ABypassedLowCutShowsBypassWithItsQAndNoGain) {
    header->setBand(0);
    header->setType(0.607143f);  // step 8: the 24 dB/oct low cut, switched off
    header->setFrequency(0.0f);
    header->setGain(0.75f);
    header->setQ(0.5f);
    const CHeader::Texts t = header->texts();
    EXPECT_EQ(t.type, "Bypass");
    EXPECT_EQ(t.frequency, "20");
    EXPECT_EQ(t.gain, "");
    EXPECT_EQ(t.q, "0.71");
    EXPECT_EQ(t.output, "+0.0");
}

TEST_F(Header, TheWheelIsOneEditOfTheOutput) {
    EXPECT_FALSE(frame.onWheel(CPoint(300, 173), CMouseWheelAxis::kVertical, 1, 0));
    EXPECT_TRUE(frame.onWheel(CPoint(490, 173), CMouseWheelAxis::kVertical, 1, 0));  // over the output
    ASSERT_EQ(spy.calls.size(), 3u);
    EXPECT_EQ(spy.calls[0].what, "begin");
    EXPECT_NEAR(spy.calls[1].value, 0.51f, 1e-6);
    EXPECT_EQ(spy.calls[2].what, "end");
    frame.onWheel(CPoint(490, 173), CMouseWheelAxis::kVertical, 100, 0);
    EXPECT_EQ(spy.changedValues().back(), 1.0f);
}

// Pixels of the drive line's highlighted number cell (x 354..359, the row above the baseline).
bool driveLineShown(CFrame& frame) {
    frame.redrawDirty();
    return frame.getImage().pixel(354, 172) == CTextPrinter::kHighlightStyle;
}

TEST_F(Header, TheDriveLineStaysForOneSecondAfterADriveChange) {
    header->setBand(0);
    header->setDrive(6);
    EXPECT_TRUE(driveLineShown(frame));
    header->advanceDriveShow(999);
    EXPECT_TRUE(driveLineShown(frame));
    header->advanceDriveShow(1);
    EXPECT_FALSE(driveLineShown(frame));
    header->setDrive(-3);
    EXPECT_TRUE(driveLineShown(frame));
}

}  // namespace
