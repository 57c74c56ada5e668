// vireo-inspect: loads a VST 2.4 plug-in as a host does and prints what it publishes: its
// record, its names, every parameter with its text, and its programs.
//
//   vireo-inspect [PLUGIN.so]     (default: TyxVireo.so beside this program)

#include <cstdio>
#include <string>
#include <unistd.h>

#include "host/VstHost.h"

namespace {

std::string defaultPluginPath() {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) return "TyxVireo.so";
    std::string path(self, static_cast<size_t>(n));
    return path.substr(0, path.rfind('/') + 1) + "TyxVireo.so";
}

std::string fourCc(int32_t id) {
    std::string s;
    for (int shift = 24; shift >= 0; shift -= 8) s += static_cast<char>((id >> shift) & 0xFF);
    return s;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string path = argc > 1 ? argv[1] : defaultPluginPath();
    std::string error;
    auto plugin = vsthost::LoadedPlugin::load(path, &error);
    if (!plugin) {
        std::fprintf(stderr, "vireo-inspect: %s\n", error.c_str());
        return 1;
    }
    plugin->open();
    plugin->setSampleRate(48000.0f);
    plugin->setBlockSize(512);

    const AEffect* e = plugin->effect();
    std::printf("%s — %s (%s), vendor version 0x%x\n", plugin->effectName().c_str(), plugin->productString().c_str(),
                plugin->vendorString().c_str(), plugin->vendorVersion());
    std::printf("unique ID '%s' (0x%08x), version %d, category %d\n", fourCc(e->uniqueID).c_str(),
                static_cast<unsigned>(e->uniqueID), e->version, plugin->category());
    std::printf("%d in / %d out, %d program(s), %d parameters, flags 0x%x, latency %d samples\n", e->numInputs,
                e->numOutputs, e->numPrograms, e->numParams, static_cast<unsigned>(e->flags), e->initialDelay);
    std::printf("current program: \"%s\"\n\nParameters:\n", plugin->programName().c_str());
    for (int i = 0; i < e->numParams; ++i)
        std::printf("  %2d %-14s %-16s %-3s %.6f\n", i, plugin->parameterName(i).c_str(),
                    plugin->parameterDisplay(i).c_str(), plugin->parameterLabel(i).c_str(), plugin->getParameter(i));
    std::printf("\nPresets:\n");
    bool ok = true;
    for (int i = 0; ok; ++i) {
        const std::string name = plugin->programNameIndexed(i, &ok);
        if (ok) std::printf("  %2d %s\n", i, name.c_str());
    }
    return 0;
}
