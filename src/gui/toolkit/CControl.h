#pragma once
// A view that edits one value: it reports changes to its listener under its tag, brackets
// gestures with beginEdit/endEdit, and draws its background bitmap unless it draws otherwise.

#include "gui/toolkit/CView.h"

class CBitmap;
class CControlListener;

class CControl : public CView {
public:
    CControl(const CRect& size, CControlListener* listener = nullptr, int32_t tag = 0, CBitmap* background = nullptr);
    CControl(const CControl& other);
    ~CControl() override;

    void draw(CDrawContext* context) override;

    // Changing the value marks the control for redrawing; it does not tell the listener.
    virtual void setValue(float value);
    float getValue() const { return value; }
    void setMin(float v) { vmin = v; }
    float getMin() const { return vmin; }
    void setMax(float v) { vmax = v; }
    float getMax() const { return vmax; }
    float getRange() const { return vmax - vmin; }
    void setDefaultValue(float v) { defaultValue = v; }
    float getDefaultValue() const { return defaultValue; }
    void setWheelInc(float v) { wheelInc = v; }
    float getWheelInc() const { return wheelInc; }
    void setTag(int32_t t) { tag = t; }
    int32_t getTag() const { return tag; }
    void setListener(CControlListener* l) { listener = l; }
    CControlListener* getListener() const { return listener; }
    // The control keeps its own reference to the bitmap.
    void setBackground(CBitmap* bitmap);
    CBitmap* getBackground() const { return background; }

    // Keeps the value inside min..max.
    virtual void bounceValue();
    // The modifier click (Ctrl with the left button) puts the default value back and reports
    // it; true when that click was one, and the caller then does nothing else with it.
    virtual bool checkDefaultValue(CButtonState buttons);

    // Tells the listener: the value changed / a gesture begins / it ends.
    virtual void valueChanged();
    virtual void beginEdit();
    virtual void endEdit();
    bool isEditing() const { return editDepth > 0; }

    const char* getClassName() const override { return "CControl"; }

protected:
    // Draws frame number index of a background that stacks its frames vertically.
    void drawBackgroundFrame(CDrawContext* context, int index, double frameHeight) const;

    CControlListener* listener;
    int32_t tag;
    float value = 0;
    float vmin = 0;
    float vmax = 1;
    float defaultValue = 0.5f;
    float wheelInc = 0.1f;

private:
    CBitmap* background = nullptr;
    int editDepth = 0;
};
