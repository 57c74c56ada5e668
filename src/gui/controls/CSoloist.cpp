#include "gui/controls/CSoloist.h"

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"

namespace {
constexpr int kMaskSteps = 256;
constexpr double kFirstButtonX = 8;
// Each button's left edge relative to the first one's.
constexpr double kButtonOffsets[CSoloist::kBands] = {0, 70, 139, 207, 277, 347, 415, 485};
}  // namespace

CSoloist::CSoloist(const CRect& size, CExtendedListener* editor, CBitmap* bitmap)
    : CControl(size, editor, -1, bitmap), editor(editor) {}

int CSoloist::soloMask() const { return params::quantize(value, kMaskSteps); }

CRect CSoloist::button(const CRect& size, int b) {
    return CRect(CPoint(size.left + kFirstButtonX + kButtonOffsets[b], size.top), kButtonSize, kButtonSize);
}

int CSoloist::buttonAt(const CRect& size, const CPoint& where) {
    for (int b = 0; b < kBands; ++b)
        if (button(size, b).pointInside(where)) return b;
    return -1;
}

void CSoloist::draw(CDrawContext* context) {
    const CBitmap* bitmap = getBackground();
    if (!bitmap) return;
    bitmap->draw(context, size);
    const int mask = soloMask();
    for (int b = 0; b < kBands; ++b) {
        if (!(mask & (1 << b))) continue;
        const CRect lit = button(size, b);
        bitmap->draw(context, lit, CPoint(lit.left - size.left, kButtonSize));
    }
}

CMouseEventResult CSoloist::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (buttons.isRightButton() || buttons.isDoubleClick() || buttons.getModifierState() != 0) {
        report(0);
    } else if (buttons.isLeftButton()) {
        const int b = buttonAt(size, where);
        if (b >= 0) report(soloMask() ^ (1 << b));
    } else {
        return kMouseEventNotHandled;
    }
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

// Shown at once; the Solo value coming back from the editor settles what stays lit.
void CSoloist::report(int mask) {
    setValue(params::stepCentre(mask, kMaskSteps));
    if (editor) editor->setSoloMask(mask);
}
