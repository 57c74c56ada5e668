#include "gui/controls/CMySwitch.h"

#include <algorithm>

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/CFrame.h"
#include "presets/Parameters.h"

namespace {
constexpr double kToggleWidth = 13;       // the left part of the closed switch turns the band on/off
constexpr double kBypassedColumn = 112;   // the list's shapes of a band that is off
constexpr double kListTopInset = 3;       // the current shape's row lies this far below the top
constexpr CColor kListFill{12, 13, 15, 255};
constexpr CColor kListFrame{150, 158, 166, 255};
constexpr CColor kCurrentRowFrame{223, 247, 255, 255};
}  // namespace

// The open list: a modal view of the frame that draws and clicks through its switch.
class CMySwitchPopup : public CView {
public:
    CMySwitchPopup(CMySwitch& owner, const CRect& rect) : CView(rect), owner(&owner) {}
    ~CMySwitchPopup() override {
        if (owner) owner->popup = nullptr;
    }
    void switchGone() { owner = nullptr; }

    void draw(CDrawContext* context) override {
        if (owner) owner->drawPopup(context);
    }
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override {
        if (owner) owner->popupClicked(where, buttons);  // may close this list
        return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }
    CMouseEventResult onMouseUp(CPoint&, const CButtonState&) override { return kMouseEventHandled; }
    CMouseEventResult onMouseMoved(CPoint&, const CButtonState&) override { return kMouseEventHandled; }
    bool onWheel(const CPoint&, const CMouseWheelAxis&, const float&, const CButtonState&) override { return true; }
    int32_t onKeyDown(CKeyCode& key) override {
        if (key.virt == VKEY_ESCAPE && owner) owner->closePopup();
        return 1;
    }
    const char* getClassName() const override { return "CMySwitchPopup"; }

private:
    CMySwitch* owner;
};

CMySwitch::CMySwitch(const CRect& size, CExtendedListener* editor, int32_t tag, CBitmap* bitmap,
                     const CPoint& cellOffset)
    : CControl(size, editor, tag, bitmap), editor(editor), cellOffset(cellOffset) {
    wheelInc = 1.0f / kTypeSteps;  // one shape per wheel step
}

CMySwitch::CMySwitch(const CMySwitch& other)
    : CControl(other), editor(other.editor), cellOffset(other.cellOffset) {}

CMySwitch::~CMySwitch() {
    if (popup) popup->switchGone();
}

int CMySwitch::step() const { return params::quantize(value, kTypeSteps); }

int CMySwitch::band() const { return tag - params::kType; }

CRect CMySwitch::popupRow(const CRect& size, const CPoint& cellOffset, int openShape, int row) {
    const double top = size.top + kListTopInset + kRowHeight * (row - openShape);
    return CRect(CPoint(size.left + cellOffset.x, top), kCellWidth, kRowHeight);
}

int CMySwitch::popupRowAt(const CRect& size, const CPoint& cellOffset, int openShape, const CPoint& where) {
    for (int r = 0; r < kShapes; ++r)
        if (popupRow(size, cellOffset, openShape, r).pointInside(where)) return r;
    return -1;
}

void CMySwitch::draw(CDrawContext* context) {
    if (const CBitmap* bitmap = getBackground()) {
        const CRect cell(CPoint(size.left + cellOffset.x, size.top + cellOffset.y), kCellWidth, kRowHeight);
        bitmap->draw(context, cell, CPoint(0, step() * kRowHeight));
    }
}

// The seven rows and a one-pixel frame round them.
CRect CMySwitch::listBox(int shape) const {
    CRect box = popupRow(size, cellOffset, shape, 0);
    return box.unite(popupRow(size, cellOffset, shape, kShapes - 1)).inset(-1, -1);
}

void CMySwitch::drawPopup(CDrawContext* context) const {
    const int shape = openStep % kShapes;
    const bool bypassed = openStep >= kShapes;
    const CRect box = listBox(shape);
    context->setFillColor(kListFill);
    context->setFrameColor(kListFrame);
    context->drawRect(box, kDrawFilledAndStroked);
    const CBitmap* bitmap = getBackground();
    for (int r = 0; r < kShapes && bitmap; ++r)
        bitmap->draw(context, popupRow(size, cellOffset, shape, r), CPoint(bypassed ? kBypassedColumn : 0, r * kRowHeight));
    CRect current = popupRow(size, cellOffset, shape, shape);
    context->setFrameColor(kCurrentRowFrame);
    context->drawRect(current.inset(-1, -1), kDrawStroked);
}

CMouseEventResult CMySwitch::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    if (where.x < size.left + kToggleWidth) {
        const int s = step();
        report(s < kShapes ? s + kShapes : s - kShapes);
    } else {
        openPopup();
    }
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

void CMySwitch::openPopup() {
    if (!frame || popup) return;
    openStep = step();
    // The frame owns the list from here; it goes away when the list closes or the frame does.
    auto* list = new CMySwitchPopup(*this, listBox(openStep % kShapes));
    frame->setModalView(list);
    popup = list;
}

void CMySwitch::popupClicked(const CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return;
    const int row = popupRowAt(size, cellOffset, openStep % kShapes, where);
    closePopup();
    if (row >= 0) report(openStep >= kShapes ? row + kShapes : row);
    if (editor) editor->selectBand(band());
}

void CMySwitch::closePopup() {
    if (!popup) return;
    CMySwitchPopup* list = popup;
    list->switchGone();
    popup = nullptr;
    if (frame && frame->getModalView() == list) frame->setModalView(nullptr);
    setDirty();
}

void CMySwitch::report(int newStep) {
    beginEdit();
    setValue(params::stepCentre(newStep, kTypeSteps));
    valueChanged();
    endEdit();
}

bool CMySwitch::onWheel(const CPoint& /*where*/, const float& distance, const CButtonState& /*buttons*/) {
    const int before = step();
    const float moved = std::clamp(value + distance * wheelInc, vmin, vmax);
    int after = params::quantize(moved, kTypeSteps);
    // The wheel changes the shape only: an active band stays on, a bypassed one off.
    after = before < kShapes ? std::min(after, kShapes - 1) : std::max(after, kShapes);
    if (after != before) report(after);
    return true;
}

CMouseEventResult CMySwitch::onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    if (editor) editor->hoverBand(band(), 0);
    return kMouseEventHandled;
}

CMouseEventResult CMySwitch::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    if (editor) editor->hoverBand(-1, 0);
    return kMouseEventHandled;
}
