#include "gui/controls/CHeader.h"

#include <cstdio>

#include "gui/controls/ValueText.h"
#include "presets/Parameters.h"

namespace {

// Where each text starts on the common baseline, in frame pixels.
constexpr int kBaseline = 173;
constexpr int kOutLabelX = 455, kOutTextX = 479;
constexpr int kDriveLabelX = 156, kDriveTextX = 354;
constexpr int kBandNumberX = 86;
constexpr int kTypeLabelX = 96, kTypeTextX = 126;
constexpr int kFreqLabelX = 230, kFreqTextX = 260;
constexpr int kGainLabelX = 310, kGainTextX = 340;
constexpr int kQLabelX = 388, kQTextX = 400;
constexpr int kHintX = 96;

constexpr const char* kDriveLabel = "Spectrum analyzer input drive = ";
constexpr const char* kAnalyzerHint = "ANALYZER: click on/off, right-click settings";

}  // namespace

CHeader::CHeader(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* font)
    : CControl(size, listener, tag), CTextPrinter(font) {}

void CHeader::setType(float value) {
    const int step = params::quantize(value, params::kBandTypeSteps);
    if (step != typeStep) setDirty();
    typeStep = step;
}

void CHeader::setFrequency(float value) {
    frequency = value;
    setDirty();
}

void CHeader::setGain(float value) {
    gain = value;
    setDirty();
}

void CHeader::setQ(float value) {
    q = value;
    setDirty();
}

void CHeader::setOutput(float v) {
    setValue(v);
    setDirty();
}

void CHeader::setBand(int index) {
    band = index;
    setDirty();
}

void CHeader::setDrive(float dB) {
    drive = dB;
    driveShow = 0;
    setDirty();
}

void CHeader::advanceDriveShow(int elapsedMs) {
    if (driveShow >= kDriveShowMs) return;
    driveShow += elapsedMs;
    // Only the end of the drive line changes what is drawn.
    if (driveShow >= kDriveShowMs) setDirty();
}

void CHeader::setAnalyzerHint(bool shown) {
    if (shown == analyzerHint) return;
    analyzerHint = shown;
    setDirty();
}

CHeader::Texts CHeader::texts() const {
    using namespace valuetext;
    Texts t;
    t.output = format(kOutput, value, typeStep);
    if (band < 0) return t;
    t.type = typeText(typeStep);
    t.frequency = format(kFrequency, frequency, typeStep);
    if (hasGain(typeStep)) t.gain = format(kGain, gain, typeStep);
    if (hasQ(typeStep)) t.q = format(kQ, q, typeStep);
    return t;
}

void CHeader::draw(CDrawContext* context) {
    const Texts t = texts();
    drawText(context, kOutLabelX, kBaseline, "OUT:");
    drawText(context, kOutTextX, kBaseline, t.output.c_str());
    if (driveShow < kDriveShowMs) {
        char text[32];
        std::snprintf(text, sizeof text, "%ddB", static_cast<int>(drive));
        drawText(context, kDriveLabelX, kBaseline, kDriveLabel);
        drawText(context, kDriveTextX, kBaseline, text, false, true);
    } else if (analyzerHint) {
        drawText(context, kHintX, kBaseline, kAnalyzerHint);
    } else if (band >= 0) {
        char number[16];
        std::snprintf(number, sizeof number, "%d", band + 1);
        drawText(context, kBandNumberX, kBaseline, number, false, true);
        drawText(context, kTypeLabelX, kBaseline, "TYPE:");
        drawText(context, kTypeTextX, kBaseline, t.type.c_str());
        drawText(context, kFreqLabelX, kBaseline, "FREQ:");
        drawText(context, kFreqTextX, kBaseline, t.frequency.c_str());
        drawText(context, kGainLabelX, kBaseline, "GAIN:");
        drawText(context, kGainTextX, kBaseline, t.gain.c_str());
        drawText(context, kQLabelX, kBaseline, "Q:");
        drawText(context, kQTextX, kBaseline, t.q.c_str());
    }
    setDirty(false);
}

CMouseEventResult CHeader::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (where.x < kOutputAreaLeft || !buttons.isLeftButton()) return kMouseEventNotHandled;
    if (checkDefaultValue(buttons)) return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    drag.press(*this, where, buttons);
    return kMouseEventHandled;
}

CMouseEventResult CHeader::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (!drag.isDragging() || !buttons.isLeftButton()) return kMouseEventNotHandled;
    drag.move(*this, where, buttons);
    return kMouseEventHandled;
}

CMouseEventResult CHeader::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    return drag.release(*this) ? kMouseEventHandled : kMouseEventNotHandled;
}

bool CHeader::onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) {
    if (where.x < kOutputAreaLeft) return false;
    beginEdit();
    ValueDrag::turnWheel(*this, distance, buttons);
    endEdit();
    return true;
}
