#pragma once
// The embedded artwork decoded the way the editor decodes it, and pixel access for checks on it.

#include <cairo.h>

#include <cstdint>
#include <cstring>
#include <memory>

#include "resources/EmbeddedBitmaps.h"

struct SurfaceDeleter {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

// Null unless the surface decoded.
inline Surface checked(cairo_surface_t* s) {
    if (cairo_surface_status(s) == CAIRO_STATUS_SUCCESS) return Surface(s);
    cairo_surface_destroy(s);
    return nullptr;
}

inline Surface decode(int id) {
    struct Reader {
        const unsigned char* data = nullptr;
        unsigned long size = 0, at = 0;
    } reader;
    if (!findEmbeddedBitmap(id, &reader.data, &reader.size)) return nullptr;
    auto read = [](void* closure, unsigned char* out, unsigned int length) {
        auto* r = static_cast<Reader*>(closure);
        if (r->size - r->at < length) return CAIRO_STATUS_READ_ERROR;
        std::memcpy(out, r->data + r->at, length);
        r->at += length;
        return CAIRO_STATUS_SUCCESS;
    };
    return checked(cairo_image_surface_create_from_png_stream(read, &reader));
}

// Premultiplied ARGB of one pixel.
inline uint32_t pixel(cairo_surface_t* s, int x, int y) {
    const unsigned char* row = cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s);
    return reinterpret_cast<const uint32_t*>(row)[x];
}
