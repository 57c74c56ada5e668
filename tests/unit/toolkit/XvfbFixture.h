#pragma once
// Tests against a real X display: an Xvfb server started once per test program, and for each
// test a mapped parent window standing in for a host's, checked for X errors at the end.

#include <gtest/gtest.h>

#include <X11/Xlib.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "platform/ChildProcess.h"

class XvfbFixture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (platform::findProgram("Xvfb").empty()) return;
        server = new platform::ChildProcess;
        // -displayfd prints the display number it chose once it accepts connections. Without the
        // shared-memory extension cairo sends images over the connection as to a remote display:
        // its shared-memory path keeps a few small records per display that it never frees, which
        // the leak checker would otherwise report against whichever test redrew a large area.
        if (!server->start({"Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                            "-extension", "MIT-SHM"}))
            return;
        for (int i = 0; i < 1000 && server->output().find('\n') == std::string::npos; ++i) {
            if (server->poll()) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        const std::string number = server->output().substr(0, server->output().find('\n'));
        if (number.empty()) return;
        setenv("DISPLAY", (":" + number).c_str(), 1);
        display = XOpenDisplay(nullptr);
    }
    static void TearDownTestSuite() {
        if (display) XCloseDisplay(display);
        display = nullptr;
        delete server;  // terminates the server
        server = nullptr;
    }

    void SetUp() override {
        if (!display) GTEST_SKIP() << "Xvfb is not installed or did not start (Debian package xvfb)";
        XSetErrorHandler(countXError);
        xErrors = 0;
        parent = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 800, 600, 0, 0, 0);
        XMapWindow(display, parent);
        XSync(display, False);
    }
    void TearDown() override {
        if (!display) return;
        XDestroyWindow(display, parent);
        XSync(display, False);
        EXPECT_EQ(xErrors, 0);
    }

    std::vector<Window> children() {
        Window root, up, *list = nullptr;
        unsigned count = 0;
        XQueryTree(display, parent, &root, &up, &list, &count);
        std::vector<Window> out(list, list + count);
        if (list) XFree(list);
        return out;
    }

    // The callback a frame's window publishes for hosts that dispatch its events themselves.
    using EventProc = void (*)(XEvent*);
    EventProc eventProcOf(Window window) {
        const Atom atom = XInternAtom(display, "_XEventProc", False);
        Atom type;
        int format;
        unsigned long items = 0, after;
        unsigned char* data = nullptr;
        if (XGetWindowProperty(display, window, atom, 0, 2, False, AnyPropertyType, &type, &format, &items, &after,
                               &data) != Success || items != 2) {
            if (data) XFree(data);
            return nullptr;
        }
        const long* halves = reinterpret_cast<const long*>(data);
        const uintptr_t address = (static_cast<uintptr_t>(halves[1]) << 32) | (static_cast<uintptr_t>(halves[0]) & 0xffffffffu);
        XFree(data);
        return reinterpret_cast<EventProc>(address);
    }

    static int countXError(Display*, XErrorEvent*) {
        ++xErrors;
        return 0;
    }

    static inline platform::ChildProcess* server = nullptr;
    static inline Display* display = nullptr;
    static inline int xErrors = 0;
    Window parent = 0;
};
