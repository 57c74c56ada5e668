#pragma once
// The editor's window content: it owns its views, routes mouse and key events to them, keeps
// the focus view and the mouse capture, and from its idle redraws only what became dirty.
// Without a window (open() never called or failed) it renders into its image alone; events
// can then be given to it directly, and it behaves the same.

#include <memory>
#include <string>
#include <vector>

#include "gui/toolkit/CView.h"
#include "gui/toolkit/FrameImage.h"

class CBitmap;
class FrameWindow;

// Work that the frame polls from its idle until it is done (a dialog program, an opener).
class FrameIdleTask {
public:
    virtual ~FrameIdleTask() = default;
    // False once the task is finished; the frame then deletes it.
    virtual bool idle(CFrame& frame) = 0;
};

namespace platform {
class TimedLock;
}

class CFrame : public CView {
public:
    explicit CFrame(const CRect& size);
    ~CFrame() override;

    // Shows the frame in a child window of the host's window; false when that is not possible
    // (the frame then stays off screen).
    bool open(void* parentWindow);
    bool isWindowOpen() const { return window != nullptr; }
    // The owner's lock over its controls. A host may deliver window events by itself, outside
    // the owner's idle; the window takes this lock around each of them, so that controls are
    // only ever touched under it. Unset (null), events are delivered without a lock.
    void setEventLock(platform::TimedLock* lock) { eventLock = lock; }
    platform::TimedLock* getEventLock() const { return eventLock; }

    // The frame owns added views and deletes them when they are removed or it goes away.
    void addView(CView* view);
    void removeView(CView* view);
    bool containsView(const CView* view) const;
    int getNbViews() const { return static_cast<int>(views.size()); }
    CView* getView(int index) const;

    void setBackground(CBitmap* bitmap);
    void setBackgroundColor(const CColor& color);

    // Key events go to the focus view first.
    void setFocusView(CView* view);
    CView* getFocusView() const { return focusView; }
    // A modal view (a pop-up list, a message box) is drawn above everything and takes every
    // mouse and key event until it is replaced or cleared; the frame owns it.
    void setModalView(CView* view);
    CView* getModalView() const { return modalView; }
    // A modal message with an OK button, drawn inside the frame.
    void showMessage(const std::string& text, const std::string& caption);

    // Milliseconds from a monotonic clock.
    uint32_t getTicks() const;

    // Pumps the window's events, polls the idle tasks and redraws what is dirty.
    virtual void idle();
    void addIdleTask(std::unique_ptr<FrameIdleTask> task);
    // Marks an area for redrawing (what a view left when it moved or vanished).
    void invalidRect(const CRect& rect);
    // Redraws the dirty views and areas now and shows them.
    void redrawDirty();

    // Asks the window system to send the keys to this frame's window.
    void takeKeyboardFocus();

    const FrameImage& getImage() const { return image; }

    // Events, in frame coordinates, as the window delivers them.
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
                 const CButtonState& buttons) override;
    int32_t onKeyDown(CKeyCode& key) override;
    int32_t onKeyUp(CKeyCode& key) override;

    const char* getClassName() const override { return "CFrame"; }

private:
    CView* viewAt(const CPoint& where) const;
    void trackHover(CPoint& where, const CButtonState& buttons);
    void forgetView(CView* view);
    void deleteRemoved();
    void drawArea(const CRect& area);

    FrameImage image;
    std::unique_ptr<FrameWindow> window;
    std::vector<CView*> views;
    std::vector<CView*> removedViews;
    std::vector<std::unique_ptr<FrameIdleTask>> idleTasks;
    CBitmap* background = nullptr;
    CColor backgroundColor = kBlackCColor;
    CView* focusView = nullptr;
    platform::TimedLock* eventLock = nullptr;
    CView* modalView = nullptr;
    CView* mouseDownView = nullptr;
    CView* mouseOverView = nullptr;
    CRect dirtyArea;
};
