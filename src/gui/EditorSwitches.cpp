// The editor's switches, buttons, solo strip, small views and level meters: where they sit, and
// how parameter values reach them.

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/COnOffButton.h"

namespace {

struct ButtonPlace {
    int tag;
    CRect rect;
    int bitmap;
};
constexpr ButtonPlace kFatPlace{params::kFat, CRect(644, 254, 681, 293), 153};
constexpr ButtonPlace kLinPhasePlace{params::kLinPhase, CRect(650, 309, 689, 347), 157};
constexpr ButtonPlace kPowerPlace{params::kPower, CRect(660, 444, 696, 481), 158};

struct ResetPlace {
    int tag;
    CRect rect;
};
constexpr ResetPlace kResetPlaces[] = {
    {Editor::kAllBandsOff, CRect(28, 229, 49, 285)},
    {Editor::kResetFrequencies, CRect(28, 286, 49, 342)},
    {Editor::kResetGains, CRect(28, 344, 49, 400)},
    {Editor::kResetQ, CRect(28, 401, 49, 457)},
};

// An invisible area that reports one click (the panel prints its label).
class CResetArea : public CControl {
public:
    CResetArea(const CRect& size, CControlListener* listener, int32_t tag) : CControl(size, listener, tag) {}
    void draw(CDrawContext* /*context*/) override { setDirty(false); }
    CMouseEventResult onMouseDown(CPoint& /*where*/, const CButtonState& buttons) override {
        if (!buttons.isLeftButton()) return kMouseEventNotHandled;
        value = 1;
        valueChanged();
        value = 0;
        return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }
    const char* getClassName() const override { return "CResetArea"; }
};

CControl* makeButton(const ButtonPlace& place, CControlListener* listener) {
    auto* bitmap = new CBitmap(place.bitmap);
    auto* button = new COnOffButton(place.rect, listener, place.tag, bitmap);
    bitmap->forget();
    return button;
}

}  // namespace

void Editor::buildSwitches(CFrame* frame) {
    fatButton = makeButton(kFatPlace, this);
    linPhaseButton = makeButton(kLinPhasePlace, this);
    powerButton = makeButton(kPowerPlace, this);
    for (CControl* button : {fatButton, linPhaseButton, powerButton}) frame->addView(button);
    for (const ResetPlace& place : kResetPlaces) frame->addView(new CResetArea(place.rect, this, place.tag));
}

void Editor::releaseSwitches() { powerButton = fatButton = linPhaseButton = nullptr; }

void Editor::showSwitchesParameter(int index, float value) {
    CControl* button = nullptr;
    switch (index) {
        case params::kPower: button = powerButton; break;
        case params::kFat: button = fatButton; break;
        case params::kLinPhase: button = linPhaseButton; break;
        default: return;
    }
    if (button) button->setValue(static_cast<float>(params::quantize(value, 2)));
}

void Editor::idleSwitches(uint32_t /*elapsedMs*/) {}

void Editor::setSoloMask(int /*mask*/) {}
