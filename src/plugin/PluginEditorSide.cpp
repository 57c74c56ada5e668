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

VstIntPtr Plugin::vendorSpecific(VstInt32 index, VstIntPtr /*value*/, void* ptr, float /*opt*/) {
    if (index == vendor::kSnapshotRequest) {
        if (!ptr || !pluginEditor) return 0;
        return pluginEditor->writeSnapshot(static_cast<const char*>(ptr)) ? 1 : 0;
    }
    return 0;
}
