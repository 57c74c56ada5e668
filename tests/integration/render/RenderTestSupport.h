#pragma once
// Runs the built vireo-render as a subprocess in a private temporary folder, and makes and
// reads the audio, preset and bank files the tests hand it.

#include <gtest/gtest.h>
#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace rendertest {

namespace fs = std::filesystem;

struct RunResult {
    int exitCode = -1;
    std::string out;  // standard output
    std::string err;  // standard error
};

struct Audio {
    SF_INFO info{};
    std::vector<short> shorts;   // filled by readShorts
    std::vector<float> floats;   // filled by readFloats
};

// A 16-bit test signal: noise and a tone, with both full-scale extremes in it.
std::vector<short> testShorts(int frames, int channels, uint32_t seed = 1);
std::vector<float> testFloats(int frames, int channels, uint32_t seed = 1);

void writeShorts(const fs::path& path, int format, int rate, int channels, const std::vector<short>& samples);
void writeFloats(const fs::path& path, int format, int rate, int channels, const std::vector<float>& samples);
Audio readShorts(const fs::path& path);
Audio readFloats(const fs::path& path);
std::vector<unsigned char> fileBytes(const fs::path& path);

// The latency the tool printed in its summary ("latency  N samples"); -1 when absent.
int printedLatency(const std::string& out);

// Builds record images by hand, field by field, in either byte order.
class ImageWriter {
public:
    explicit ImageWriter(bool bigEndian = false) : bigEndian_(bigEndian) {}
    ImageWriter& u8(uint8_t v);
    ImageWriter& u32(uint32_t v);
    ImageWriter& f32(float v);
    ImageWriter& magic();  // the plug-in's unique ID, 'TXvr'
    ImageWriter& header(uint8_t type, uint32_t records, uint32_t current, uint32_t payload);
    ImageWriter& nameRecord(int32_t preset, const std::string& name);
    ImageWriter& valueRecord(int32_t preset, uint32_t slot, float value);
    const std::vector<unsigned char>& bytes() const { return bytes_; }
    void save(const fs::path& path) const;

private:
    bool bigEndian_;
    std::vector<unsigned char> bytes_;
};

constexpr uint32_t kNameRecordBytes = 12 + 156;
constexpr uint32_t kValueRecordBytes = 12 + 20;
constexpr int kSavedSlots = 85;

// Whether the built plug-in hands its bank to the host as a chunk yet.
bool pluginGivesChunk(const fs::path& configDir);

// Each test gets an empty folder to work in and a folder of its own for the plug-in's per-user
// settings, so that nothing stored on this machine changes what the plug-in starts with.
class RenderTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Runs vireo-render with `args` in dir().
    RunResult run(const std::vector<std::string>& args);
    fs::path dir() const { return dir_; }
    fs::path path(const std::string& name) const { return dir_ / name; }
    fs::path configDir() const { return dir_ / ".config"; }
    // The files in dir(), by name, sorted.
    std::vector<std::string> listing() const;

private:
    fs::path dir_;
};

}  // namespace rendertest
