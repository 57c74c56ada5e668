// vireo-render pictures of the response plot: the analyzer bars appear after a render with the
// editor open, and each page of the plot can be pictured.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "unit/resources/DecodedBitmap.h"

namespace {

// The bars' slots along the plot's bottom, and a corner of the plot no text reaches.
constexpr int kBarsLeft = 65, kBarsRight = 530, kBarsTop = 37, kBarsBottom = 161;
constexpr int kCornerX = 33, kCornerY = 160;
constexpr uint32_t kPageBackground = 0xFFCDE5ED;  // (205, 229, 237), opaque

Surface picture(const std::string& name, const std::string& options) {
    const std::string dir = testing::TempDir() + "plot-snapshots";
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

}  // namespace

TEST(PlotSnapshot, BarsShowAfterARenderWithTheEditorOpen) {
    const Surface still = picture("analyzer-still", "--preset 'Spectrum Analyzer' --snapshot");
    const Surface rendered = picture("analyzer-rendered", "--preset 'Spectrum Analyzer' --render-snapshot");
    ASSERT_TRUE(still && rendered);
    EXPECT_GT(differingPixels(still.get(), rendered.get()), 1000) << "no bars drawn";

    const Surface off = picture("analyzer-off", "--preset 'Spectrum Analyzer' --set SPAN=0 --render-snapshot");
    const Surface offStill = picture("analyzer-off-still", "--preset 'Spectrum Analyzer' --set SPAN=0 --snapshot");
    ASSERT_TRUE(off && offStill);
    EXPECT_EQ(differingPixels(off.get(), offStill.get()), 0) << "bars drawn with the analyzer off";
}

TEST(PlotSnapshot, SettingsAndInformationPagesArePictured) {
    const Surface settings = picture("settings-page", "--preset Flat --page settings --snapshot");
    const Surface information = picture("information-page", "--preset Flat --page info --snapshot");
    ASSERT_TRUE(settings && information);
    EXPECT_EQ(pixel(settings.get(), kCornerX, kCornerY), kPageBackground);
    EXPECT_EQ(pixel(information.get(), kCornerX, kCornerY), kPageBackground);
    EXPECT_GT(differingPixels(settings.get(), information.get()), 1000) << "the two pages look alike";
}
