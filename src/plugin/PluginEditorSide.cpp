// The plug-in as its editor sees it: requests that reach the editor through the host boundary,
// and the artwork the editor's bitmaps are loaded from.

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"
#include "plugin/Plugin.h"
#include "plugin/VendorRequests.h"
#include "resources/EmbeddedBitmaps.h"

namespace {
// Bitmaps are looked up by number in the artwork compiled into the library.
[[maybe_unused]] const bool artworkInstalled = (CBitmap::setResourceFinder(findEmbeddedBitmap), true);
}  // namespace

VstIntPtr Plugin::vendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float /*opt*/) {
    if (!pluginEditor) return 0;
    switch (index) {
        case vendor::kSnapshotRequest:
            if (!ptr) return 0;
            // A still picture shows the analyzer as it stands, not halfway through its fade-in.
            pluginEditor->settlePlotFade();
            return pluginEditor->writeSnapshot(static_cast<const char*>(ptr)) ? 1 : 0;
        case vendor::kOffscreenEditorRequest:
            if (value == 0) pluginEditor->close();
            else if (!pluginEditor->isOpen()) pluginEditor->openOffscreen();
            return pluginEditor->isOpen() == (value != 0) ? 1 : 0;
        case vendor::kPlotPageRequest:
            if (!pluginEditor->isOpen()) return 0;
            pluginEditor->showPlotPage(static_cast<int>(value));
            return 1;
        default: return 0;
    }
}
