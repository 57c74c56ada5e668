// The frame's window on X11: a child of the host's window on a display connection of its
// own, painted from the frame's image through cairo, its events pumped from the frame's
// idle and, for hosts that dispatch them, through the window's _XEventProc property.
// This is the only file of the toolkit that sees Xlib.

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <cairo-xlib.h>
#include <cairo.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "gui/toolkit/CFrame.h"
#include "gui/toolkit/FrameWindow.h"
#include "platform/TimedLock.h"

namespace {

// Two presses of one button closer than this in time and space make a double click.
constexpr Time kDoubleClickMs = 400;
constexpr int kDoubleClickPixels = 4;

// Catches the errors of our own requests (a host may hand over a window that is already gone)
// so that Xlib's default handler does not end the host's process. The previous handler is
// back in place when the trap goes away.
class ErrorTrap {
public:
    explicit ErrorTrap(Display* display) : display(display) {
        errors = 0;
        previous = XSetErrorHandler(&ErrorTrap::count);
    }
    ~ErrorTrap() {
        XSync(display, False);
        XSetErrorHandler(previous);
    }
    bool failed() {
        XSync(display, False);
        return errors != 0;
    }

private:
    static int count(Display*, XErrorEvent*) {
        ++errors;
        return 0;
    }
    static inline int errors = 0;
    Display* display;
    XErrorHandler previous;
};

int32_t modifiersOf(unsigned int state) {
    int32_t m = 0;
    if (state & ShiftMask) m |= kShift;
    if (state & ControlMask) m |= kControl;
    if (state & Mod1Mask) m |= kAlt;
    return m;
}

int32_t buttonsHeld(unsigned int state) {
    int32_t b = 0;
    if (state & Button1Mask) b |= kLButton;
    if (state & Button2Mask) b |= kMButton;
    if (state & Button3Mask) b |= kRButton;
    return b;
}

int32_t buttonFlag(unsigned int button) {
    switch (button) {
        case Button1: return kLButton;
        case Button2: return kMButton;
        case Button3: return kRButton;
        default: return 0;
    }
}

uint8_t virtualKeyOf(KeySym sym) {
    switch (sym) {
        case XK_BackSpace: return VKEY_BACK;
        case XK_Tab: return VKEY_TAB;
        case XK_Return: return VKEY_RETURN;
        case XK_KP_Enter: return VKEY_ENTER;
        case XK_Escape: return VKEY_ESCAPE;
        case XK_Home: return VKEY_HOME;
        case XK_End: return VKEY_END;
        case XK_Left: return VKEY_LEFT;
        case XK_Right: return VKEY_RIGHT;
        case XK_Up: return VKEY_UP;
        case XK_Down: return VKEY_DOWN;
        case XK_Page_Up: return VKEY_PAGEUP;
        case XK_Page_Down: return VKEY_PAGEDOWN;
        case XK_Insert: return VKEY_INSERT;
        case XK_Delete: return VKEY_DELETE;
        default: return 0;
    }
}

bool isInputEvent(int type) {
    return type == ButtonPress || type == ButtonRelease || type == MotionNotify || type == KeyPress ||
           type == KeyRelease || type == EnterNotify || type == LeaveNotify;
}

class X11FrameWindow : public FrameWindow {
public:
    X11FrameWindow(Display* display, Window window, Visual* visual, CFrame& frame)
        : display(display), window(window), frame(frame) {
        surface = cairo_xlib_surface_create(display, window, visual, static_cast<int>(frame.getWidth()),
                                            static_cast<int>(frame.getHeight()));
        openWindows().push_back(this);
    }

    ~X11FrameWindow() override {
        std::erase(openWindows(), this);
        cairo_surface_destroy(surface);
        {
            ErrorTrap trap(display);
            if (window) XDestroyWindow(display, window);
        }
        XCloseDisplay(display);
    }

    void present(const FrameImage& image, const CRect& area) override {
        if (!window || area.isEmpty()) return;
        ErrorTrap trap(display);
        cairo_t* cr = cairo_create(surface);
        cairo_rectangle(cr, area.left, area.top, area.getWidth(), area.getHeight());
        cairo_clip(cr);
        cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(cr, image.surface(), 0, 0);
        cairo_paint(cr);
        cairo_destroy(cr);
        cairo_surface_flush(surface);
    }

    void pumpEvents() override {
        ErrorTrap trap(display);
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            // When the host dispatches input through the property, its copy is the one used.
            if (hostDispatches && isInputEvent(event.type)) continue;
            handle(event);
        }
    }

    void takeKeyboardFocus() override {
        if (!window) return;
        ErrorTrap trap(display);
        XSetInputFocus(display, window, RevertToParent, CurrentTime);
    }

    // Called by hosts that read the window's _XEventProc property.
    static void eventProc(XEvent* event) {
        if (!event) return;
        for (X11FrameWindow* w : openWindows()) {
            if (w->window != event->xany.window) continue;
            if (isInputEvent(event->type)) w->hostDispatches = true;
            // Here the host calls in from outside the owner's idle: take the owner's lock.
            std::optional<platform::TimedLock::Guard> guard;
            if (platform::TimedLock* lock = w->frame.getEventLock()) guard.emplace(*lock, INT_MAX);
            ErrorTrap trap(w->display);
            w->handle(*event);
            return;
        }
    }

private:
    static std::vector<X11FrameWindow*>& openWindows() {
        static std::vector<X11FrameWindow*> windows;
        return windows;
    }

    void handle(XEvent& event) {
        switch (event.type) {
            case Expose: {
                const XExposeEvent& e = event.xexpose;
                present(frame.getImage(), CRect(e.x, e.y, e.x + e.width, e.y + e.height));
                break;
            }
            case ButtonPress: buttonPress(event.xbutton); break;
            case ButtonRelease: {
                const XButtonEvent& e = event.xbutton;
                if (!buttonFlag(e.button)) break;
                CPoint where(e.x, e.y);
                frame.onMouseUp(where, CButtonState(buttonFlag(e.button) | modifiersOf(e.state)));
                break;
            }
            case MotionNotify: {
                const XMotionEvent& e = event.xmotion;
                CPoint where(e.x, e.y);
                frame.onMouseMoved(where, CButtonState(buttonsHeld(e.state) | modifiersOf(e.state)));
                break;
            }
            case EnterNotify: {
                const XCrossingEvent& e = event.xcrossing;
                CPoint where(e.x, e.y);
                frame.onMouseMoved(where, CButtonState(buttonsHeld(e.state) | modifiersOf(e.state)));
                break;
            }
            case LeaveNotify: {
                const XCrossingEvent& e = event.xcrossing;
                CPoint where(e.x, e.y);
                frame.onMouseExited(where, CButtonState(modifiersOf(e.state)));
                break;
            }
            case KeyPress:
            case KeyRelease: key(event.xkey); break;
            case DestroyNotify:
                if (event.xdestroywindow.window == window) window = 0;
                break;
            default: break;
        }
    }

    void buttonPress(const XButtonEvent& e) {
        const int32_t modifiers = modifiersOf(e.state);
        if (e.button >= 4 && e.button <= 7) {
            const float distance = (e.button == 4 || e.button == 6) ? 1.f : -1.f;
            const CMouseWheelAxis axis = e.button <= 5 ? CMouseWheelAxis::kVertical : CMouseWheelAxis::kHorizontal;
            frame.onWheel(CPoint(e.x, e.y), axis, distance, CButtonState(modifiers | buttonsHeld(e.state)));
            return;
        }
        const int32_t button = buttonFlag(e.button);
        if (!button) return;
        int32_t state = button | modifiers;
        const bool twice = e.button == lastButton && e.time - lastPressTime <= kDoubleClickMs &&
                           std::abs(e.x - lastX) <= kDoubleClickPixels && std::abs(e.y - lastY) <= kDoubleClickPixels;
        if (twice) {
            state |= kDoubleClick;
            lastButton = 0;  // a third press starts a new pair
        } else {
            lastButton = e.button;
            lastPressTime = e.time;
            lastX = e.x;
            lastY = e.y;
        }
        CPoint where(e.x, e.y);
        frame.onMouseDown(where, CButtonState(state));
    }

    void key(XKeyEvent& e) {
        char text[8] = {};
        KeySym sym = NoSymbol;
        XLookupString(&e, text, sizeof text - 1, &sym, nullptr);
        CKeyCode code;
        code.virt = virtualKeyOf(sym);
        if (!code.virt && sym >= 0x20 && sym <= 0xff) code.character = static_cast<int32_t>(sym);
        if (!code.virt && !code.character) return;
        if (e.state & ShiftMask) code.modifier |= MODIFIER_SHIFT;
        if (e.state & Mod1Mask) code.modifier |= MODIFIER_ALTERNATE;
        if (e.state & ControlMask) code.modifier |= MODIFIER_CONTROL;
        if (e.type == KeyPress)
            frame.onKeyDown(code);
        else
            frame.onKeyUp(code);
    }

    Display* display;
    Window window;
    CFrame& frame;
    cairo_surface_t* surface = nullptr;
    bool hostDispatches = false;
    unsigned int lastButton = 0;
    Time lastPressTime = 0;
    int lastX = 0;
    int lastY = 0;
};

// Publishes the event callback for hosts that dispatch events themselves: the function's
// address as two 32-bit items, low half first.
void publishEventProc(Display* display, Window window) {
    const Atom atom = XInternAtom(display, "_XEventProc", False);
    const auto address = reinterpret_cast<uintptr_t>(&X11FrameWindow::eventProc);
    long data[2] = {static_cast<long>(address & 0xffffffffu), static_cast<long>(address >> 32)};
    XChangeProperty(display, window, atom, atom, 32, PropModeReplace, reinterpret_cast<unsigned char*>(data), 2);
}

}  // namespace

std::unique_ptr<FrameWindow> openX11FrameWindow(void* parentWindow, CFrame& frame) {
    if (!parentWindow) return nullptr;
    Display* display = XOpenDisplay(nullptr);
    if (!display) return nullptr;
    const Window parent = static_cast<Window>(reinterpret_cast<uintptr_t>(parentWindow));
    const int screen = DefaultScreen(display);
    Visual* visual = DefaultVisual(display, screen);
    Window window = 0;
    {
        ErrorTrap trap(display);
        XWindowAttributes parentAttributes;
        const bool parentExists = XGetWindowAttributes(display, parent, &parentAttributes) != 0 && !trap.failed();
        if (parentExists) {
            XSetWindowAttributes attributes{};
            attributes.background_pixmap = None;  // no clearing before our image arrives: no flicker
            attributes.border_pixel = 0;
            attributes.colormap = DefaultColormap(display, screen);
            attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                                    EnterWindowMask | LeaveWindowMask | KeyPressMask | KeyReleaseMask |
                                    StructureNotifyMask;
            window = XCreateWindow(display, parent, 0, 0, static_cast<unsigned>(frame.getWidth()),
                                   static_cast<unsigned>(frame.getHeight()), 0, DefaultDepth(display, screen),
                                   InputOutput, visual, CWBackPixmap | CWBorderPixel | CWColormap | CWEventMask,
                                   &attributes);
            publishEventProc(display, window);
            XMapWindow(display, window);
            if (trap.failed()) {
                if (window) XDestroyWindow(display, window);
                window = 0;
            }
        }
    }
    if (!window) {
        XCloseDisplay(display);
        return nullptr;
    }
    return std::make_unique<X11FrameWindow>(display, window, visual, frame);
}
