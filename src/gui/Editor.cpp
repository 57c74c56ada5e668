#include "gui/Editor.h"

#include <climits>

#include "gui/EditorEffect.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CControl.h"
#include "presets/Parameters.h"
#include "vst/AudioEffect.h"

namespace {

constexpr int kBackgroundBitmap = 128;

// Reset frequencies: 50, 100, 250, 500, 1000, 2000, 10000 and 15000 Hz.
constexpr float kResetFrequencyValues[params::kBands] = {0.132647f, 0.23299f, 0.365637f, 0.46598f,
                                                         0.566323f, 0.666667f, 0.899657f, 0.958354f};
constexpr float kNeutralValue = 0.5f;  // 0 dB gain, the middle Q

}  // namespace

void MyFrame::setKeyboardFocus(bool on) {
    keyboardFocus = on;
    if (on) takeKeyboardFocus();
}

CMouseEventResult MyFrame::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (keyboardFocus) takeKeyboardFocus();
    return CFrame::onMouseDown(where, buttons);
}

Editor::Editor(AudioEffect* effect) : CExtendedListener(effect) { rect = ERect{0, 0, kHeight, kWidth}; }

Editor::~Editor() { release(); }

EditorEffect* Editor::editorEffect() const { return dynamic_cast<EditorEffect*>(effect); }

MyFrame* Editor::myFrame() const { return static_cast<MyFrame*>(frame); }

bool Editor::open(void* parentWindow) {
    platform::TimedLock::Guard guard(editorLock, INT_MAX);
    if (frame) return false;
    if (!build()) return false;
    if (!frame->open(parentWindow)) {
        release();
        return false;
    }
    systemWindow = parentWindow;
    if (myFrame()->hasKeyboardFocusOption()) frame->takeKeyboardFocus();
    opened.store(true, std::memory_order_release);
    return true;
}

bool Editor::openOffscreen() {
    platform::TimedLock::Guard guard(editorLock, INT_MAX);
    if (frame || !build()) return false;
    opened.store(true, std::memory_order_release);
    return true;
}

bool Editor::build() {
    auto* myframe = new MyFrame(CRect(0, 0, kWidth, kHeight));
    frame = myframe;
    myframe->setEventLock(&editorLock);
    auto* background = new CBitmap(kBackgroundBitmap);
    myframe->setBackground(background);
    background->forget();

    // Later groups draw over earlier ones (a type switch's pop-up over the knobs).
    buildPlot(myframe);
    buildValueControls(myframe);
    buildSwitches(myframe);

    CPresetSystemEditor::open(systemWindow);
    // The stored option works from the start, as its button shows it.
    myframe->setKeyboardFocus(readKeyboardFocus());
    showAllParameters();
    lastIdleTicks = myframe->getTicks();
    return true;
}

void Editor::close() {
    platform::TimedLock::Guard guard(editorLock, INT_MAX);
    release();
}

void Editor::release() {
    opened.store(false, std::memory_order_release);
    if (!frame) return;
    CPresetSystemEditor::close();
    releasePlot();
    releaseValueControls();
    releaseSwitches();
    delete frame;
    frame = nullptr;
    systemWindow = nullptr;
}

void Editor::idle() {
    platform::TimedLock::Guard guard(editorLock, INT_MAX);
    if (!frame) return;
    const uint32_t now = frame->getTicks();
    const uint32_t elapsed = now - lastIdleTicks;
    if (elapsed < kIdleIntervalMs) return;
    lastIdleTicks = now;
    if (refreshPending.exchange(false)) showAllParameters();
    if (params::quantize(parameter(params::kAutoZoom), 2) == 1) {
        if (EditorEffect* e = editorEffect()) e->applyAutoZoom();
        animation.restartAutoZoom();
    }
    animation.advanceRange(elapsed, parameter(params::kPlotRange));
    animation.advanceFade(elapsed, analyzerHintShown && params::quantize(parameter(params::kSpan), 2) == 1);
    idleValueControls(elapsed);
    idleSwitches(elapsed);
    idlePlot(elapsed);
    frame->idle();
}

namespace {
CKeyCode toolkitKey(const VstKeyCode& key) {
    CKeyCode code;
    code.character = key.character;
    code.virt = key.virt;
    code.modifier = key.modifier;
    return code;
}
}  // namespace

bool Editor::onKeyDown(VstKeyCode& key) {
    if (!frame) return false;
    CKeyCode code = toolkitKey(key);
    return frame->onKeyDown(code) != -1;
}

bool Editor::onKeyUp(VstKeyCode& key) {
    if (!frame) return false;
    CKeyCode code = toolkitKey(key);
    return frame->onKeyUp(code) != -1;
}

void Editor::setKeyboardFocus(bool on) {
    if (frame) myFrame()->setKeyboardFocus(on);
}

float Editor::parameter(int index) const { return effect ? effect->getParameter(index) : 0.0f; }

void Editor::setAutomated(int index, float value) {
    if (effect) effect->setParameterAutomated(index, value);
}

void Editor::valueChanged(CControl* control) {
    if (!control || !effect) return;
    const int tag = control->getTag();
    CPresetSystemEditor::valueChanged(control);
    const float v = control->getValue();
    switch (tag) {
        case params::kPower:
        case params::kFat:
        case params::kLinPhase:
        case params::kResolution:
        case params::kOutput:
            setAutomated(tag, v);
            return;
        case kAllBandsOff:
        case kResetFrequencies:
        case kResetGains:
        case kResetQ:
            resetBands(tag);
            return;
        default:
            if (tag >= params::kType && tag < params::kTypeR) {
                setBandType(tag, v);
            } else {
                valueControlChanged(control);
            }
    }
}

void Editor::setBandType(int tag, float value) {
    const int band = tag - params::kType;
    plotSelectBand(band);
    const int channel = params::quantize(parameter(params::kChannel), 3);
    if (channel != kRightStep) setAutomated(tag, value);
    if (channel != kLeftStep) setAutomated(tag + params::kBands, value);

    unsigned mask = static_cast<unsigned>(params::quantize(parameter(params::kSolo), 256));
    if (mask == 0) return;
    if (params::quantize(value, params::kBandTypeSteps) < params::kFirstBypassType) {
        mask |= 1u << band;
    } else {
        const int otherSide = channel == kRightStep ? tag : tag + params::kBands;
        if (params::quantize(parameter(otherSide), params::kBandTypeSteps) >= params::kFirstBypassType)
            mask &= ~(1u << band);
    }
    effect->setParameter(params::kSolo, params::stepCentre(static_cast<int>(mask), 256));
}

void Editor::resetBands(int tag) {
    const int channel = params::quantize(parameter(params::kChannel), 3);
    if (tag == kAllBandsOff) setParameter(params::kSolo, 0.0f);
    for (int side = 0; side < 2; ++side) {
        if ((side == 0 && channel == kRightStep) || (side == 1 && channel == kLeftStep)) continue;
        const int offset = side * params::kBands;
        for (int b = 0; b < params::kBands; ++b) {
            switch (tag) {
                case kAllBandsOff: {
                    const int index = params::kType + offset + b;
                    int step = params::quantize(parameter(index), params::kBandTypeSteps);
                    if (step < params::kFirstBypassType) step += params::kFirstBypassType;
                    setAutomated(index, params::stepCentre(step, params::kBandTypeSteps));
                    break;
                }
                case kResetFrequencies: setAutomated(params::kFreq + offset + b, kResetFrequencyValues[b]); break;
                case kResetGains: setAutomated(params::kGain + offset + b, kNeutralValue); break;
                case kResetQ: setAutomated(params::kQ + offset + b, kNeutralValue); break;
                default: break;
            }
        }
    }
}

// May arrive on the audio thread: it only stores values into controls. When the frame is busy
// (being built, drawn or closed) the value is shown by the next idle instead of waiting.
void Editor::setParameter(VstInt32 index, float value) {
    if (!isOpen()) return;
    platform::TimedLock::Guard guard(editorLock, 0);
    if (!guard || !frame) {
        refreshPending.store(true);
        return;
    }
    showParameter(index, value);
}

void Editor::showParameter(int index, float value) {
    // While AutoZoom runs, the idle eases the shown range toward the parameter.
    if (index == params::kPlotRange && params::quantize(parameter(params::kAutoZoom), 2) == 0)
        animation.showRange(value);
    showPlotParameter(index, value);
    showValueControlsParameter(index, value);
    showSwitchesParameter(index, value);
}

void Editor::showAllParameters() {
    for (int index = 0; index < params::kUsedParameters; ++index) showParameter(index, parameter(index));
}

bool Editor::writeSnapshot(const std::string& path) {
    const bool temporary = !isOpen();
    if (temporary && !openOffscreen()) return false;
    bool written = false;
    {
        platform::TimedLock::Guard guard(editorLock, INT_MAX);
        if (frame) {
            frame->invalidRect(frame->getViewSize());
            frame->redrawDirty();
            written = frame->getImage().writePng(path);
        }
    }
    if (temporary) close();
    return written;
}
