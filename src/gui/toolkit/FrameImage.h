#pragma once
// The image a frame draws into. On screen it is copied to the window in one go, so the user
// never sees a half-drawn state; off screen it is the result, readable by pixel or as a PNG.

#include <string>

#include "gui/toolkit/CGeometry.h"

typedef struct _cairo_surface cairo_surface_t;

class FrameImage {
public:
    FrameImage(int width, int height);
    ~FrameImage();
    FrameImage(const FrameImage&) = delete;
    FrameImage& operator=(const FrameImage&) = delete;

    int width() const { return w; }
    int height() const { return h; }
    cairo_surface_t* surface() const { return image; }

    // The colour at a pixel, not premultiplied; transparent outside the image.
    CColor pixel(int x, int y) const;
    bool writePng(const std::string& path) const;

private:
    int w;
    int h;
    cairo_surface_t* image;
};
