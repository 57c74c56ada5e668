// The header on its own: what it shows for a band (fields by type) and how long the drive line
// stays.

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
