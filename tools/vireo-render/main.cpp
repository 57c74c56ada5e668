// vireo-render: an offline host for the Tyx Vireo plug-in. It loads TyxVireo.so through its
// entry point, as a DAW does, and runs audio files (or a built-in test signal) through it.
// See Options.cpp for the command line.

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "AudioIo.h"
#include "Errors.h"
#include "Options.h"
#include "Render.h"
#include "Session.h"
#include "TestSignal.h"

namespace render {
namespace {

constexpr const char* kDemoOutput = "vireo-demo.wav";
// The plug-in runs at 5 to 200 kHz and quietly falls back to 44.1 kHz outside that range,
// which would filter the audio at the wrong frequencies.
constexpr int kLowestRate = 5000;
constexpr int kHighestRate = 200000;

std::string defaultPluginPath() {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) return "TyxVireo.so";
    const std::string path(self, static_cast<size_t>(n));
    return path.substr(0, path.rfind('/') + 1) + "TyxVireo.so";
}

std::string canonicalExtension(Container c) {
    switch (c) {
        case Container::Wav: return "wav";
        case Container::Aiff: return "aiff";
        case Container::Flac: return "flac";
        case Container::Ogg: return "ogg";
    }
    return "wav";
}

// INPUT-vireo.EXT beside the input; the extension follows --format when that changes the container.
std::string defaultOutputName(const std::string& input, Container inputContainer, const std::string& format) {
    const size_t slash = input.rfind('/');
    const size_t dot = input.rfind('.');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash) &&
                              dot != (slash == std::string::npos ? 0 : slash + 1);
    const std::string stem = hasExtension ? input.substr(0, dot) : input;
    std::string ext = hasExtension ? input.substr(dot + 1) : canonicalExtension(inputContainer);
    if (!format.empty()) {
        const Container wanted = *containerFromOption(format);
        if (containerFromExtension(input) != wanted) ext = canonicalExtension(wanted);
    }
    return stem + "-vireo." + ext;
}

void refuseOverwritingInput(const std::string& input, const std::string& output) {
    struct stat out{};
    if (stat(output.c_str(), &out) != 0) return;
    if (S_ISDIR(out.st_mode)) throw UsageError("OUTPUT " + quoted(output) + " is a directory");
    struct stat in{};
    if (!input.empty() && stat(input.c_str(), &in) == 0 && in.st_dev == out.st_dev && in.st_ino == out.st_ino)
        throw UsageError("OUTPUT " + quoted(output) + " is the input file; choose another name");
}

std::string decibels(double db) {
    if (!std::isfinite(db)) return "  -inf";
    char text[32];
    std::snprintf(text, sizeof text, "%6.2f", db);
    return text;
}

void printSummary(const std::string& source, const std::string& preset, const RenderResult& r, int latency,
                  int rate, bool keepLatency, const std::string& output, int channels, int format) {
    std::printf("vireo-render: %s\n", source.c_str());
    if (!preset.empty()) std::printf("  preset   \"%s\"\n", preset.c_str());
    std::printf("  input    peak %s dBFS   RMS %s dBFS\n", decibels(r.in.peakDb()).c_str(),
                decibels(r.in.rmsDb()).c_str());
    std::printf("  output   peak %s dBFS   RMS %s dBFS\n", decibels(r.out.peakDb()).c_str(),
                decibels(r.out.rmsDb()).c_str());
    std::printf("  latency  %d samples (%.2f ms), %s\n", latency, latency * 1000.0 / rate,
                keepLatency ? "kept in the output" : "removed from the output");
    std::printf("  wrote    %s (%d Hz %s, %s, %.2f s)\n", output.c_str(), rate, channels == 1 ? "mono" : "stereo",
                describeFormat(format).c_str(), static_cast<double>(r.framesOut) / rate);
}

int run(const Options& o) {
    const bool listing = o.listPresets || o.listParams || !o.snapshot.empty();
    const bool demo = o.input.empty();

    std::unique_ptr<InputFile> input;
    if (!demo) input = std::make_unique<InputFile>(o.input);
    const int rate = input ? input->sampleRate() : TestSignal::kRate;
    const int channels = input ? input->channels() : 2;
    if (rate < kLowestRate || rate > kHighestRate)
        throw RunError(quoted(o.input) + " is sampled at " + std::to_string(rate) +
                       " Hz; the plug-in works from 5000 to 200000 Hz");

    std::string outputPath;
    int outputFormat = 0;
    if (!listing) {
        if (demo && !o.format.empty())
            throw UsageError("the demo always writes " + std::string(kDemoOutput) + "; --format is for INPUT files");
        outputPath = demo ? kDemoOutput
                          : (o.output.empty() ? defaultOutputName(o.input, input->container(), o.format) : o.output);
        outputFormat = chooseOutputFormat(input.get(), o.format, o.bits, outputPath, channels, rate);
        refuseOverwritingInput(o.input, outputPath);
    }

    Session session({o.pluginPath.empty() ? defaultPluginPath() : o.pluginPath, rate, o.block, channels, o.useDouble});
    if (!o.bankFile.empty()) session.loadBankFile(o.bankFile);
    if (o.preset) session.selectPreset(*o.preset);
    if (!o.presetFile.empty()) session.loadPresetFile(o.presetFile);
    for (const auto& [name, value] : o.sets) session.setParameter(name, value);

    if (!o.snapshot.empty()) {
        session.openEditor(o.page);
        session.writeSnapshot(o.snapshot);
        session.closeEditor();
    }
    if (listing) {
        if (o.listPresets) session.printPresets(stdout);
        if (o.listPresets && o.listParams) std::printf("\n");
        if (o.listParams) session.printParameters(stdout);
        return 0;
    }

    OutputFile output(outputPath, outputFormat, channels, rate);
    if (input) output.copyTextFrom(input->handle());
    TestSignal signal;
    SampleSource& source = input ? static_cast<SampleSource&>(*input) : signal;

    RenderSettings settings;
    settings.block = o.block;
    settings.useDouble = o.useDouble;
    settings.keepLatency = o.keepLatency;
    settings.progress = !o.quiet && isatty(STDERR_FILENO);
    if (!o.renderSnapshot.empty()) session.openEditor(o.page);
    settings.latency = session.startProcessing();
    const RenderResult result = renderAudio(session.plugin(), source, output, settings);
    if (!o.renderSnapshot.empty()) {
        session.writeSnapshot(o.renderSnapshot);
        session.closeEditor();
    }
    session.stopProcessing();
    output.commit();

    if (!o.quiet)
        printSummary(demo ? TestSignal::description() : o.input, session.currentPresetName(), result,
                     settings.latency, rate, o.keepLatency, outputPath, channels, outputFormat);
    return 0;
}

void onSignal(int) { interrupted = 1; }

}  // namespace
}  // namespace render

int main(int argc, char** argv) {
    struct sigaction action{};
    action.sa_handler = render::onSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    try {
        const render::Options options = render::parseOptions(argc, argv);
        if (options.help) {
            std::fputs(render::kUsage, stdout);
            return 0;
        }
        return render::run(options);
    } catch (const render::UsageError& e) {
        std::fprintf(stderr, "vireo-render: %s (see --help)\n", e.what());
        return 2;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "vireo-render: %s\n", e.what());
        return 1;
    }
}
