// The frame as an event router and redraw scheduler, driven off screen.
#include <gtest/gtest.h>

#include "ToolkitSupport.h"
#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/CMessageBox.h"

namespace {

using Log = std::vector<std::string>;

// Records every event it gets; answers mouse downs with a chosen result.
struct RecordingView : CView {
    std::vector<std::string>* log;
    std::string name;
    CMouseEventResult downResult = kMouseEventHandled;
    int draws = 0;
    CColor colour{200, 40, 40, 255};

    RecordingView(const CRect& r, std::vector<std::string>* log, std::string name)
        : CView(r), log(log), name(std::move(name)) {}
    CMouseEventResult note(const std::string& what, const CPoint& p) {
        log->push_back(name + " " + what + " " + std::to_string(int(p.x)) + "," + std::to_string(int(p.y)));
        return kMouseEventHandled;
    }
    void draw(CDrawContext* c) override {
        ++draws;
        c->setFillColor(colour);
        c->drawRect(size, kDrawFilled);
    }
    CMouseEventResult onMouseDown(CPoint& p, const CButtonState&) override {
        note("down", p);
        return downResult;
    }
    CMouseEventResult onMouseUp(CPoint& p, const CButtonState&) override { return note("up", p); }
    CMouseEventResult onMouseMoved(CPoint& p, const CButtonState&) override { return note("moved", p); }
    CMouseEventResult onMouseEntered(CPoint& p, const CButtonState&) override { return note("entered", p); }
    CMouseEventResult onMouseExited(CPoint& p, const CButtonState&) override { return note("exited", p); }
    bool onWheel(const CPoint& p, const float& d, const CButtonState&) override {
        note("wheel " + std::to_string(int(d)), p);
        return true;
    }
    int32_t onKeyDown(CKeyCode& k) override {
        log->push_back(name + " key " + char(k.character));
        return 1;
    }
    void takeFocus() override { log->push_back(name + " takeFocus"); }
    void looseFocus() override { log->push_back(name + " looseFocus"); }
};

struct FrameTest : testing::Test {
    CFrame frame{CRect(0, 0, 200, 100)};
    std::vector<std::string> log;
    RecordingView* a = new RecordingView(CRect(10, 10, 50, 50), &log, "a");
    RecordingView* b = new RecordingView(CRect(100, 10, 150, 50), &log, "b");
    void SetUp() override {
        frame.addView(a);
        frame.addView(b);
        frame.idle();
        log.clear();
        a->draws = b->draws = 0;
    }
};

TEST_F(FrameTest, PressCapturesTheViewUntilRelease) {
    press(frame, 20, 20);
    move(frame, 120, 30, kLButton);  // over b, but a holds the mouse
    release(frame, 130, 30);
    move(frame, 120, 30);
    EXPECT_EQ(log, (Log{"a down 20,20", "a moved 120,30", "a up 130,30", "b entered 130,30", "b moved 120,30"}));
}

TEST_F(FrameTest, ViewThatNeedsNoMoreEventsIsNotCaptured) {
    a->downResult = kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    press(frame, 20, 20);
    move(frame, 25, 25, kLButton);
    release(frame, 25, 25);
    EXPECT_EQ(log, (Log{"a down 20,20", "a entered 25,25", "a moved 25,25"}));
}

TEST_F(FrameTest, HoverEntersAndExitsAndLeavingTheWindowExits) {
    move(frame, 20, 20);
    move(frame, 70, 20);
    move(frame, 110, 20);
    CPoint outside(250, 20);
    frame.onMouseExited(outside, 0);
    EXPECT_EQ(log, (Log{"a entered 20,20", "a moved 20,20", "a exited 70,20", "b entered 110,20",
                    "b moved 110,20", "b exited 250,20"}));
}

TEST_F(FrameTest, HiddenAndMouseDisabledViewsAreSkippedForTheOneBelow) {
    auto* top = new RecordingView(CRect(0, 0, 60, 60), &log, "top");
    frame.addView(top);
    top->setMouseEnabled(false);
    press(frame, 20, 20);
    top->setMouseEnabled(true);
    top->setVisible(false);
    press(frame, 30, 30);
    top->setVisible(true);
    press(frame, 40, 40);
    EXPECT_EQ(log, (Log{"a down 20,20", "a down 30,30", "top down 40,40"}));
}

TEST_F(FrameTest, KeysGoToTheFocusViewWhichLosesFocusOnAClickElsewhere) {
    CKeyCode k = character('x');
    EXPECT_EQ(frame.onKeyDown(k), -1);
    frame.setFocusView(a);
    EXPECT_EQ(frame.onKeyDown(k), 1);
    press(frame, 120, 20);
    EXPECT_EQ(frame.getFocusView(), nullptr);
    EXPECT_EQ(log, (Log{"a takeFocus", "a key x", "a looseFocus", "b down 120,20"}));
}

TEST_F(FrameTest, WheelGoesToTheViewUnderThePointer) {
    EXPECT_TRUE(frame.onWheel(CPoint(120, 20), CMouseWheelAxis::kVertical, -2, 0));
    EXPECT_FALSE(frame.onWheel(CPoint(120, 20), CMouseWheelAxis::kHorizontal, 1, 0));
    EXPECT_FALSE(frame.onWheel(CPoint(80, 80), CMouseWheelAxis::kVertical, 1, 0));
    EXPECT_EQ(log, (Log{"b wheel -2 120,20"}));
}

TEST_F(FrameTest, ModalViewTakesEveryEventAndIsDrawnOnTop) {
    auto* modal = new RecordingView(CRect(0, 0, 30, 30), &log, "modal");
    modal->colour = CColor{0, 0, 255, 255};
    frame.setModalView(modal);
    frame.addView(new RecordingView(CRect(0, 0, 30, 30), &log, "later"));  // added after, still below
    press(frame, 120, 20);
    CKeyCode k = character('q');
    frame.onKeyDown(k);
    EXPECT_TRUE(frame.onWheel(CPoint(120, 20), CMouseWheelAxis::kVertical, 1, 0));
    frame.idle();
    EXPECT_EQ(frame.getImage().pixel(5, 5), (CColor{0, 0, 255, 255}));
    frame.setModalView(nullptr);
    press(frame, 120, 20);
    EXPECT_EQ(log, (Log{"modal down 120,20", "modal key q", "modal wheel 1 120,20", "b down 120,20"}));
    EXPECT_FALSE(frame.containsView(modal));
}

TEST_F(FrameTest, IdleRedrawsOnlyTheDirtyViews) {
    frame.idle();
    EXPECT_EQ(a->draws, 0);
    b->colour = CColor{0, 255, 0, 255};
    b->invalid();
    frame.idle();
    EXPECT_EQ(a->draws, 0);
    EXPECT_EQ(b->draws, 1);
    EXPECT_EQ(frame.getImage().pixel(120, 20), (CColor{0, 255, 0, 255}));
    EXPECT_FALSE(b->isDirty());
}

TEST_F(FrameTest, RemovedViewLeavesItsAreaToTheBackgroundAndNoDanglingRoutes) {
    frame.setBackgroundColor(CColor{10, 20, 30, 255});
    frame.idle();
    move(frame, 20, 20);
    frame.setFocusView(a);
    frame.removeView(a);
    frame.idle();
    EXPECT_EQ(frame.getImage().pixel(20, 20), (CColor{10, 20, 30, 255}));
    EXPECT_EQ(frame.getFocusView(), nullptr);
    move(frame, 21, 21);  // no view there any more: nothing is called on the deleted one
    EXPECT_EQ(frame.getNbViews(), 1);
}

// A view that removes itself while handling its own click must survive until the click is done.
TEST(FrameRemoval, ViewMayRemoveItselfDuringItsEvent) {
    struct SelfRemoving : CView {
        using CView::CView;
        CMouseEventResult onMouseDown(CPoint&, const CButtonState&) override {
            getFrame()->removeView(this);
            size.offset(1, 1);  // still alive here
            return kMouseEventHandled;
        }
    };
    CFrame frame(CRect(0, 0, 50, 50));
    frame.addView(new SelfRemoving(CRect(0, 0, 10, 10)));
    click(frame, 5, 5);
    EXPECT_EQ(frame.getNbViews(), 0);
}

TEST(FrameMessage, MessageBoxIsModalAndClosesWithOkOrReturn) {
    CFrame frame(CRect(0, 0, 750, 509));
    frame.showMessage("Could not open user manual", "");
    auto* box = dynamic_cast<CMessageBox*>(frame.getModalView());
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->getText(), "Could not open user manual");
    click(frame, 5, 5);
    EXPECT_EQ(frame.getModalView(), box);
    const CRect ok = box->getOkButton();
    click(frame, ok.left + 2, ok.top + 2);
    EXPECT_EQ(frame.getModalView(), nullptr);

    frame.showMessage("second", "caption");
    CKeyCode ret = virtualKey(VKEY_RETURN);
    frame.onKeyDown(ret);
    EXPECT_EQ(frame.getModalView(), nullptr);
}

}  // namespace
