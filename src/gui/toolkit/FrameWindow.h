#pragma once
// The one window interface of the toolkit: a frame shown on screen goes through it, and only
// its implementation knows the window system. A frame without one renders off screen.

#include <memory>

#include "gui/toolkit/CGeometry.h"

class CFrame;
class FrameImage;

class FrameWindow {
public:
    virtual ~FrameWindow() = default;
    // Copies the area of the frame's image to the screen.
    virtual void present(const FrameImage& image, const CRect& area) = 0;
    // Delivers the window's pending events to its frame.
    virtual void pumpEvents() = 0;
    virtual void takeKeyboardFocus() = 0;
};

// A child window of the host's X11 window (parentWindow is its id) that shows frame and sends it
// its events. Null when there is no display or the parent does not exist.
std::unique_ptr<FrameWindow> openX11FrameWindow(void* parentWindow, CFrame& frame);
