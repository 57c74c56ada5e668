#include "host/VstHost.h"

#include <dlfcn.h>

#include <cstring>

namespace vsthost {
namespace {

// The instance being created: the plug-in may call back from inside its entry point, before
// the host has its AEffect to recognise it by.
thread_local LoadedPlugin* constructing = nullptr;

using EntryPoint = AEffect* (*)(audioMasterCallback);

// Generous text buffers: the interface gives no size, and hosts commonly pass 256 bytes.
constexpr size_t kTextBuffer = 256;

}  // namespace

std::unique_ptr<LoadedPlugin> LoadedPlugin::load(const std::string& path, std::string* error) {
    auto fail = [error](const std::string& why) {
        if (error) *error = why;
        return std::unique_ptr<LoadedPlugin>();
    };
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return fail(std::string("cannot load ") + path + ": " + dlerror());
    auto entry = reinterpret_cast<EntryPoint>(dlsym(library, "VSTPluginMain"));
    if (!entry) entry = reinterpret_cast<EntryPoint>(dlsym(library, "main"));
    if (!entry) {
        dlclose(library);
        return fail(path + " has no VST 2.4 entry point");
    }
    std::unique_ptr<LoadedPlugin> plugin(new LoadedPlugin);
    plugin->library_ = library;
    constructing = plugin.get();
    AEffect* effect = entry(&LoadedPlugin::callback);
    constructing = nullptr;
    if (!effect || effect->magic != kEffectMagic) return fail(path + " did not create an effect");
    effect->user = plugin.get();
    plugin->effect_ = effect;
    return plugin;
}

LoadedPlugin::~LoadedPlugin() {
    if (effect_) dispatch(effClose);
    if (library_) dlclose(library_);
}

VstIntPtr LoadedPlugin::callback(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                 float opt) {
    LoadedPlugin* host = (effect && effect->user) ? static_cast<LoadedPlugin*>(effect->user) : constructing;
    if (!host) return opcode == audioMasterVersion ? kVstVersion : 0;
    return host->answer(opcode, index, value, ptr, opt);
}

VstIntPtr LoadedPlugin::answer(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* /*ptr*/, float opt) {
    switch (opcode) {
        case audioMasterVersion: return kVstVersion;
        case audioMasterAutomate: log_.automations.push_back({index, opt}); return 0;
        case audioMasterBeginEdit: log_.beginEdits.push_back(index); return 1;
        case audioMasterEndEdit: log_.endEdits.push_back(index); return 1;
        case audioMasterUpdateDisplay: ++log_.updateDisplays; return 1;
        case audioMasterPinConnected: {
            // 0 means connected. Pin 0 is always there.
            const bool connected = index == 0 || (value == 0 ? secondInputConnected_ : secondOutputConnected_);
            return connected ? 0 : 1;
        }
        case audioMasterGetSampleRate: return static_cast<VstIntPtr>(hostRate_);
        case audioMasterGetBlockSize: return hostBlockSize_;
        default: return 0;
    }
}

VstIntPtr LoadedPlugin::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    AEffect* effect = effect_;
    if (opcode == effClose) effect_ = nullptr;  // the effect deletes itself
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
}

std::string LoadedPlugin::text(VstInt32 opcode, VstInt32 index) {
    char buffer[kTextBuffer] = {};
    dispatch(opcode, index, 0, buffer);
    return std::string(buffer, strnlen(buffer, sizeof buffer));
}

std::string LoadedPlugin::parameterName(int index) { return text(effGetParamName, index); }
std::string LoadedPlugin::parameterLabel(int index) { return text(effGetParamLabel, index); }
std::string LoadedPlugin::parameterDisplay(int index) { return text(effGetParamDisplay, index); }

std::string LoadedPlugin::parameterPreview(int index, float value) {
    char buffer[kTextBuffer] = {};
    const uint32_t magic = 0x44414531;
    std::memcpy(buffer, &magic, 4);
    std::memcpy(buffer + 4, &value, 4);
    dispatch(effGetParamDisplay, index, 0, buffer);
    return std::string(buffer, strnlen(buffer, sizeof buffer));
}

bool LoadedPlugin::parameterProperties(int index, VstParameterProperties& properties) {
    return dispatch(effGetParameterProperties, index, 0, &properties) != 0;
}

int LoadedPlugin::findParameter(const std::string& name) {
    for (int i = 0; i < numParams(); ++i)
        if (parameterName(i) == name) return i;
    return -1;
}

std::string LoadedPlugin::programName() { return text(effGetProgramName, 0); }

std::string LoadedPlugin::programNameIndexed(int index, bool* ok) {
    char buffer[kTextBuffer] = {};
    const bool answered = dispatch(effGetProgramNameIndexed, index, 0, buffer) != 0;
    if (ok) *ok = answered;
    return std::string(buffer, strnlen(buffer, sizeof buffer));
}

void LoadedPlugin::setProgramName(const std::string& name) {
    char buffer[kTextBuffer] = {};
    std::strncpy(buffer, name.c_str(), sizeof buffer - 1);
    dispatch(effSetProgramName, 0, 0, buffer);
}

std::vector<unsigned char> LoadedPlugin::getChunk(bool preset) {
    void* data = nullptr;
    const VstIntPtr size = dispatch(effGetChunk, preset ? 1 : 0, 0, &data);
    if (size <= 0 || !data) return {};
    const auto* bytes = static_cast<const unsigned char*>(data);
    return std::vector<unsigned char>(bytes, bytes + size);
}

VstIntPtr LoadedPlugin::setChunk(const void* data, size_t size, bool preset) {
    return dispatch(effSetChunk, preset ? 1 : 0, static_cast<VstIntPtr>(size), const_cast<void*>(data));
}

std::string LoadedPlugin::effectName() { return text(effGetEffectName, 0); }
std::string LoadedPlugin::vendorString() { return text(effGetVendorString, 0); }
std::string LoadedPlugin::productString() { return text(effGetProductString, 0); }

namespace {

// Arrangement and speaker type numbers of the interface: mono is arrangement 0 with the
// speaker M (0); stereo is arrangement 1 with L (1) and R (2); anything else is user-defined (-2).
void describeArrangement(VstSpeakerArrangement& a, int channels) {
    a.numChannels = channels;
    a.type = channels == 1 ? 0 : channels == 2 ? 1 : -2;
    static const char* const names[2][2] = {{"M", ""}, {"L", "R"}};
    if (channels < 1 || channels > 2) return;
    for (int c = 0; c < channels; ++c) {
        a.speakers[c].type = channels == 1 ? 0 : c + 1;
        std::strncpy(a.speakers[c].name, names[channels - 1][c], sizeof a.speakers[c].name - 1);
    }
}

}  // namespace

bool LoadedPlugin::setSpeakerArrangement(int inputChannels, int outputChannels) {
    VstSpeakerArrangement in{}, out{};
    describeArrangement(in, inputChannels);
    describeArrangement(out, outputChannels);
    return dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out) != 0;
}

}  // namespace vsthost
