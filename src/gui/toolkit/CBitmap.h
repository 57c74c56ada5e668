#pragma once
// A PNG image for views, shared by reference count: whoever keeps a pointer calls remember(),
// and forget() when done; the last forget() deletes it. A new bitmap starts with one reference.

#include <cstddef>

#include "gui/toolkit/CGeometry.h"

typedef struct _cairo_surface cairo_surface_t;
class CDrawContext;

class CBitmap {
public:
    // Finds a PNG resource by number; answers false when there is none.
    using ResourceFinder = bool (*)(int id, const unsigned char** png, unsigned long* size);
    // Installed once by the plug-in; until then resource bitmaps load as empty.
    static void setResourceFinder(ResourceFinder finder);

    explicit CBitmap(int resourceId);
    CBitmap(const unsigned char* png, size_t size);

    void remember() { ++references; }
    void forget() {
        if (--references == 0) delete this;
    }
    int getNbReference() const { return references; }

    // False when the PNG could not be read; such a bitmap is 0 × 0 and draws nothing.
    bool isLoaded() const { return surface != nullptr; }
    int getResourceId() const { return resourceId; }
    double getWidth() const;
    double getHeight() const;

    // Fills dest with the pixels from offset on (frame stacks and film strips pick their frame
    // that way). alpha 0..255 scales the image's own alpha.
    void draw(CDrawContext* context, const CRect& dest, const CPoint& offset = CPoint(0, 0)) const;
    void drawAlphaBlend(CDrawContext* context, const CRect& dest, const CPoint& offset, unsigned char alpha) const;

private:
    ~CBitmap();
    CBitmap(const CBitmap&) = delete;
    CBitmap& operator=(const CBitmap&) = delete;
    void load(const unsigned char* png, size_t size);

    cairo_surface_t* surface = nullptr;
    int resourceId = -1;
    int references = 1;
};
