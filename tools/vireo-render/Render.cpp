#include "Render.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "Errors.h"

namespace render {

volatile std::sig_atomic_t interrupted = 0;

namespace {

double toDb(double v) {
    return v > 0.0 ? 20.0 * std::log10(v) : -std::numeric_limits<double>::infinity();
}

// A one-line bar on standard error. It appears only once a render has run for half a second,
// so short files render without it.
class ProgressBar {
public:
    ProgressBar(bool enabled, int64_t total) : enabled_(enabled && total > 0), total_(total) {}

    void update(uint64_t done) {
        if (!enabled_) return;
        if (!shown_ && std::chrono::steady_clock::now() - start_ < std::chrono::milliseconds(500)) return;
        const int percent = static_cast<int>(std::min<uint64_t>(100, done * 100 / static_cast<uint64_t>(total_)));
        if (shown_ && percent == lastPercent_) return;
        shown_ = true;
        lastPercent_ = percent;
        constexpr int kWidth = 40;
        const int filled = percent * kWidth / 100;
        std::fprintf(stderr, "\r[%s%s] %3d%%", std::string(filled, '#').c_str(),
                     std::string(kWidth - filled, '.').c_str(), percent);
        std::fflush(stderr);
    }

    void finish() {
        if (!shown_) return;
        update(static_cast<uint64_t>(total_));
        std::fputc('\n', stderr);
    }

private:
    bool enabled_;
    int64_t total_;
    bool shown_ = false;
    int lastPercent_ = -1;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

template <typename Sample>
RenderResult run(vsthost::LoadedPlugin& plugin, SampleSource& source, SampleSink& sink, const RenderSettings& s) {
    const size_t block = static_cast<size_t>(s.block);
    const int channels = source.channels();
    const uint64_t latency = static_cast<uint64_t>(std::max(0, s.latency));

    // Hosts always pass as many buffers as the plug-in has pins; a mono track's second input is
    // silence (and reported unconnected), its second output is thrown away.
    std::vector<Sample> in[2], out[2];
    for (int c = 0; c < 2; ++c) {
        in[c].assign(block, Sample(0));
        out[c].assign(block, Sample(0));
    }
    Sample* inputs[2] = {in[0].data(), in[1].data()};
    Sample* outputs[2] = {out[0].data(), out[1].data()};
    std::vector<double> frameIn(block * channels), frameOut(block * channels);

    RenderResult result;
    const int64_t known = source.frames();
    ProgressBar progress(s.progress, known > 0 ? known + static_cast<int64_t>(latency) : 0);
    bool ended = false;
    uint64_t silenceLeft = latency;
    uint64_t dropLeft = s.keepLatency ? 0 : latency;
    uint64_t fed = 0;
    for (;;) {
        if (interrupted) throw RunError("interrupted; no output written");
        size_t frames = 0;
        if (!ended) {
            frames = source.read(frameIn.data(), block);
            if (frames < block) ended = true;
            for (size_t i = 0; i < frames; ++i)
                for (int c = 0; c < channels; ++c) {
                    const double v = frameIn[i * channels + c];
                    result.in.add(v);
                    in[c][i] = static_cast<Sample>(v);
                }
            result.framesIn += frames;
        }
        if (ended) {
            const size_t pad = static_cast<size_t>(std::min<uint64_t>(block - frames, silenceLeft));
            for (int c = 0; c < channels; ++c)
                std::fill(in[c].begin() + frames, in[c].begin() + frames + pad, Sample(0));
            silenceLeft -= pad;
            frames += pad;
        }
        if (frames == 0) break;

        plugin.process(inputs, outputs, static_cast<int>(frames));
        fed += frames;

        const size_t skip = static_cast<size_t>(std::min<uint64_t>(dropLeft, frames));
        dropLeft -= skip;
        const size_t keep = frames - skip;
        for (size_t i = 0; i < keep; ++i)
            for (int c = 0; c < channels; ++c) {
                const double v = static_cast<double>(out[c][skip + i]);
                result.out.add(v);
                frameOut[i * channels + c] = v;
            }
        if (keep > 0) sink.write(frameOut.data(), keep);
        result.framesOut += keep;
        progress.update(fed);
    }
    progress.finish();
    return result;
}

}  // namespace

double Levels::peakDb() const { return toDb(peak); }

double Levels::rmsDb() const { return samples ? toDb(std::sqrt(sumOfSquares / samples)) : toDb(0.0); }

RenderResult renderAudio(vsthost::LoadedPlugin& plugin, SampleSource& source, SampleSink& sink,
                         const RenderSettings& settings) {
    return settings.useDouble ? run<double>(plugin, source, sink, settings)
                              : run<float>(plugin, source, sink, settings);
}

}  // namespace render
