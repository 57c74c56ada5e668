// vireo-render pictures of the editor: the window's size, the background artwork where no
// control lies, something drawn by every control, the analyzer bars after a render with the
// editor open, and each page of the plot.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "unit/resources/DecodedBitmap.h"

namespace {

// The bars' slots along the plot's bottom, and a corner of the plot no text reaches.
constexpr int kBarsLeft = 65, kBarsRight = 530, kBarsTop = 37, kBarsBottom = 161;
constexpr int kCornerX = 33, kCornerY = 160;
constexpr uint32_t kPageBackground = 0xFFCDE5ED;  // (205, 229, 237), opaque

Surface picture(const std::string& name, const std::string& options) {
    const std::string dir = testing::TempDir() + "editor-snapshots";
    std::filesystem::create_directories(dir);
    const std::string file = dir + "/" + name + ".png";
    std::filesystem::remove(file);
    // The demo render writes its audio into the working directory.
    const std::string command = "cd " + dir + " && " + std::string(TYX_BUILD_DIR) + "/vireo-render --quiet --plugin " +
                                TYX_PLUGIN_PATH + " " + options + " " + file;
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    if (const char* keep = std::getenv("TYX_SNAPSHOT_DIR")) std::filesystem::copy_file(
        file, std::string(keep) + "/" + name + ".png", std::filesystem::copy_options::overwrite_existing);
    return checked(cairo_image_surface_create_from_png(file.c_str()));
}

int differingPixels(cairo_surface_t* a, cairo_surface_t* b) {
    int count = 0;
    for (int y = kBarsTop; y < kBarsBottom; ++y)
        for (int x = kBarsLeft; x < kBarsRight; ++x) count += pixel(a, x, y) != pixel(b, x, y);
    return count;
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
    {"band 1 type", 86, 251, 108, 267},   {"resolution", 591, 169, 699, 187},   {"solo strip", 79, 465, 602, 486},
    {"plot", 30, 20, 548, 163},           {"jog", 580, 30, 709, 152},           {"header", 85, 164, 510, 184},
    {"output knob", 646, 370, 700, 424},  {"band 1 frequency", 80, 301, 117, 337}, {"band 8 Q", 562, 416, 599, 452},
};
constexpr Area kPanel[] = {{"between band 1's knobs", 75, 338, 120, 357}};

}  // namespace

TEST(Snapshot, FlatShowsTheBackgroundAndEveryControl) {
    const Surface shot = picture("flat", "--preset Flat --snapshot");
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
}

TEST(Snapshot, BarsShowAfterARenderWithTheEditorOpen) {
    const Surface still = picture("analyzer-still", "--preset 'Spectrum Analyzer' --snapshot");
    const Surface rendered = picture("analyzer-rendered", "--preset 'Spectrum Analyzer' --render-snapshot");
    ASSERT_TRUE(still && rendered);
    EXPECT_GT(differingPixels(still.get(), rendered.get()), 1000) << "no bars drawn";

    const Surface off = picture("analyzer-off", "--preset 'Spectrum Analyzer' --set SPAN=0 --render-snapshot");
    const Surface offStill = picture("analyzer-off-still", "--preset 'Spectrum Analyzer' --set SPAN=0 --snapshot");
    ASSERT_TRUE(off && offStill);
    EXPECT_EQ(differingPixels(off.get(), offStill.get()), 0) << "bars drawn with the analyzer off";
}

TEST(Snapshot, SettingsAndInformationPagesArePictured) {
    const Surface settings = picture("settings-page", "--preset Flat --page settings --snapshot");
    const Surface information = picture("information-page", "--preset Flat --page info --snapshot");
    ASSERT_TRUE(settings && information);
    EXPECT_EQ(pixel(settings.get(), kCornerX, kCornerY), kPageBackground);
    EXPECT_EQ(pixel(information.get(), kCornerX, kCornerY), kPageBackground);
    EXPECT_GT(differingPixels(settings.get(), information.get()), 1000) << "the two pages look alike";
}
