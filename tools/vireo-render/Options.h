#pragma once
// The command line of vireo-render.

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace render {

struct Options {
    std::string input;   // empty: the built-in test signal
    std::string output;  // empty: derived from the input, or vireo-demo.wav
    std::string pluginPath;
    std::optional<std::string> preset;
    std::string presetFile;
    std::string bankFile;
    std::vector<std::pair<std::string, float>> sets;  // in the order given
    std::string format;
    std::string bits;
    int block = 512;
    bool useDouble = false;
    bool keepLatency = false;
    bool quiet = false;
    bool listPresets = false;
    bool listParams = false;
    std::string snapshot;  // write the editor as a PNG instead of rendering audio
    std::string renderSnapshot;  // write the editor as a PNG after rendering with it open
    int page = 0;                // the plot's page in either picture: 0 plot, 1 settings, 2 information
    bool help = false;
};

// Throws UsageError with a one-line reason.
Options parseOptions(int argc, char** argv);

extern const char* const kUsage;

}  // namespace render
