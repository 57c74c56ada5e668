// vireo-render --snapshot: the picture of the editor has the window's size, shows the
// background artwork where no control lies, and every control of the window draws something.

#include <gtest/gtest.h>

#include <cairo.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "resources/EmbeddedBitmaps.h"

namespace {

struct Picture {
    cairo_surface_t* surface;
    explicit Picture(cairo_surface_t* s) : surface(s) {}
    ~Picture() { cairo_surface_destroy(surface); }
    bool ok() const { return cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS; }
    int width() const { return cairo_image_surface_get_width(surface); }
    int height() const { return cairo_image_surface_get_height(surface); }
    uint32_t at(int x, int y) const {
        const unsigned char* data = cairo_image_surface_get_data(surface);
        return *reinterpret_cast<const uint32_t*>(data + y * cairo_image_surface_get_stride(surface) + 4 * x);
    }
};

struct PngBytes {
    const unsigned char* bytes;
    unsigned long size;
    unsigned long offset = 0;
};

cairo_surface_t* decodeBackground() {
    PngBytes png{nullptr, 0};
    if (!findEmbeddedBitmap(128, &png.bytes, &png.size)) return nullptr;
    return cairo_image_surface_create_from_png_stream(
        [](void* closure, unsigned char* out, unsigned int length) {
            auto* in = static_cast<PngBytes*>(closure);
            if (in->offset + length > in->size) return CAIRO_STATUS_READ_ERROR;
            std::copy_n(in->bytes + in->offset, length, out);
            in->offset += length;
            return CAIRO_STATUS_SUCCESS;
        },
        &png);
}

struct Area {
    const char* name;
    int left, top, right, bottom;
};
// Controls the window shows today, and plain panel areas that only the background covers.
constexpr Area kControls[] = {
    {"FAT", 644, 254, 681, 293},          {"LinPhase", 650, 309, 689, 347},     {"Power", 660, 444, 696, 481},
    {"preset name", 194, 494, 318, 508},  {"preset menu", 320, 495, 333, 507},  {"rocker", 340, 494, 370, 507},
    {"save bank", 22, 494, 39, 509},      {"default bank", 39, 494, 71, 507},   {"load bank", 72, 494, 89, 509},
    {"save preset", 104, 494, 121, 509},  {"default preset", 122, 494, 166, 507}, {"load preset", 166, 494, 183, 509},
    {"memories", 388, 494, 503, 509},     {"keyboard focus", 710, 497, 721, 504}, {"manual", 729, 496, 740, 505},
};
constexpr Area kPanel[] = {{"plot", 30, 20, 548, 163}, {"band 1", 75, 230, 120, 460}};

}  // namespace

TEST(Snapshot, FlatShowsTheBackgroundAndEveryControl) {
    const std::string file = testing::TempDir() + "vireo-snapshot.png";
    std::filesystem::remove(file);
    const std::string command = std::string(TYX_BUILD_DIR) + "/vireo-render --plugin " + TYX_PLUGIN_PATH +
                                " --preset Flat --snapshot " + file;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;

    Picture shot(cairo_image_surface_create_from_png(file.c_str()));
    Picture background(decodeBackground());
    ASSERT_TRUE(shot.ok());
    ASSERT_TRUE(background.ok());
    EXPECT_EQ(shot.width(), 750);
    EXPECT_EQ(shot.height(), 509);

    for (const Area& a : kPanel)
        for (int y = a.top; y < a.bottom; y += 3)
            for (int x = a.left; x < a.right; x += 3)
                ASSERT_EQ(shot.at(x, y), background.at(x, y)) << a.name << " at " << x << "," << y;
    for (const Area& a : kControls) {
        std::set<uint32_t> colours;
        for (int y = a.top; y < a.bottom; ++y)
            for (int x = a.left; x < a.right; ++x) colours.insert(shot.at(x, y));
        EXPECT_GT(colours.size(), 2u) << a.name << " looks blank";
    }
    std::filesystem::remove(file);
}
