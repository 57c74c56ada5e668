#pragma once
// A band's filter-type switch. Closed it shows the band's type in one cell; a click on its left
// part switches the band on or off, a click elsewhere opens a list of the seven shapes over the
// panel. The list takes every click until one closes it; a click on a row picks that shape and
// keeps the band's on/off state. The wheel steps through the shapes without crossing between
// on and off.

#include "gui/toolkit/CControl.h"

class CExtendedListener;
class CMySwitchPopup;

class CMySwitch : public CControl {
public:
    static constexpr int kTypeSteps = 14;
    static constexpr int kShapes = 7;  // steps 0..6 on, 7..13 the same shapes off
    static constexpr double kRowHeight = 16;
    static constexpr double kCellWidth = 22;

    // cellOffset: where the closed cell and the list's column sit inside the control.
    CMySwitch(const CRect& size, CExtendedListener* editor, int32_t tag, CBitmap* bitmap, const CPoint& cellOffset);
    CMySwitch(const CMySwitch& other);
    ~CMySwitch() override;

    int step() const;
    bool isPopupOpen() const { return popup != nullptr; }
    // Row r of the list opened at shape `openShape`; the list frames all seven rows.
    static CRect popupRow(const CRect& size, const CPoint& cellOffset, int openShape, int row);
    // The row (0..6) under the point, or -1.
    static int popupRowAt(const CRect& size, const CPoint& cellOffset, int openShape, const CPoint& where);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;
    CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CMySwitch(*this); }
    const char* getClassName() const override { return "CMySwitch"; }

private:
    friend class CMySwitchPopup;
    int band() const;
    CRect listBox(int shape) const;
    void openPopup();
    void drawPopup(CDrawContext* context) const;
    void popupClicked(const CPoint& where, const CButtonState& buttons);
    void closePopup();
    void report(int newStep);

    CExtendedListener* editor;
    CPoint cellOffset;
    int openStep = 0;  // the step when the list opened
    CMySwitchPopup* popup = nullptr;
};
