#include "gui/toolkit/CMessageBox.h"

#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/CFrame.h"

namespace {
constexpr double kBoxWidth = 360;
constexpr double kBoxHeight = 100;
constexpr double kButtonWidth = 64;
constexpr double kButtonHeight = 20;
constexpr CColor kShade{0, 0, 0, 110};
constexpr CColor kPanel{236, 238, 240, 255};
constexpr CColor kBorder{60, 64, 70, 255};
constexpr CColor kInk{30, 32, 36, 255};
constexpr CColor kButtonFace{208, 214, 220, 255};
}  // namespace

CMessageBox::CMessageBox(const CRect& frameSize, std::string text, std::string caption)
    : CView(frameSize), text(std::move(text)), caption(std::move(caption)) {
    const double left = frameSize.left + (frameSize.getWidth() - kBoxWidth) / 2;
    const double top = frameSize.top + (frameSize.getHeight() - kBoxHeight) / 2;
    box = CRect(CPoint(static_cast<int>(left), static_cast<int>(top)), kBoxWidth, kBoxHeight);
    okButton = CRect(CPoint(static_cast<int>(box.left + (kBoxWidth - kButtonWidth) / 2), box.bottom - kButtonHeight - 12),
                     kButtonWidth, kButtonHeight);
}

void CMessageBox::draw(CDrawContext* context) {
    context->setFillColor(kShade);
    context->drawRect(size, kDrawFilled);
    context->setFillColor(kPanel);
    context->setFrameColor(kBorder);
    context->drawRect(box, kDrawFilledAndStroked);
    context->setFontColor(kInk);
    if (!caption.empty()) {
        context->setFont("sans-serif", 12, true);
        context->drawString(caption.c_str(), CRect(box.left + 10, box.top + 8, box.right - 10, box.top + 26));
    }
    context->setFont("sans-serif", 11);
    context->drawString(text.c_str(), CRect(box.left + 10, box.top + 30, box.right - 10, box.top + 56));
    context->setFillColor(kButtonFace);
    context->drawRect(okButton, kDrawFilledAndStroked);
    context->drawString("OK", okButton);
}

void CMessageBox::dismiss() {
    if (frame && frame->getModalView() == this) frame->setModalView(nullptr);
}

CMouseEventResult CMessageBox::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (buttons.isLeftButton() && okButton.pointInside(where)) dismiss();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

int32_t CMessageBox::onKeyDown(CKeyCode& key) {
    if (key.virt == VKEY_RETURN || key.virt == VKEY_ENTER || key.virt == VKEY_ESCAPE) dismiss();
    return 1;
}
