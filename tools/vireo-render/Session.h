#pragma once
// One instance of the plug-in, loaded from its file through its entry point and set up as a
// host sets up an insert on a track: sample rate, block size, channel layout and precision,
// then the user's preset, bank and parameter choices.
//
// The plug-in publishes a single program to the host; its bank of presets travels in the
// chunk. Selecting a preset therefore goes through the chunk, as a host restoring a project
// would: read the chunk, set its current-preset field, hand it back.

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "PresetImage.h"
#include "host/VstHost.h"

namespace render {

struct SessionSetup {
    std::string pluginPath;
    int sampleRate = 48000;
    int block = 512;
    int channels = 2;
    bool useDouble = false;
};

class Session {
public:
    // Throws RunError when the plug-in cannot be loaded or cannot do what is asked of it.
    explicit Session(const SessionSetup& setup);
    ~Session();  // switches the effect off first if a run was cut short, then closes it
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    vsthost::LoadedPlugin& plugin() { return *plugin_; }

    // All of these throw RunError with a message for the user.
    void loadBankFile(const std::string& path);
    void selectPreset(const std::string& nameOrIndex);
    void loadPresetFile(const std::string& path);
    void setParameter(const std::string& name, float value);

    std::string currentPresetName() { return plugin_->programName(); }
    void printPresets(std::FILE* out);
    // The plug-in draws its editor for the current settings into a PNG file.
    void writeSnapshot(const std::string& path);
    // Opens the editor without a window (the analyzer is fed while it is open) and shows a page
    // of its plot; closed again by closeEditor or the session's end.
    void openEditor(int page);
    void closeEditor();
    void printParameters(std::FILE* out);

    // Switches the effect on for a run of process calls and returns the latency it reports then.
    int startProcessing();
    void stopProcessing();

private:
    int32_t uniqueId() const { return plugin_->effect()->uniqueID; }
    std::vector<std::string> presetNames();
    Bytes chunk(const std::string& purpose);
    void giveChunk(const Bytes& chunk, const std::string& what);

    std::unique_ptr<vsthost::LoadedPlugin> plugin_;
    bool processing_ = false;
};

}  // namespace render
