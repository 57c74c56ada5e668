// Controls through frame events: what the listener hears, in order.
#include <gtest/gtest.h>

#include "ToolkitSupport.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CKickButton.h"
#include "gui/toolkit/COnOffButton.h"
#include "gui/toolkit/CRockerSwitch.h"

namespace {

using Calls = std::vector<SpyListener::Call>;

TEST(Control, CtrlLeftClickAloneResetsToTheDefault) {
    SpyListener spy;
    CControl c(CRect(0, 0, 10, 10), &spy, 7);
    c.setDefaultValue(0.25f);
    const std::pair<int32_t, bool> cases[] = {
        {kLButton | kControl, true},          {kLButton, false},
        {kRButton | kControl, false},         {kLButton | kControl | kShift, false},
        {kLButton | kControl | kDoubleClick, true},
    };
    for (auto [buttons, resets] : cases) {
        c.setValue(0.9f);
        spy.calls.clear();
        EXPECT_EQ(c.checkDefaultValue(buttons), resets) << buttons;
        EXPECT_EQ(c.getValue(), resets ? 0.25f : 0.9f);
        EXPECT_EQ(spy.calls, resets ? (Calls{{"begin", 7, 0.9f}, {"changed", 7, 0.25f}, {"end", 7, 0.25f}}) : Calls{});
    }
}

TEST(Control, CopyKeepsStateAndItsOwnReferenceToTheBitmap) {
    const auto png = makePng(1, 2, {0xff000000, 0xffffffff});
    auto* bitmap = new CBitmap(png.data(), png.size());
    SpyListener spy;
    auto* original = new CKickButton(CRect(1, 2, 3, 4), &spy, 9, 1, bitmap);
    original->setValue(1);
    EXPECT_EQ(bitmap->getNbReference(), 2);
    std::unique_ptr<CView> copy(original->newCopy());
    delete original;
    auto* kick = dynamic_cast<CKickButton*>(copy.get());
    ASSERT_NE(kick, nullptr);
    EXPECT_EQ(kick->getValue(), 1);
    EXPECT_EQ(kick->getListener(), &spy);
    EXPECT_EQ(bitmap->getNbReference(), 2);
    copy.reset();
    EXPECT_EQ(bitmap->getNbReference(), 1);
    bitmap->forget();
}

struct ButtonCase {
    const char* name;
    std::function<CControl*(SpyListener*)> make;
    std::function<void(CFrame&)> gesture;
    Calls expected;
};

class Buttons : public testing::TestWithParam<ButtonCase> {};

TEST_P(Buttons, GestureReportsThroughTheListener) {
    CFrame frame(CRect(0, 0, 100, 40));
    SpyListener spy;
    frame.addView(GetParam().make(&spy));
    GetParam().gesture(frame);
    EXPECT_EQ(spy.calls, GetParam().expected);
}

const CRect kButtonRect(10, 10, 50, 30);  // middle at x = 30
CControl* kick(SpyListener* s) { return new CKickButton(kButtonRect, s, 3, 20, nullptr); }
CControl* onOff(SpyListener* s) { return new COnOffButton(kButtonRect, s, 4, nullptr); }
CControl* rocker(SpyListener* s) { return new CRockerSwitch(kButtonRect, s, 5, 20, nullptr); }

INSTANTIATE_TEST_SUITE_P(
    Toolkit, Buttons,
    testing::Values(
        ButtonCase{"KickPushAndRelease", kick, [](CFrame& f) { click(f, 20, 20); },
                   {{"begin", 3, 0}, {"changed", 3, 1}, {"changed", 3, 0}, {"end", 3, 0}}},
        ButtonCase{"KickIgnoresRightButton", kick, [](CFrame& f) { click(f, 20, 20, kRButton); }, {}},
        ButtonCase{"OnOffFlipsEachClick", onOff,
                   [](CFrame& f) {
                       click(f, 20, 20);
                       click(f, 20, 20);
                   },
                   {{"begin", 4, 0}, {"changed", 4, 1}, {"end", 4, 1}, {"begin", 4, 1}, {"changed", 4, 0}, {"end", 4, 0}}},
        ButtonCase{"RockerLeftHalf", rocker, [](CFrame& f) { click(f, 29, 20); },
                   {{"begin", 5, 0}, {"changed", 5, -1}, {"changed", 5, 0}, {"end", 5, 0}}},
        ButtonCase{"RockerRightHalf", rocker, [](CFrame& f) { click(f, 30, 20); },
                   {{"begin", 5, 0}, {"changed", 5, 1}, {"changed", 5, 0}, {"end", 5, 0}}}),
    [](const auto& info) { return std::string(info.param.name); });

// Frame stacks: the button shows the frame that matches its value.
TEST(Buttons, DrawTheFrameOfTheirState) {
    const auto png = makePng(1, 3, {0xffff0000, 0xff00ff00, 0xff0000ff});  // red, green, blue frames
    auto* bitmap = new CBitmap(png.data(), png.size());
    CFrame frame(CRect(0, 0, 3, 1));
    auto* kick = new CKickButton(CRect(0, 0, 1, 1), nullptr, 0, 1, bitmap);
    auto* onOff = new COnOffButton(CRect(1, 0, 2, 1), nullptr, 0, bitmap);  // frame height = its height
    auto* rocker = new CRockerSwitch(CRect(2, 0, 3, 1), nullptr, 0, 1, bitmap);
    bitmap->forget();
    for (CView* v : {static_cast<CView*>(kick), static_cast<CView*>(onOff), static_cast<CView*>(rocker)})
        frame.addView(v);
    auto colours = [&] {
        frame.idle();
        return std::vector<CColor>{frame.getImage().pixel(0, 0), frame.getImage().pixel(1, 0), frame.getImage().pixel(2, 0)};
    };
    const CColor red{255, 0, 0, 255}, green{0, 255, 0, 255}, blue{0, 0, 255, 255};
    EXPECT_EQ(colours(), (std::vector<CColor>{red, red, green}));
    kick->setValue(1);
    onOff->setValue(1);
    rocker->setValue(1);
    EXPECT_EQ(colours(), (std::vector<CColor>{green, green, blue}));
    rocker->setValue(-1);
    EXPECT_EQ(colours()[2], red);
}

}  // namespace
