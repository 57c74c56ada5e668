#include "gui/toolkit/FrameImage.h"

#include <cairo.h>
#include <cstdint>
#include <cstring>

FrameImage::FrameImage(int width, int height)
    : w(width), h(height), image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)) {}

FrameImage::~FrameImage() { cairo_surface_destroy(image); }

CColor FrameImage::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= w || y >= h) return kTransparentCColor;
    cairo_surface_flush(image);
    const unsigned char* row = cairo_image_surface_get_data(image) + y * cairo_image_surface_get_stride(image);
    uint32_t argb;
    std::memcpy(&argb, row + 4 * x, 4);
    const uint8_t a = argb >> 24;
    auto channel = [a](uint32_t premultiplied) {
        return static_cast<uint8_t>(a == 0 ? 0 : (premultiplied * 255 + a / 2) / a);
    };
    return CColor{channel((argb >> 16) & 0xff), channel((argb >> 8) & 0xff), channel(argb & 0xff), a};
}

bool FrameImage::writePng(const std::string& path) const {
    cairo_surface_flush(image);
    return cairo_surface_write_to_png(image, path.c_str()) == CAIRO_STATUS_SUCCESS;
}
