#include "gui/toolkit/COptionMenu.h"

#include <algorithm>
#include <cmath>

#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/CFrame.h"

namespace {
constexpr double kListWidth = 160;
constexpr double kTextInset = 6;
constexpr double kFontSize = 10;
constexpr CColor kBorder{60, 64, 70, 255};
constexpr CColor kHover{120, 160, 200, 255};
}  // namespace

// The open list: a modal view of the frame, gone when it closes.
class COptionMenuList : public CView {
public:
    COptionMenuList(COptionMenu& menu, const CRect& rect) : CView(rect), menu(&menu) {}
    ~COptionMenuList() override {
        if (menu) menu->popup = nullptr;
    }
    // The menu went away first (the frame is closing).
    void menuGone() { menu = nullptr; }

    int rowAt(const CPoint& where) const {
        if (!menu || !size.pointInside(where)) return -1;
        const int row = static_cast<int>((where.y - size.top) / COptionMenu::kRowHeight);
        return row < menu->getNbEntries() ? row : -1;
    }

    void draw(CDrawContext* context) override {
        if (!menu) return;
        const COptionMenu& owner = *menu;
        context->setFillColor(owner.backColor);
        context->setFrameColor(kBorder);
        context->drawRect(size, kDrawFilledAndStroked);
        context->setFont("sans-serif", kFontSize);
        for (int i = 0; i < owner.getNbEntries(); ++i) {
            const CRect row(size.left + 1, size.top + i * COptionMenu::kRowHeight, size.right - 1,
                            size.top + (i + 1) * COptionMenu::kRowHeight);
            const bool current = i == owner.getCurrent();
            if (i == hovered || current) {
                CColor fill = kHover;
                if (i != hovered) fill.alpha = 90;
                context->setFillColor(fill);
                context->drawRect(row, kDrawFilled);
            }
            context->setFontColor(owner.fontColor);
            context->drawString(owner.entries[static_cast<size_t>(i)].getTitle(),
                                CRect(row.left + kTextInset, row.top, row.right - 2, row.bottom), kLeftText);
        }
    }

    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override {
        const int row = buttons.isLeftButton() ? rowAt(where) : -1;
        COptionMenu* owner = menu;
        close();
        if (owner && row >= 0) owner->choose(row);
        return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }

    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState&) override {
        const int row = rowAt(where);
        if (row != hovered) {
            hovered = row;
            setDirty();
        }
        return kMouseEventHandled;
    }

    int32_t onKeyDown(CKeyCode& key) override {
        if (key.virt == VKEY_ESCAPE) close();
        return 1;
    }

    const char* getClassName() const override { return "COptionMenuList"; }

private:
    void close() {
        if (frame && frame->getModalView() == this) frame->setModalView(nullptr);
    }

    COptionMenu* menu;
    int hovered = -1;
};

COptionMenu::COptionMenu(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* background)
    : CControl(size, listener, tag, background) {
    vmax = 0;
}

COptionMenu::COptionMenu(const COptionMenu& other)
    : CControl(other), entries(other.entries), fontColor(other.fontColor), backColor(other.backColor) {}

COptionMenu::~COptionMenu() {
    if (popup) popup->menuGone();
}

CMenuItem* COptionMenu::addEntry(const char* title) {
    entries.emplace_back(title ? title : "");
    vmax = static_cast<float>(entries.size() - 1);
    return &entries.back();
}

CMenuItem* COptionMenu::getEntry(int index) {
    return index >= 0 && index < getNbEntries() ? &entries[static_cast<size_t>(index)] : nullptr;
}

void COptionMenu::removeAllEntry() {
    entries.clear();
    vmax = 0;
    setValue(0);
}

void COptionMenu::setCurrent(int index) {
    if (index >= 0 && index < getNbEntries()) setValue(static_cast<float>(index));
}

bool COptionMenu::isPopupOpen() const { return popup != nullptr; }

CRect COptionMenu::popupRect() const {
    CRect list(CPoint(size.left, size.bottom), kListWidth, entries.size() * kRowHeight + 1);
    if (!frame) return list;
    const CRect& bounds = frame->getViewSize();
    if (list.bottom > bounds.bottom) list.offset(0, bounds.bottom - list.bottom);
    if (list.top < bounds.top) list.offset(0, bounds.top - list.top);
    if (list.right > bounds.right) list.offset(bounds.right - list.right, 0);
    return list;
}

void COptionMenu::draw(CDrawContext* context) {
    if (getBackground()) {
        drawBackgroundFrame(context, 0, size.getHeight());
    } else {
        context->setFillColor(backColor);
        context->setFrameColor(kBorder);
        context->drawRect(size, kDrawFilledAndStroked);
        // A small arrow pointing down.
        const double cx = std::floor(size.left + size.getWidth() / 2), cy = std::floor(size.top + size.getHeight() / 2);
        const CPoint arrow[] = {{cx - 3, cy - 1}, {cx + 3, cy - 1}, {cx, cy + 2}};
        context->setFillColor(fontColor);
        context->drawPolygon(arrow, 3, kDrawFilled);
    }
}

CMouseEventResult COptionMenu::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton() || !frame || entries.empty()) return kMouseEventNotHandled;
    auto* list = new COptionMenuList(*this, popupRect());
    frame->setModalView(list);
    popup = list;
    return kMouseEventHandled;
}

void COptionMenu::choose(int index) {
    beginEdit();
    setCurrent(index);
    valueChanged();
    endEdit();
}
