#include "RenderTestSupport.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <regex>

#include "host/VstHost.h"

namespace rendertest {

namespace {

std::string slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

SNDFILE* openForWriting(const fs::path& path, int format, int rate, int channels) {
    SF_INFO info{};
    info.format = format;
    info.samplerate = rate;
    info.channels = channels;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    EXPECT_NE(f, nullptr) << path << ": " << sf_strerror(nullptr);
    return f;
}

}  // namespace

std::vector<short> testShorts(int frames, int channels, uint32_t seed) {
    std::vector<short> s(static_cast<size_t>(frames) * channels);
    for (size_t i = 0; i < s.size(); ++i) {
        seed = seed * 1664525u + 1013904223u;
        const double tone = 12000.0 * std::sin(0.05 * static_cast<double>(i / channels));
        const double noise = static_cast<double>(static_cast<int32_t>(seed) >> 19);  // about ±4096
        s[i] = static_cast<short>(std::lround(tone + noise));
    }
    if (s.size() > 4) {
        s[1] = 32767;
        s[2] = -32768;
    }
    return s;
}

std::vector<float> testFloats(int frames, int channels, uint32_t seed) {
    std::vector<float> f;
    for (short v : testShorts(frames, channels, seed)) f.push_back(static_cast<float>(v) / 32768.0f * 0.9f);
    return f;
}

void writeShorts(const fs::path& path, int format, int rate, int channels, const std::vector<short>& samples) {
    SNDFILE* f = openForWriting(path, format, rate, channels);
    if (!f) return;
    sf_writef_short(f, samples.data(), static_cast<sf_count_t>(samples.size() / channels));
    sf_close(f);
}

void writeFloats(const fs::path& path, int format, int rate, int channels, const std::vector<float>& samples) {
    SNDFILE* f = openForWriting(path, format, rate, channels);
    if (!f) return;
    sf_writef_float(f, samples.data(), static_cast<sf_count_t>(samples.size() / channels));
    sf_close(f);
}

Audio readShorts(const fs::path& path) {
    Audio a;
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &a.info);
    EXPECT_NE(f, nullptr) << path << ": " << sf_strerror(nullptr);
    if (!f) return a;
    a.shorts.resize(static_cast<size_t>(a.info.frames) * a.info.channels);
    sf_readf_short(f, a.shorts.data(), a.info.frames);
    sf_close(f);
    return a;
}

Audio readFloats(const fs::path& path) {
    Audio a;
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &a.info);
    EXPECT_NE(f, nullptr) << path << ": " << sf_strerror(nullptr);
    if (!f) return a;
    a.floats.resize(static_cast<size_t>(a.info.frames) * a.info.channels);
    sf_readf_float(f, a.floats.data(), a.info.frames);
    sf_close(f);
    return a;
}

std::vector<unsigned char> fileBytes(const fs::path& path) {
    const std::string s = slurp(path);
    return std::vector<unsigned char>(s.begin(), s.end());
}

int printedLatency(const std::string& out) {
    std::smatch m;
    static const std::regex line("latency +([0-9]+) samples");
    return std::regex_search(out, m, line) ? std::stoi(m[1]) : -1;
}

// ---------------------------------------------------------------------------------------------

ImageWriter& ImageWriter::u8(uint8_t v) {
    bytes_.push_back(v);
    return *this;
}

ImageWriter& ImageWriter::u32(uint32_t v) {
    if (bigEndian_) v = __builtin_bswap32(v);
    unsigned char b[4];
    std::memcpy(b, &v, 4);
    bytes_.insert(bytes_.end(), b, b + 4);
    return *this;
}

ImageWriter& ImageWriter::f32(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    return u32(bits);
}

ImageWriter& ImageWriter::magic() { return u32(0x54587672); }

ImageWriter& ImageWriter::header(uint8_t type, uint32_t records, uint32_t current, uint32_t payload) {
    magic().u8(type).u32(0x02000000).u32(94).u32(records).u32(current).u32(payload);
    for (int i = 0; i < 4; ++i) u32(0);
    return *this;
}

ImageWriter& ImageWriter::nameRecord(int32_t preset, const std::string& name) {
    u32(0).u32(156).u32(static_cast<uint32_t>(preset));
    for (size_t i = 0; i < 156; ++i) u8(i < name.size() && i < 24 ? static_cast<uint8_t>(name[i]) : 0);
    return *this;
}

ImageWriter& ImageWriter::valueRecord(int32_t preset, uint32_t slot, float value) {
    return u32(1).u32(20).u32(static_cast<uint32_t>(preset)).u32(slot).u32(0).u32(0).f32(value).u32(0);
}

void ImageWriter::save(const fs::path& path) const {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes_.data()), static_cast<std::streamsize>(bytes_.size()));
}

bool pluginGivesChunk(const fs::path& configDir) {
    setenv("TYX_VIREO_CONFIG_DIR", configDir.c_str(), 1);
    auto plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH);
    if (!plugin) return false;
    plugin->open();
    return !plugin->getChunk().empty();
}

// ---------------------------------------------------------------------------------------------

void RenderTest::SetUp() {
    std::string pattern = (fs::temp_directory_path() / "vireo-render-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    dir_ = pattern;
    fs::create_directory(configDir());
}

void RenderTest::TearDown() {
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
}

std::vector<std::string> RenderTest::listing() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir_))
        if (entry.path() != configDir()) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

RunResult RenderTest::run(const std::vector<std::string>& args) {
    const fs::path outFile = dir_ / ".stdout";
    const fs::path errFile = dir_ / ".stderr";
    const std::string tool = TYX_BUILD_DIR "/vireo-render";
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(tool.c_str()));
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);

    const pid_t pid = fork();
    if (pid == 0) {
        // The child: its own folder, its own per-user settings, output into two files.
        if (chdir(dir_.c_str()) != 0) _exit(126);
        setenv("TYX_VIREO_CONFIG_DIR", configDir().c_str(), 1);
        const int in = open("/dev/null", O_RDONLY);
        const int out = open(outFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int err = open(errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(in, 0);
        dup2(out, 1);
        dup2(err, 2);
        execv(tool.c_str(), argv.data());
        _exit(127);
    }
    RunResult r;
    int status = 0;
    if (pid > 0 && waitpid(pid, &status, 0) == pid)
        r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    r.out = slurp(outFile);
    r.err = slurp(errFile);
    fs::remove(outFile);
    fs::remove(errFile);
    return r;
}

}  // namespace rendertest
