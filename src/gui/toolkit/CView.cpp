#include "gui/toolkit/CView.h"

#include <cstring>

#include "gui/toolkit/CFrame.h"

CView::CView(const CRect& size) : size(size) {}

CView::CView(const CView& other)
    : size(other.size), visible(other.visible), mouseEnabled(other.mouseEnabled) {}

void CView::setVisible(bool state) {
    if (visible == state) return;
    visible = state;
    if (frame) frame->invalidRect(size);
}

void CView::setViewSize(const CRect& rect) {
    if (frame) frame->invalidRect(size);
    size = rect;
    setDirty();
}

bool CView::isTypeOf(const char* name) const { return name && std::strcmp(getClassName(), name) == 0; }
