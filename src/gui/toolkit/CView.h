#pragma once
// A rectangle of the frame that draws itself and may take the mouse and the keyboard.
// Views draw in frame coordinates. A view marked dirty is redrawn at the frame's next idle;
// marking is allowed from any thread (the effect may store values while the host automates).

#include <atomic>
#include <cstdint>

#include "gui/toolkit/CButtonState.h"
#include "gui/toolkit/CGeometry.h"

class CDrawContext;
class CFrame;

enum class CMouseWheelAxis { kVertical, kHorizontal };

class CView {
public:
    explicit CView(const CRect& size);
    CView(const CView& other);
    CView& operator=(const CView&) = delete;
    virtual ~CView() = default;

    virtual void draw(CDrawContext* /*context*/) {}

    virtual CMouseEventResult onMouseDown(CPoint& /*where*/, const CButtonState& /*buttons*/) {
        return kMouseEventNotImplemented;
    }
    virtual CMouseEventResult onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
        return kMouseEventNotImplemented;
    }
    virtual CMouseEventResult onMouseMoved(CPoint& /*where*/, const CButtonState& /*buttons*/) {
        return kMouseEventNotImplemented;
    }
    virtual CMouseEventResult onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) {
        return kMouseEventNotImplemented;
    }
    virtual CMouseEventResult onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
        return kMouseEventNotImplemented;
    }
    // distance: wheel steps, positive away from the user.
    virtual bool onWheel(const CPoint& /*where*/, const float& /*distance*/, const CButtonState& /*buttons*/) {
        return false;
    }
    // Horizontal wheels are ignored unless a view asks for them.
    virtual bool onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
                         const CButtonState& buttons) {
        return axis == CMouseWheelAxis::kVertical && onWheel(where, distance, buttons);
    }
    // 1 when the key was used, -1 when it was not.
    virtual int32_t onKeyDown(CKeyCode& /*key*/) { return -1; }
    virtual int32_t onKeyUp(CKeyCode& /*key*/) { return -1; }

    // The frame's focus view gets the keys; these tell it when that starts and ends.
    virtual void takeFocus() {}
    virtual void looseFocus() {}

    void setDirty(bool state = true) { dirty.store(state, std::memory_order_relaxed); }
    bool isDirty() const { return dirty.load(std::memory_order_relaxed); }
    void invalid() { setDirty(true); }

    virtual void setVisible(bool state);
    bool isVisible() const { return visible; }
    void setMouseEnabled(bool state) { mouseEnabled = state; }
    bool getMouseEnabled() const { return mouseEnabled; }

    const CRect& getViewSize() const { return size; }
    virtual void setViewSize(const CRect& rect);
    double getWidth() const { return size.getWidth(); }
    double getHeight() const { return size.getHeight(); }

    CFrame* getFrame() const { return frame; }
    // The frame calls these when the view joins it and when it leaves.
    virtual void attached(CFrame* owner) { frame = owner; }
    virtual void removed(CFrame* /*owner*/) { frame = nullptr; }

    // A copy of the view with all its state, for the views that offer one.
    virtual CView* newCopy() const { return nullptr; }
    // The run-time type test: the most derived class's name.
    virtual const char* getClassName() const { return "CView"; }
    bool isTypeOf(const char* name) const;

protected:
    CRect size;
    CFrame* frame = nullptr;

private:
    std::atomic<bool> dirty{true};
    bool visible = true;
    bool mouseEnabled = true;
};
