#include "gui/toolkit/CFrame.h"

#include <algorithm>

#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/CMessageBox.h"
#include "gui/toolkit/FrameWindow.h"
#include "platform/Clock.h"

namespace {
// More separate dirty areas than this are drawn as one.
constexpr size_t kMaxDirtyAreas = 16;
}  // namespace

CFrame::CFrame(const CRect& size)
    : CView(size), image(static_cast<int>(size.getWidth()), static_cast<int>(size.getHeight())) {
    invalidRect(size);
}

CFrame::~CFrame() {
    idleTasks.clear();
    window.reset();
    setModalView(nullptr);
    deleteRemoved();
    focusView = mouseDownView = mouseOverView = nullptr;
    for (auto it = views.rbegin(); it != views.rend(); ++it) {
        (*it)->removed(this);
        delete *it;
    }
    views.clear();
    deleteRemoved();
    if (background) background->forget();
}

bool CFrame::open(void* parentWindow) {
    window = openX11FrameWindow(parentWindow, *this);
    if (!window) return false;
    redrawDirty();
    window->present(image, size);
    return true;
}

void CFrame::addView(CView* view) {
    if (!view || containsView(view)) return;
    views.push_back(view);
    view->attached(this);
    view->setDirty();
}

void CFrame::removeView(CView* view) {
    auto it = std::find(views.begin(), views.end(), view);
    if (it == views.end()) return;
    views.erase(it);
    forgetView(view);
    invalidRect(view->getViewSize());
    view->removed(this);
    // Deleted once the event that removed it has been handled: it may be the caller.
    removedViews.push_back(view);
}

void CFrame::forgetView(CView* view) {
    if (focusView == view) focusView = nullptr;
    if (modalView == view) modalView = nullptr;
    if (mouseDownView == view) mouseDownView = nullptr;
    if (mouseOverView == view) mouseOverView = nullptr;
}

void CFrame::deleteRemoved() {
    while (!removedViews.empty()) {
        CView* view = removedViews.back();
        removedViews.pop_back();
        delete view;
    }
}

bool CFrame::containsView(const CView* view) const { return std::find(views.begin(), views.end(), view) != views.end(); }

CView* CFrame::getView(int index) const {
    return index >= 0 && index < getNbViews() ? views[static_cast<size_t>(index)] : nullptr;
}

void CFrame::setBackground(CBitmap* bitmap) {
    if (bitmap) bitmap->remember();
    if (background) background->forget();
    background = bitmap;
    invalidRect(size);
}

void CFrame::setBackgroundColor(const CColor& color) {
    backgroundColor = color;
    invalidRect(size);
}

void CFrame::setFocusView(CView* view) {
    if (view == focusView) return;
    CView* old = focusView;
    focusView = view;
    if (old) old->looseFocus();
    if (focusView) focusView->takeFocus();
}

void CFrame::setModalView(CView* view) {
    if (modalView) removeView(modalView);
    modalView = nullptr;
    if (!view) return;
    addView(view);
    modalView = view;
    mouseDownView = nullptr;
    if (mouseOverView) {
        CPoint where;
        CButtonState none;
        mouseOverView->onMouseExited(where, none);
        mouseOverView = nullptr;
    }
}

void CFrame::showMessage(const std::string& text, const std::string& caption) {
    setModalView(new CMessageBox(size, text, caption));
}

uint32_t CFrame::getTicks() const { return platform::tickCountMs(); }

void CFrame::addIdleTask(std::unique_ptr<FrameIdleTask> task) {
    if (task) idleTasks.push_back(std::move(task));
}

void CFrame::idle() {
    if (window) window->pumpEvents();
    // A task may add another while it runs; the new one waits for the next idle.
    const size_t count = idleTasks.size();
    std::vector<std::unique_ptr<FrameIdleTask>> finished;
    for (size_t i = 0; i < count; ++i)
        if (!idleTasks[i]->idle(*this)) finished.push_back(std::move(idleTasks[i]));
    std::erase(idleTasks, nullptr);
    finished.clear();
    deleteRemoved();
    redrawDirty();
}

void CFrame::takeKeyboardFocus() {
    if (window) window->takeKeyboardFocus();
}

void CFrame::invalidRect(const CRect& rect) {
    CRect area = rect;
    area.bound(size);
    if (!area.isEmpty()) dirtyArea.unite(area);
}

void CFrame::redrawDirty() {
    std::vector<CRect> areas;
    if (!dirtyArea.isEmpty()) areas.push_back(dirtyArea);
    dirtyArea = CRect{};
    for (CView* view : views) {
        if (!view->isDirty() || !view->isVisible()) continue;
        CRect area = view->getViewSize();
        area.bound(size);
        if (area.isEmpty()) continue;
        // Overlapping areas merge so that nothing is drawn twice.
        for (auto it = areas.begin(); it != areas.end();) {
            if (it->rectOverlap(area)) {
                area.unite(*it);
                it = areas.erase(it);
            } else {
                ++it;
            }
        }
        areas.push_back(area);
    }
    if (areas.size() > kMaxDirtyAreas) {
        CRect all;
        for (const CRect& a : areas) all.unite(a);
        areas.assign(1, all);
    }
    for (const CRect& area : areas) {
        drawArea(area);
        if (window) window->present(image, area);
    }
}

void CFrame::drawArea(const CRect& area) {
    CDrawContext context(image.surface());
    context.setClipRect(area);
    if (background) {
        background->draw(&context, size);
    } else {
        context.setFillColor(backgroundColor);
        context.drawRect(size, kDrawFilled);
    }
    auto drawView = [&](CView* view) {
        if (!view->isVisible() || !view->getViewSize().rectOverlap(area)) return;
        // Cleared first: a value stored while the view draws marks it again for the next idle.
        view->setDirty(false);
        view->draw(&context);
    };
    for (CView* view : views)
        if (view != modalView) drawView(view);
    if (modalView) drawView(modalView);
}

CView* CFrame::viewAt(const CPoint& where) const {
    for (auto it = views.rbegin(); it != views.rend(); ++it) {
        CView* view = *it;
        if (view->isVisible() && view->getMouseEnabled() && view->getViewSize().pointInside(where)) return view;
    }
    return nullptr;
}

void CFrame::trackHover(CPoint& where, const CButtonState& buttons) {
    CView* over = viewAt(where);
    if (over == mouseOverView) return;
    CPoint p = where;
    if (mouseOverView) mouseOverView->onMouseExited(p, buttons);
    mouseOverView = over;
    p = where;
    if (mouseOverView) mouseOverView->onMouseEntered(p, buttons);
}

CMouseEventResult CFrame::onMouseDown(CPoint& where, const CButtonState& buttons) {
    CView* target = modalView ? modalView : viewAt(where);
    if (!modalView && focusView && focusView != target) setFocusView(nullptr);
    CMouseEventResult result = kMouseEventNotHandled;
    if (target) {
        CView* modalBefore = modalView;
        CPoint p = where;
        result = target->onMouseDown(p, buttons);
        // A view that opened a modal view hands the rest of the gesture to it.
        if (result == kMouseEventHandled && modalView == modalBefore && containsView(target)) mouseDownView = target;
    }
    deleteRemoved();
    return result;
}

CMouseEventResult CFrame::onMouseUp(CPoint& where, const CButtonState& buttons) {
    CView* target = mouseDownView ? mouseDownView : modalView;
    mouseDownView = nullptr;
    CMouseEventResult result = kMouseEventNotHandled;
    if (target) {
        CPoint p = where;
        result = target->onMouseUp(p, buttons);
    }
    if (!modalView) trackHover(where, CButtonState(buttons.getModifierState()));
    deleteRemoved();
    return result;
}

CMouseEventResult CFrame::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    CView* target = mouseDownView ? mouseDownView : modalView;
    if (!target) {
        trackHover(where, buttons);
        target = mouseOverView;
    }
    CMouseEventResult result = kMouseEventNotHandled;
    if (target) {
        CPoint p = where;
        result = target->onMouseMoved(p, buttons);
    }
    deleteRemoved();
    return result;
}

CMouseEventResult CFrame::onMouseExited(CPoint& where, const CButtonState& buttons) {
    if (mouseOverView && !mouseDownView) {
        CPoint p = where;
        mouseOverView->onMouseExited(p, buttons);
        mouseOverView = nullptr;
    }
    deleteRemoved();
    return kMouseEventHandled;
}

bool CFrame::onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
                     const CButtonState& buttons) {
    CView* target = modalView ? modalView : viewAt(where);
    const bool handled = target && target->onWheel(where, axis, distance, buttons);
    deleteRemoved();
    return handled;
}

int32_t CFrame::onKeyDown(CKeyCode& key) {
    CView* target = modalView ? modalView : focusView;
    const int32_t result = target ? target->onKeyDown(key) : -1;
    deleteRemoved();
    return result;
}

int32_t CFrame::onKeyUp(CKeyCode& key) {
    CView* target = modalView ? modalView : focusView;
    const int32_t result = target ? target->onKeyUp(key) : -1;
    deleteRemoved();
    return result;
}
