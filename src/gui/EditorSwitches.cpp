// The editor's switches, buttons, solo strip, small views and level meters: where they sit, and
// how parameter values reach them.

#include <algorithm>
#include <iterator>

#include "gui/Editor.h"
#include "gui/EditorEffect.h"
#include "gui/controls/CInfo.h"
#include "gui/controls/CMeter.h"
#include "gui/controls/CMyOnOffButton.h"
#include "gui/controls/CMySwitch.h"
#include "gui/controls/CResetArea.h"
#include "gui/controls/CResolution.h"
#include "gui/controls/CSoloist.h"
#include "gui/toolkit/CBitmap.h"

namespace {

struct Place {
    int tag;
    CRect rect;
    int bitmap;
};
constexpr Place kFatPlace{params::kFat, CRect(644, 254, 681, 293), 153};
constexpr Place kLinPhasePlace{params::kLinPhase, CRect(650, 309, 689, 347), 157};
constexpr Place kPowerPlace{params::kPower, CRect(660, 444, 696, 481), 158};
constexpr Place kResolutionPlace{params::kResolution, CRect(591, 169, 699, 202), 159};

constexpr CRect kInfoRect(616, 203, 695, 235);
constexpr CRect kSoloistRect(79, 465, 602, 486);
constexpr int kSoloistBitmap = 161;
constexpr CRect kMeterRects[2] = {CRect(51, 164, 82, 174), CRect(511, 164, 542, 174)};
constexpr int kMeterFaceBitmap = 160;
constexpr int kFontBitmap = 129;
constexpr int kSecondFontBitmap = 130;

// Band b's type switch: band 1's rectangle moved 69 pixels right per band; artwork 145 + b.
constexpr CRect kFirstTypeSwitch(75, 248, 120, 271);
constexpr double kTypeSwitchPitch = 69;
constexpr int kFirstTypeSwitchBitmap = 145;
constexpr CPoint kTypeCellOffset(11, 3);

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

// A numbered bitmap for the time a control is made: the control keeps its own reference.
struct Artwork {
    explicit Artwork(int id) : bitmap(new CBitmap(id)) {}
    ~Artwork() { bitmap->forget(); }
    Artwork(const Artwork&) = delete;
    Artwork& operator=(const Artwork&) = delete;
    CBitmap* bitmap;
};

CControl* makeButton(const Place& place, CControlListener* listener) {
    return new CMyOnOffButton(place.rect, listener, place.tag, Artwork(place.bitmap).bitmap);
}

void show(CControl* control, float value) {
    if (control) control->setValue(value);
}

}  // namespace

void Editor::buildSwitches(CFrame* frame) {
    fatButton = makeButton(kFatPlace, this);
    linPhaseButton = makeButton(kLinPhasePlace, this);
    powerButton = makeButton(kPowerPlace, this);
    resolutionSelector = new CResolution(kResolutionPlace.rect, this, kResolutionPlace.tag,
                                         Artwork(kResolutionPlace.bitmap).bitmap);
    for (CControl* control : {fatButton, linPhaseButton, powerButton, resolutionSelector}) frame->addView(control);
    frame->addView(new CInfo(kInfoRect, this));
    for (const ResetPlace& place : kResetPlaces) frame->addView(new CResetArea(place.rect, this, place.tag));

    soloist = new CSoloist(kSoloistRect, this, Artwork(kSoloistBitmap).bitmap);
    frame->addView(soloist);
    const Artwork face(kMeterFaceBitmap), font(kFontBitmap), secondFont(kSecondFontBitmap);
    for (int channel = 0; channel < 2; ++channel) {
        meters[channel] = new CMeter(kMeterRects[channel], this, face.bitmap, font.bitmap, secondFont.bitmap, channel);
        frame->addView(meters[channel]);
    }
    for (int b = 0; b < params::kBands; ++b) {
        CRect rect = kFirstTypeSwitch;
        rect.offset(kTypeSwitchPitch * b, 0);
        typeSwitches[b] = new CMySwitch(rect, this, params::kType + b, Artwork(kFirstTypeSwitchBitmap + b).bitmap,
                                        kTypeCellOffset);
        frame->addView(typeSwitches[b]);
    }
}

void Editor::releaseSwitches() {
    powerButton = fatButton = linPhaseButton = resolutionSelector = soloist = nullptr;
    std::fill(std::begin(typeSwitches), std::end(typeSwitches), nullptr);
    std::fill(std::begin(meters), std::end(meters), nullptr);
}

void Editor::showSwitchesParameter(int index, float value) {
    switch (index) {
        case params::kPower: show(powerButton, value); return;
        case params::kFat: show(fatButton, value); return;
        case params::kLinPhase: show(linPhaseButton, value); return;
        case params::kResolution: show(resolutionSelector, value); return;
        case params::kSolo: show(soloist, value); return;
        case params::kChannel: {
            // The switches show the side now selected (the left one for LINK).
            const int base = params::quantize(value, 3) == kRightStep ? params::kTypeR : params::kType;
            for (int b = 0; b < params::kBands; ++b) show(typeSwitches[b], parameter(base + b));
            return;
        }
        default: break;
    }
    if (index < params::kType || index >= params::kFreq) return;
    const bool right = index >= params::kTypeR;
    const int channel = params::quantize(parameter(params::kChannel), 3);
    if (channel == (right ? kLeftStep : kRightStep)) return;
    show(typeSwitches[(index - params::kType) % params::kBands], value);
}

void Editor::idleSwitches(uint32_t /*elapsedMs*/) {
    for (CControl* meter : meters)
        if (meter) meter->setDirty();
}

void Editor::setSoloMask(int mask) {
    if (!effect) return;
    int active = 0;
    for (int b = 0; b < params::kBands; ++b) {
        const bool leftOn = params::quantize(parameter(params::kType + b), params::kBandTypeSteps) < params::kFirstBypassType;
        const bool rightOn = params::quantize(parameter(params::kTypeR + b), params::kBandTypeSteps) < params::kFirstBypassType;
        if (leftOn || rightOn) active |= 1 << b;
    }
    beginEdit(params::kSolo);
    setAutomated(params::kSolo, params::stepCentre(mask & active, 256));
    endEdit(params::kSolo);
}

void Editor::getOutputPeaks(float* first, float* second) {
    if (EditorEffect* e = editorEffect()) e->getOutputPeaks(*first, *second);
}

void Editor::resetOutputPeaks() {
    if (EditorEffect* e = editorEffect()) e->resetOutputPeaks();
    clearHeldBars();
}
