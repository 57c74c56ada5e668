// Tyx Vireo against a peer equalizer on this machine: both plug-in files loaded as a host loads
// them (tools/host), given the same eight bell bands and the same stereo noise, and timed in
// alternating rounds so that both see the same machine load.
//
//   bench_peers [--vireo PATH] [--peer PATH] [--rounds R] [--seconds S]
//
// Per row: real-time factor per core (seconds of audio per second of this thread's CPU time),
// median over R rounds of S seconds of audio each, and the latency each plug-in reports. The
// peer is LSP's Parametric Equalizer x16 Stereo (Debian package lsp-plugins-vst), in its FIR
// mode against our linear-phase paths and its IIR mode against minimum phase; it is driven
// only through its parameters as a host would. Without it, Tyx Vireo is timed alone.
// scripts/bench-peers.sh installs the package, builds and runs this.

#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/VstHost.h"

namespace {

using vsthost::LoadedPlugin;

constexpr int kRate = 48000;
constexpr int kBands = 8;
constexpr double kBandHz[kBands] = {45.0, 120.0, 330.0, 900.0, 2200.0, 4700.0, 9000.0, 14500.0};
constexpr double kBandDb[kBands] = {-3.0, 4.5, -3.0, 4.5, -3.0, 4.5, -3.0, 4.5};
constexpr double kBandQ[kBands] = {0.7, 0.8, 0.9, 1.0, 1.0, 1.1, 1.2, 1.2};
constexpr double kPeakingOn = 3.5 / 14.0;  // the centre of band type step 3, peaking, switched on
const char* const kPeerPath = "/usr/lib/vst/lsp-plugins/para-equalizer-x16-stereo.so";

struct Row {
    const char* path;  // the Vireo path, as the table names it
    double linPhase, resolution, fat;
    bool peerFir;
    int block;
};

const Row kRows[] = {
    {"linear x1, Resolution low", 1, 0.0, 0, true, 64},   {"linear x1, Resolution low", 1, 0.0, 0, true, 128},
    {"linear x1, Resolution low", 1, 0.0, 0, true, 256},  {"linear x1, Resolution low", 1, 0.0, 0, true, 512},
    {"linear x1, Resolution low", 1, 0.0, 0, true, 1024}, {"linear x1, Resolution low", 1, 0.0, 0, true, 2048},
    {"linear x1, Resolution mid", 1, 0.5, 0, true, 512},  {"linear x1, Resolution high", 1, 1.0, 0, true, 512},
    {"linear x2 (FAT), Resolution low", 1, 0.0, 1, true, 512},
    {"minimum x1", 0, 0.0, 0, false, 512},
};

double threadSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// The number a parameter's display text starts with; "k" after it means thousands.
double displayedNumber(LoadedPlugin& p, int index) {
    const std::string text = p.parameterDisplay(index);
    char* end = nullptr;
    const double v = std::strtod(text.c_str(), &end);
    while (end && *end == ' ') ++end;
    return end && *end == 'k' ? 1000.0 * v : v;
}

// Sets a parameter whose displayed number rises with its value to show `target`, by bisection.
bool setDisplayed(LoadedPlugin& p, const std::string& name, double target) {
    const int index = p.findParameter(name);
    if (index < 0) return false;
    float lo = 0.0f, hi = 1.0f;
    for (int i = 0; i < 20; ++i) {
        const float mid = 0.5f * (lo + hi);
        p.setParameter(index, mid);
        (displayedNumber(p, index) < target ? lo : hi) = mid;
    }
    p.setParameter(index, hi);
    return true;
}

// Sets a parameter to the first value whose display text starts with `text`.
bool setShown(LoadedPlugin& p, const std::string& name, const char* text) {
    const int index = p.findParameter(name);
    if (index < 0) return false;
    for (int k = 0; k <= 1000; ++k) {
        p.setParameter(index, k / 1000.0f);
        if (p.parameterDisplay(index).rfind(text, 0) == 0) return true;
    }
    return false;
}

bool setValue(LoadedPlugin& p, const std::string& name, double value) {
    const int index = p.findParameter(name);
    if (index >= 0) p.setParameter(index, static_cast<float>(value));
    return index >= 0;
}

bool configureVireo(LoadedPlugin& p, const Row& row) {
    bool ok = setValue(p, "LinPhase", row.linPhase) && setValue(p, "Resolution", row.resolution) &&
              setValue(p, "FAT", row.fat);
    for (int b = 0; b < kBands; ++b)
        for (const char* side : {"", "R"}) {
            const std::string n = "FLT" + std::to_string(b + 1);
            const std::string r = *side ? " R" : "";
            ok = ok && setValue(p, n + " Type" + side, kPeakingOn) && setDisplayed(p, n + " Freq" + r, kBandHz[b]) &&
                 setDisplayed(p, n + " Gain" + r, kBandDb[b]) && setDisplayed(p, n + " Q" + r, kBandQ[b]);
        }
    return ok;
}

bool configurePeer(LoadedPlugin& p, const Row& row) {
    bool ok = setShown(p, "mode", row.peerFir ? "FIR" : "IIR");
    for (int b = 0; b < kBands; ++b) {
        const std::string k = std::to_string(b);
        ok = ok && setShown(p, "ft_" + k, "Bell") && setDisplayed(p, "f_" + k, kBandHz[b]) &&
             setDisplayed(p, "g_" + k, kBandDb[b]) && setDisplayed(p, "q_" + k, kBandQ[b]);
    }
    return ok;
}

// One plug-in instance running a row: the same noise in, its own outputs.
struct Player {
    std::unique_ptr<LoadedPlugin> plugin;
    std::vector<float> out[2];

    bool start(const std::string& path, const Row& row, bool peer) {
        std::string error;
        plugin = LoadedPlugin::load(path, &error);
        if (!plugin) return std::fprintf(stderr, "%s: %s\n", path.c_str(), error.c_str()), false;
        plugin->setHostRate(kRate);
        plugin->setHostBlockSize(row.block);
        plugin->open();
        plugin->setSampleRate(kRate);
        plugin->setBlockSize(row.block);
        plugin->setProcessPrecision(false);
        if (!(peer ? configurePeer(*plugin, row) : configureVireo(*plugin, row)))
            return std::fprintf(stderr, "%s: a parameter was not found\n", path.c_str()), false;
        plugin->resume();
        plugin->startProcess();
        for (auto& o : out) o.assign(row.block, 0.0f);
        return true;
    }
    // Seconds of audio per second of CPU time over `frames` frames of the noise.
    double play(std::vector<float> (&noise)[2], int block, long frames) {
        float* in[2] = {noise[0].data(), noise[1].data()};
        float* o[2] = {out[0].data(), out[1].data()};
        const size_t length = noise[0].size();
        size_t at = 0;
        const double start = threadSeconds();
        for (long done = 0; done < frames; done += block) {
            if (at + block > length) at = 0;
            float* inAt[2] = {in[0] + at, in[1] + at};
            plugin->process(inAt, o, block);
            at += block;
        }
        return static_cast<double>(frames) / kRate / (threadSeconds() - start);
    }
};

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    std::string vireo = (std::filesystem::path(argv[0]).parent_path() / "TyxVireo.so").string();
    std::string peer = kPeerPath;
    int rounds = 5;
    double seconds = 2.0;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string flag = argv[i];
        if (flag == "--vireo") vireo = argv[i + 1];
        else if (flag == "--peer") peer = argv[i + 1];
        else if (flag == "--rounds") rounds = std::max(1, std::atoi(argv[i + 1]));
        else if (flag == "--seconds") seconds = std::max(0.1, std::atof(argv[i + 1]));
        else return std::fprintf(stderr, "unknown option %s\n", argv[i]), 2;
    }
    const bool withPeer = std::filesystem::exists(peer);
    if (!withPeer)
        std::printf("peer not found at %s (Debian package lsp-plugins-vst): timing Tyx Vireo alone\n", peer.c_str());

    std::vector<float> noise[2];
    std::mt19937 rng(1);
    std::uniform_real_distribution<float> u(-0.25f, 0.25f);
    for (auto& channel : noise) {
        channel.resize(kRate);
        for (float& v : channel) v = u(rng);
    }

    std::printf("%d Hz, float, %d rounds of %.1f s, median real-time factor per core\n", kRate, rounds, seconds);
    std::printf("%-33s %6s %9s %9s %8s %9s %9s\n", "Tyx Vireo path", "block", "Vireo", "peer", "ratio", "Vireo lat",
                "peer lat");
    for (const Row& row : kRows) {
        Player us, them;
        if (!us.start(vireo, row, false)) return 1;
        if (withPeer && !them.start(peer, row, true)) return 1;
        const long frames = static_cast<long>(seconds * kRate);
        us.play(noise, row.block, kRate);  // warm-up: kernels built, caches filled
        if (withPeer) them.play(noise, row.block, kRate);
        std::vector<double> ours, theirs;
        for (int r = 0; r < rounds; ++r) {
            ours.push_back(us.play(noise, row.block, frames));
            if (withPeer) theirs.push_back(them.play(noise, row.block, frames));
        }
        const double a = median(ours);
        if (withPeer) {
            const double b = median(theirs);
            std::printf("%-33s %6d %9.0f %9.0f %8.2f %9d %9d  (peer %s)\n", row.path, row.block, a, b, a / b,
                        us.plugin->initialDelay(), them.plugin->initialDelay(), row.peerFir ? "FIR" : "IIR");
        } else {
            std::printf("%-33s %6d %9.0f %9s %8s %9d %9s\n", row.path, row.block, a, "-", "-", us.plugin->initialDelay(), "-");
        }
        std::fflush(stdout);
    }
    return 0;
}
