#include "gui/controls/CFilterType.h"

#include "gui/toolkit/CBitmap.h"

CFilterType::CFilterType(const CRect& size, CBitmap* bitmap) : CControl(size, nullptr, -1, bitmap) {
    setMouseEnabled(false);
}

void CFilterType::draw(CDrawContext* context) {
    const CBitmap* bitmap = getBackground();
    if (!bitmap) return;
    for (int b = 0; b < kBands; ++b) {
        const CRect row(size.left, size.top + b * kRowHeight, size.right, size.top + (b + 1) * kRowHeight);
        bitmap->draw(context, row, CPoint(0, b * kSourcePitch));
    }
}
