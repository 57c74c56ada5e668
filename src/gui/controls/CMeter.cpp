#include "gui/controls/CMeter.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CDrawContext.h"

namespace {
constexpr float kFloor = 1e-6f;      // -120 dB: silence
constexpr float kSilentDb = -100.0f;  // at or below this the readout shows " -oo "
// The text's right end and baseline in editor coordinates, per channel.
constexpr int kTextRight[2] = {82, 542};
constexpr int kBaseline = 173;
constexpr int kAdvance = 6;
}  // namespace

CMeter::Reading CMeter::reading(float peak) {
    if (!(peak >= kFloor)) peak = kFloor;  // also a NaN
    const float v = 20.0f * std::log10(peak);
    Reading r{};
    r.hot = v > 0;
    if (v <= kSilentDb) std::snprintf(r.text, sizeof r.text, " -oo ");
    else std::snprintf(r.text, sizeof r.text, "%+2.1f", static_cast<double>(v));
    return r;
}

CMeter::CMeter(const CRect& size, CExtendedListener* owner, CBitmap* face, CBitmap* font, CBitmap* secondFont,
               int channel)
    : CControl(size, owner, -1, face), CTextPrinter2Color(font, secondFont), owner(owner), channel(channel) {}

void CMeter::draw(CDrawContext* context) {
    float first = 0, second = 0;
    if (owner) owner->getOutputPeaks(&first, &second);
    else first = kFloor;
    const Reading r = reading(channel == 0 ? first : second);

    const CColor savedFill = context->getFillColor();
    const CColor savedFrame = context->getFrameColor();
    context->setFillColor(r.hot ? kHotColour : kColdColour);
    context->setFrameColor(r.hot ? kHotColour : kColdColour);
    context->drawRect(CRect(size.left, size.top, size.right, size.bottom + 1), kDrawFilled);
    context->setFillColor(savedFill);
    context->setFrameColor(savedFrame);
    if (!r.hot && getBackground()) getBackground()->draw(context, size);

    const int right = kTextRight[channel == 0 ? 0 : 1];
    const int x = right - kAdvance * static_cast<int>(std::strlen(r.text));
    drawText(context, x, kBaseline, r.text, false, true, r.hot);
    setDirty(false);
}

CMouseEventResult CMeter::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    if (owner) owner->resetOutputPeaks();
    setDirty();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}
