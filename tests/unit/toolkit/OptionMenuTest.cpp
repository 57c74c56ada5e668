// The in-frame pop-up list.
#include <gtest/gtest.h>

#include "ToolkitSupport.h"
#include "gui/toolkit/COptionMenu.h"

namespace {

using Calls = std::vector<SpyListener::Call>;

struct OptionMenuTest : testing::Test {
    CFrame frame{CRect(0, 0, 750, 509)};
    SpyListener spy;
    COptionMenu* menu = new COptionMenu(CRect(320, 495, 333, 507), &spy, 1012);
    void SetUp() override {
        for (int i = 0; i < 21; ++i) menu->addEntry(("Preset " + std::to_string(i)).c_str());
        menu->setCurrent(3);
        frame.addView(menu);
    }
    CPoint rowCentre(int row) const {
        const CRect list = menu->popupRect();
        return CPoint(list.left + 20, list.top + (row + 0.5) * COptionMenu::kRowHeight);
    }
};

TEST_F(OptionMenuTest, ListOpensInsideTheFrameAndAClickedEntryBecomesCurrent) {
    const CRect list = menu->popupRect();
    EXPECT_TRUE(list.top >= 0 && list.bottom <= 509 && list.right <= 750);
    EXPECT_GE(list.getHeight(), 21 * COptionMenu::kRowHeight);
    click(frame, 325, 500);
    ASSERT_TRUE(menu->isPopupOpen());
    EXPECT_EQ(frame.getModalView()->getViewSize(), list);
    const CPoint row = rowCentre(17);
    click(frame, row.x, row.y);
    EXPECT_FALSE(menu->isPopupOpen());
    EXPECT_EQ(frame.getModalView(), nullptr);
    EXPECT_EQ(menu->getCurrent(), 17);
    EXPECT_EQ(spy.calls, (Calls{{"begin", 1012, 3}, {"changed", 1012, 17}, {"end", 1012, 17}}));
}

TEST_F(OptionMenuTest, ClickOutsideRightClickOrEscapeCloseWithoutChange) {
    click(frame, 325, 500);
    click(frame, 700, 20);
    EXPECT_FALSE(menu->isPopupOpen());
    click(frame, 325, 500);
    const CPoint row = rowCentre(5);
    click(frame, row.x, row.y, kRButton);
    EXPECT_FALSE(menu->isPopupOpen());
    click(frame, 325, 500);
    CKeyCode escape = virtualKey(VKEY_ESCAPE);
    frame.onKeyDown(escape);
    EXPECT_FALSE(menu->isPopupOpen());
    EXPECT_EQ(menu->getCurrent(), 3);
    EXPECT_TRUE(spy.calls.empty());
}

TEST_F(OptionMenuTest, OutOfRangeSelectionIsIgnoredAndAnEmptyMenuDoesNotOpen) {
    EXPECT_EQ(menu->getEntry(21), nullptr);
    menu->setCurrent(40);
    EXPECT_EQ(menu->getCurrent(), 3);
    menu->removeAllEntry();
    click(frame, 325, 500);
    EXPECT_FALSE(menu->isPopupOpen());
}

TEST_F(OptionMenuTest, RemovingTheMenuOrClosingTheFrameWithTheListOpenIsSafe) {
    click(frame, 325, 500);
    const CPoint row = rowCentre(1);
    frame.removeView(menu);
    frame.idle();
    click(frame, row.x, row.y);  // the list no longer has a menu: nothing happens
    EXPECT_TRUE(spy.calls.empty());

    auto* other = new CFrame(CRect(0, 0, 200, 200));
    auto* menu2 = new COptionMenu(CRect(0, 0, 10, 10), nullptr, 1);
    menu2->addEntry("a");
    other->addView(menu2);
    click(*other, 5, 5);
    delete other;
}

}  // namespace
