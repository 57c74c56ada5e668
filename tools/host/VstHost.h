#pragma once
// A small VST 2.4 host: loads a plug-in file with dlopen, creates the effect through its
// entry point with our own host callback, and wraps the dispatcher in typed calls. Tests and
// the command-line tools use it to talk to the plug-in exactly as a DAW does.

#include <memory>
#include <string>
#include <vector>

#include "vst/aeffect.h"

namespace vsthost {

// What the plug-in told the host through its callback.
struct HostLog {
    struct Automation {
        int index;
        float value;
    };
    std::vector<Automation> automations;
    std::vector<int> beginEdits;
    std::vector<int> endEdits;
    int updateDisplays = 0;

    void clear() { *this = HostLog{}; }
};

class LoadedPlugin {
public:
    // Null with a reason in error when the file can't be loaded or refuses to start.
    static std::unique_ptr<LoadedPlugin> load(const std::string& path, std::string* error = nullptr);
    ~LoadedPlugin();  // closes the effect and unloads the file

    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;

    AEffect* effect() const { return effect_; }
    // The delay the plug-in reports, as read from its record (hosts read it at resume).
    int initialDelay() const { return effect_->initialDelay; }
    bool canProcessDouble() const { return (effect_->flags & effFlagsCanDoubleReplacing) != 0; }
    HostLog& log() { return log_; }

    // Host answers the plug-in may ask for.
    void setPinsConnected(bool secondInput, bool secondOutput) {
        secondInputConnected_ = secondInput;
        secondOutputConnected_ = secondOutput;
    }
    void setHostRate(float rate) { hostRate_ = rate; }
    void setHostBlockSize(int size) { hostBlockSize_ = size; }

    VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                       float opt = 0.0f);

    // Life cycle, in the order hosts call it.
    void open() { dispatch(effOpen); }
    void setSampleRate(float rate) { dispatch(effSetSampleRate, 0, 0, nullptr, rate); }
    void setBlockSize(int size) { dispatch(effSetBlockSize, 0, size); }
    void resume() { dispatch(effMainsChanged, 0, 1); }
    void suspend() { dispatch(effMainsChanged, 0, 0); }
    // Around a run of process calls, after resume and before suspend.
    void startProcess() { dispatch(effStartProcess); }
    void stopProcess() { dispatch(effStopProcess); }
    // Tells the plug-in which of the two process calls will follow (before resume).
    void setProcessPrecision(bool sixtyFourBit) {
        dispatch(effSetProcessPrecision, 0, sixtyFourBit ? kVstProcessPrecision64 : kVstProcessPrecision32);
    }

    // Parameters.
    int numParams() const { return effect_->numParams; }
    float getParameter(int index) { return effect_->getParameter(effect_, index); }
    void setParameter(int index, float value) { effect_->setParameter(effect_, index, value); }
    std::string parameterName(int index);
    std::string parameterLabel(int index);
    std::string parameterDisplay(int index);
    // The display text of a value that is not set: the preview request hosts' editors use.
    std::string parameterPreview(int index, float value);
    bool canBeAutomated(int index) { return dispatch(effCanBeAutomated, index) != 0; }
    bool parameterProperties(int index, VstParameterProperties& properties);
    // Finds a parameter by its host name; -1 when none has it.
    int findParameter(const std::string& name);

    // Programs and chunks.
    std::string programName();
    std::string programNameIndexed(int index, bool* ok = nullptr);
    void setProgramName(const std::string& name);
    std::vector<unsigned char> getChunk(bool preset = false);
    VstIntPtr setChunk(const void* data, size_t size, bool preset = false);

    // Inquiries.
    std::string effectName();
    std::string vendorString();
    std::string productString();
    int vendorVersion() { return static_cast<int>(dispatch(effGetVendorVersion)); }
    int category() { return static_cast<int>(dispatch(effGetPlugCategory)); }
    int canDo(const char* text) { return static_cast<int>(dispatch(effCanDo, 0, 0, const_cast<char*>(text))); }
    // Mono (one channel) or stereo arrangements, with their speakers named as hosts do.
    bool setSpeakerArrangement(int inputChannels, int outputChannels);

    // Processing.
    void process(float** inputs, float** outputs, int frames) {
        effect_->processReplacing(effect_, inputs, outputs, frames);
    }
    void process(double** inputs, double** outputs, int frames) {
        effect_->processDoubleReplacing(effect_, inputs, outputs, frames);
    }

private:
    LoadedPlugin() = default;
    static VstIntPtr callback(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                              float opt);
    VstIntPtr answer(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);
    std::string text(VstInt32 opcode, VstInt32 index);

    void* library_ = nullptr;
    AEffect* effect_ = nullptr;
    HostLog log_;
    bool secondInputConnected_ = true;
    bool secondOutputConnected_ = true;
    float hostRate_ = 44100.0f;
    int hostBlockSize_ = 512;
};

}  // namespace vsthost
