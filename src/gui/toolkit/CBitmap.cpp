#include "gui/toolkit/CBitmap.h"

#include <cairo.h>
#include <cstring>

#include "gui/toolkit/CDrawContext.h"

namespace {
CBitmap::ResourceFinder resourceFinder = nullptr;

struct PngReader {
    const unsigned char* data;
    size_t size;
    size_t position;
};

cairo_status_t readPng(void* closure, unsigned char* out, unsigned int length) {
    auto* reader = static_cast<PngReader*>(closure);
    if (reader->size - reader->position < length) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(out, reader->data + reader->position, length);
    reader->position += length;
    return CAIRO_STATUS_SUCCESS;
}
}  // namespace

void CBitmap::setResourceFinder(ResourceFinder finder) { resourceFinder = finder; }

CBitmap::CBitmap(int resourceId) : resourceId(resourceId) {
    const unsigned char* png = nullptr;
    unsigned long size = 0;
    if (resourceFinder && resourceFinder(resourceId, &png, &size)) load(png, size);
}

CBitmap::CBitmap(const unsigned char* png, size_t size) { load(png, size); }

CBitmap::~CBitmap() {
    if (surface) cairo_surface_destroy(surface);
}

void CBitmap::load(const unsigned char* png, size_t size) {
    if (!png || size == 0) return;
    PngReader reader{png, size, 0};
    cairo_surface_t* s = cairo_image_surface_create_from_png_stream(readPng, &reader);
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(s);
        return;
    }
    surface = s;
}

double CBitmap::getWidth() const { return surface ? cairo_image_surface_get_width(surface) : 0; }
double CBitmap::getHeight() const { return surface ? cairo_image_surface_get_height(surface) : 0; }

void CBitmap::draw(CDrawContext* context, const CRect& dest, const CPoint& offset) const {
    drawAlphaBlend(context, dest, offset, 255);
}

void CBitmap::drawAlphaBlend(CDrawContext* context, const CRect& dest, const CPoint& offset, unsigned char alpha) const {
    if (surface && context) context->drawImage(surface, dest, offset, alpha / 255.0);
}
