// vireo-render --snapshot: the picture of the editor has the window's size, shows the
// background artwork where no control lies, and every control of the window draws something.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "unit/resources/DecodedBitmap.h"

namespace {

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
    {"band 1 type", 86, 251, 108, 267},   {"resolution", 591, 169, 699, 187},   {"solo strip", 79, 465, 602, 486},
    {"plot", 30, 20, 548, 163},           {"jog", 580, 30, 709, 152},           {"header", 85, 164, 510, 184},
    {"output knob", 646, 370, 700, 424},  {"band 1 frequency", 80, 301, 117, 337}, {"band 8 Q", 562, 416, 599, 452},
};
constexpr Area kPanel[] = {{"between band 1's knobs", 75, 338, 120, 357}};

}  // namespace

TEST(Snapshot, FlatShowsTheBackgroundAndEveryControl) {
    const std::string file = testing::TempDir() + "vireo-snapshot.png";
    std::filesystem::remove(file);
    const std::string command = std::string(TYX_BUILD_DIR) + "/vireo-render --plugin " + TYX_PLUGIN_PATH +
                                " --preset Flat --snapshot " + file;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;

    const Surface shot = checked(cairo_image_surface_create_from_png(file.c_str()));
    const Surface background = decode(128);
    ASSERT_TRUE(shot && background);
    EXPECT_EQ(cairo_image_surface_get_width(shot.get()), 750);
    EXPECT_EQ(cairo_image_surface_get_height(shot.get()), 509);

    for (const Area& a : kPanel)
        for (int y = a.top; y < a.bottom; y += 3)
            for (int x = a.left; x < a.right; x += 3)
                ASSERT_EQ(pixel(shot.get(), x, y), pixel(background.get(), x, y)) << a.name << " at " << x << "," << y;
    for (const Area& a : kControls) {
        std::set<uint32_t> colours;
        for (int y = a.top; y < a.bottom; ++y)
            for (int x = a.left; x < a.right; ++x) colours.insert(pixel(shot.get(), x, y));
        EXPECT_GT(colours.size(), 2u) << a.name << " looks blank";
    }
    std::filesystem::remove(file);
}
