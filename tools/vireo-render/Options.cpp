#include "Options.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <iterator>

#include "AudioIo.h"
#include "Errors.h"

namespace render {

const char* const kUsage =
    "usage: vireo-render [options] [INPUT] [OUTPUT]\n"
    "\n"
    "Runs an audio file through the Tyx Vireo plug-in, loaded as a host loads it. INPUT is a mono\n"
    "or stereo WAV, AIFF, FLAC or Ogg file; OUTPUT (default: INPUT-vireo with the same extension)\n"
    "gets the same container, sample format and rate. Without INPUT, a built-in test signal is\n"
    "rendered to vireo-demo.wav and summed up.\n"
    "\n"
    "Settings, applied in this order:\n"
    "  --bank-file X.tyb     load a bank file (its first preset is selected)\n"
    "  --preset NAME|INDEX   select a preset of the bank (factory or default bank)\n"
    "  --preset-file X.tyx   load a preset file into the current preset\n"
    "  --set NAME=VALUE      set a parameter by its host name to a value in 0..1 (repeatable)\n"
    "\n"
    "Processing:\n"
    "  --double              use the 64-bit process call\n"
    "  --block N             process in blocks of N frames (default 512)\n"
    "  --keep-latency        keep the plug-in's delay in the output (it is removed by default)\n"
    "  --format wav|aiff|flac|ogg   the output's container\n"
    "  --bits 8|16|24|32|float|double   the output's sample format\n"
    "  --plugin PATH         the plug-in file (default: TyxVireo.so beside this program)\n"
    "\n"
    "Other:\n"
    "  --list-presets        print the bank (* marks the current preset) and exit\n"
    "  --list-params         print every parameter with its text and value and exit\n"
    "  --snapshot FILE.png   write the editor as it looks with these settings and exit\n"
    "  --render-snapshot FILE.png   render with the editor open, then write it as it looks\n"
    "                        at the end (analyzer bars included)\n"
    "  --page plot|settings|info   the page the response plot shows in either picture\n"
    "  --quiet               no progress bar and no summary\n"
    "  --help                this text\n";

namespace {

int parsePage(const std::string& text) {
    static const char* const kPages[] = {"plot", "settings", "info"};
    for (int i = 0; i < 3; ++i)
        if (text == kPages[i]) return i;
    throw UsageError("unknown --page " + quoted(text) + "; use plot, settings or info");
}

int parseBlock(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || v < 1 || v > 65536)
        throw UsageError("--block wants a whole number of frames from 1 to 65536, not " + quoted(text));
    return static_cast<int>(v);
}

std::pair<std::string, float> parseSet(const std::string& text) {
    const size_t eq = text.rfind('=');
    if (eq == std::string::npos || eq == 0 || eq + 1 == text.size())
        throw UsageError("--set wants NAME=VALUE, not " + quoted(text));
    const std::string name = text.substr(0, eq);
    const std::string value = text.substr(eq + 1);
    char* end = nullptr;
    errno = 0;
    const double v = std::strtod(value.c_str(), &end);
    if (*end != '\0' || errno != 0 || !std::isfinite(v))
        throw UsageError("--set " + name + ": " + quoted(value) + " is not a number");
    if (v < 0.0 || v > 1.0)
        throw UsageError("--set " + name + ": the value " + value + " is outside 0..1 (values are normalized)");
    return {name, static_cast<float>(v)};
}

}  // namespace

Options parseOptions(int argc, char** argv) {
    Options o;
    std::vector<std::string> positional;
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
            positional.push_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        // --name=value and --name value are both accepted.
        std::string inlineValue;
        bool hasInline = false;
        if (const size_t eq = arg.find('='); arg.rfind("--", 0) == 0 && eq != std::string::npos) {
            inlineValue = arg.substr(eq + 1);
            arg = arg.substr(0, eq);
            hasInline = true;
        }
        auto value = [&]() -> std::string {
            if (hasInline) return inlineValue;
            if (i + 1 >= argc) throw UsageError(arg + " wants a value");
            return argv[++i];
        };
        auto flag = [&](bool& target) {
            if (hasInline) throw UsageError(arg + " takes no value");
            target = true;
        };
        if (arg == "--help" || arg == "-h") flag(o.help);
        else if (arg == "--plugin") o.pluginPath = value();
        else if (arg == "--preset") o.preset = value();
        else if (arg == "--preset-file") o.presetFile = value();
        else if (arg == "--bank-file") o.bankFile = value();
        else if (arg == "--set") o.sets.push_back(parseSet(value()));
        else if (arg == "--double") flag(o.useDouble);
        else if (arg == "--block") o.block = parseBlock(value());
        else if (arg == "--keep-latency") flag(o.keepLatency);
        else if (arg == "--format") o.format = value();
        else if (arg == "--bits") o.bits = value();
        else if (arg == "--quiet" || arg == "-q") flag(o.quiet);
        else if (arg == "--list-presets") flag(o.listPresets);
        else if (arg == "--list-params") flag(o.listParams);
        else if (arg == "--snapshot") o.snapshot = value();
        else if (arg == "--render-snapshot") o.renderSnapshot = value();
        else if (arg == "--page") o.page = parsePage(value());
        else throw UsageError("unknown option " + quoted(arg));
    }
    if (positional.size() > 2) throw UsageError("too many file names (at most INPUT and OUTPUT)");
    if (positional.size() > 0) o.input = positional[0];
    if (positional.size() > 1) o.output = positional[1];
    if (o.preset && o.preset->empty()) throw UsageError("--preset wants a name or an index");
    if (!o.format.empty() && !containerFromOption(o.format))
        throw UsageError("unknown --format " + quoted(o.format) + "; use wav, aiff, flac or ogg");
    static const char* const kBits[] = {"8", "16", "24", "32", "float", "double"};
    if (!o.bits.empty() && std::find(std::begin(kBits), std::end(kBits), o.bits) == std::end(kBits))
        throw UsageError("unknown --bits " + quoted(o.bits) + "; use 8, 16, 24, 32, float or double");
    return o;
}

}  // namespace render
