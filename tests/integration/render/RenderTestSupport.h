#pragma once
// Runs the built vireo-render in a private temporary folder, and makes and reads its files.

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

#include "host/VstHost.h"
#include "presets/RecordLayout.h"

namespace rendertest {

namespace fs = std::filesystem;

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
using presets::image::kNameRecordBytes;
using presets::image::kValueRecordBytes;
using presets::image::kTypePreset;
using presets::image::kTypeBank;
constexpr int kSavedSlots = 85;

struct RunResult { int exitCode; std::string out, err; };

struct Audio {
    SF_INFO info{};
    std::vector<short> shorts;
    std::vector<float> floats;
    std::string title;
};

inline std::string slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// A 16-bit test signal: noise and a tone, with both full-scale extremes in it.
inline std::vector<short> testShorts(int frames, int channels, uint32_t seed = 1) {
    std::vector<short> s(static_cast<size_t>(frames) * channels);
    for (size_t i = 0; i < s.size(); ++i) {
        seed = seed * 1664525u + 1013904223u;
        const double tone = 12000.0 * std::sin(0.05 * static_cast<double>(i / channels));
        s[i] = static_cast<short>(std::lround(tone + static_cast<double>(static_cast<int32_t>(seed) >> 19)));
    }
    if (s.size() > 4) s[1] = 32767, s[2] = -32768;
    return s;
}

inline std::vector<float> testFloats(int frames, int channels) {
    std::vector<float> f;
    for (short v : testShorts(frames, channels)) f.push_back(static_cast<float>(v) / 32768.0f * 0.9f);
    return f;
}

inline SNDFILE* openAudio(const fs::path& path, int mode, SF_INFO& info) {
    SNDFILE* f = sf_open(path.c_str(), mode, &info);
    EXPECT_NE(f, nullptr) << path << ": " << sf_strerror(nullptr);
    return f;
}
inline void writeShorts(const fs::path& p, int format, int rate, int channels, const std::vector<short>& s,
                        const char* title = nullptr) {
    SF_INFO info{0, rate, channels, format, 0, 0};
    SNDFILE* f = openAudio(p, SFM_WRITE, info);
    if (f && title) sf_set_string(f, SF_STR_TITLE, title);
    if (f) sf_writef_short(f, s.data(), s.size() / channels), sf_close(f);
}
inline void writeFloats(const fs::path& p, int format, int rate, int channels, const std::vector<float>& s) {
    SF_INFO info{0, rate, channels, format, 0, 0};
    if (SNDFILE* f = openAudio(p, SFM_WRITE, info)) sf_writef_float(f, s.data(), s.size() / channels), sf_close(f);
}
// Both as 16-bit and as float samples, with the title if the file has one.
inline Audio readAudio(const fs::path& p) {
    Audio a;
    if (SNDFILE* f = openAudio(p, SFM_READ, a.info)) {
        a.shorts.resize(static_cast<size_t>(a.info.frames) * a.info.channels);
        a.floats.resize(a.shorts.size());
        sf_readf_short(f, a.shorts.data(), a.info.frames);
        sf_seek(f, 0, SEEK_SET);
        sf_readf_float(f, a.floats.data(), a.info.frames);
        if (const char* title = sf_get_string(f, SF_STR_TITLE)) a.title = title;
        sf_close(f);
    }
    return a;
}

// The latency the tool printed in its summary ("latency  N samples"); -1 when absent.
inline int printedLatency(const std::string& out) {
    std::smatch m;
    return std::regex_search(out, m, std::regex("latency +([0-9]+) samples")) ? std::stoi(m[1]) : -1;
}

// Preset and bank images, built field by field in either byte order.
class ImageWriter {
public:
    static constexpr uint32_t kUniqueId = 0x54587672;  // the plug-in's id, the images' magic

    explicit ImageWriter(bool bigEndian = false) : bigEndian_(bigEndian) {}
    ImageWriter& u8(uint8_t v) { return bytes_.push_back(static_cast<char>(v)), *this; }
    ImageWriter& u32(uint32_t v) {
        if (bigEndian_) v = __builtin_bswap32(v);
        return bytes_.append(reinterpret_cast<const char*>(&v), 4), *this;
    }
    ImageWriter& header(uint8_t type, uint32_t records, uint32_t current, uint32_t payload) {
        using namespace presets::image;
        u32(kUniqueId).u8(type).u32(kFormatVersion).u32(presets::kPresetSlots).u32(records).u32(current).u32(payload);
        for (size_t i = 0; i < kReservedBytes; ++i) u8(0);
        return *this;
    }
    ImageWriter& nameRecord(int32_t preset, const std::string& name) {
        using namespace presets::image;
        u32(kRecordName).u32(kNameBodyBytes).u32(static_cast<uint32_t>(preset));
        for (size_t i = 0; i < kNameBodyBytes; ++i)
            u8(i < name.size() && i < presets::kNameField ? static_cast<uint8_t>(name[i]) : 0);
        return *this;
    }
    ImageWriter& valueRecord(int32_t preset, uint32_t slot, float value) {
        using namespace presets::image;
        return u32(kRecordValue).u32(kValueBodyBytes).u32(static_cast<uint32_t>(preset)).u32(slot).u32(0).u32(0)
            .u32(std::bit_cast<uint32_t>(value)).u32(0);
    }
    void save(const fs::path& path) const { std::ofstream(path, std::ios::binary) << bytes_; }

private:
    bool bigEndian_;
    std::string bytes_;
};

// Each test gets an empty folder to work in and a folder of its own for the plug-in's per-user
// settings, so that nothing stored on this machine changes what the plug-in starts with.
class RenderTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "vireo-render-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir_ = pattern;
        fs::create_directory(configDir());
    }
    void TearDown() override { fs::remove_all(dir_, ignoredError_); }

    fs::path path(const std::string& name) const { return dir_ / name; }
    fs::path configDir() const { return dir_ / ".config"; }

    // The files in the working folder, by name, sorted.
    std::vector<std::string> listing() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_))
            if (entry.path() != configDir()) names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // A plug-in instance with this test's settings folder.
    std::unique_ptr<vsthost::LoadedPlugin> loadPlugin() {
        setenv("TYX_VIREO_CONFIG_DIR", configDir().c_str(), 1);
        auto plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH);
        if (plugin) plugin->open();
        return plugin;
    }

    // Runs vireo-render with `args` in the working folder; standard input is empty.
    RunResult run(const std::vector<std::string>& args) {
        std::string command = "cd";
        auto add = [&](const std::string& word) {
            command += " '";
            for (char c : word) command.append(c == '\'' ? "'\\''" : std::string(1, c));
            command += "'";
        };
        add(dir_);
        command += " &&";
        add(TYX_BUILD_DIR "/vireo-render");
        for (const std::string& word : args) add(word);
        setenv("TYX_VIREO_CONFIG_DIR", configDir().c_str(), 1);
        const int status = std::system((command + " </dev/null >.stdout 2>.stderr").c_str());
        RunResult r{WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(path(".stdout")), slurp(path(".stderr"))};
        fs::remove(path(".stdout"));
        fs::remove(path(".stderr"));
        return r;
    }

private:
    fs::path dir_;
    std::error_code ignoredError_;
};

}  // namespace rendertest
