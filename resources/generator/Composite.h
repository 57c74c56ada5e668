#pragma once
// A preview of the whole editor built from the generated bitmaps: every control's image at
// its place, as the editor will show it. Written next to the bitmaps for people to look at.

#include <cairo.h>

#include <map>

namespace artwork {

enum class PreviewState {
    Rest,    // every control at frame 0, no text
    InUse,   // a plausible session: knobs turned, switches on, header and readouts printed
};

// Returns a new 750 × 509 surface; the caller destroys it.
cairo_surface_t* composeEditor(const std::map<int, cairo_surface_t*>& bitmaps, PreviewState state);

}  // namespace artwork
