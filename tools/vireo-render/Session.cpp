#include "Session.h"

#include <cctype>
#include <fstream>
#include <iterator>

#include "Errors.h"
#include "plugin/VendorRequests.h"

namespace render {
namespace {

constexpr int kMostPresets = 128;  // asks for program names until the plug-in stops answering

std::string lower(const std::string& s) {
    std::string out;
    for (char ch : s) out += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    return out;
}

bool allDigits(const std::string& s) {
    if (s.empty() || s.size() > 6) return false;
    for (char ch : s)
        if (!std::isdigit(static_cast<unsigned char>(ch))) return false;
    return true;
}

Bytes readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw RunError("cannot open " + quoted(path));
    Bytes bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw RunError("cannot read " + quoted(path));
    return bytes;
}

}  // namespace

Session::Session(const SessionSetup& setup) {
    std::string error;
    plugin_ = vsthost::LoadedPlugin::load(setup.pluginPath, &error);
    if (!plugin_) throw RunError(error);
    const AEffect* e = plugin_->effect();
    if (e->numInputs != 2 || e->numOutputs != 2 || !(e->flags & effFlagsCanReplacing))
        throw RunError(quoted(setup.pluginPath) + " is not a stereo effect (" + std::to_string(e->numInputs) +
                       " inputs, " + std::to_string(e->numOutputs) + " outputs)");
    if (setup.useDouble && !plugin_->canProcessDouble())
        throw RunError(quoted(setup.pluginPath) + " does not process 64-bit samples; leave out --double");

    // What the plug-in may ask the host: the rate, the block size and, for a mono track, that
    // its second input and output are not connected.
    const bool stereo = setup.channels == 2;
    plugin_->setHostRate(static_cast<float>(setup.sampleRate));
    plugin_->setHostBlockSize(setup.block);
    plugin_->setPinsConnected(stereo, stereo);

    plugin_->open();
    plugin_->setSampleRate(static_cast<float>(setup.sampleRate));
    plugin_->setBlockSize(setup.block);
    plugin_->setSpeakerArrangement(setup.channels, setup.channels);
    plugin_->setProcessPrecision(setup.useDouble);
}

Session::~Session() {
    if (processing_) stopProcessing();
}

std::vector<std::string> Session::presetNames() {
    std::vector<std::string> names;
    for (int i = 0; i < kMostPresets; ++i) {
        bool ok = false;
        std::string name = plugin_->programNameIndexed(i, &ok);
        if (!ok) break;
        names.push_back(std::move(name));
    }
    return names;
}

Bytes Session::chunk(const std::string& purpose) {
    Bytes bytes = plugin_->getChunk(false);
    if (bytes.empty()) throw RunError("the plug-in gives the host no chunk, so " + purpose + " is not possible");
    return bytes;
}

void Session::giveChunk(const Bytes& bytes, const std::string& what) {
    if (plugin_->setChunk(bytes.data(), bytes.size(), false) < 0) throw RunError("the plug-in refused " + what);
}

void Session::loadBankFile(const std::string& path) {
    const PresetImage image = parseImage(readFile(path), uniqueId(), quoted(path));
    if (!image.bank) throw RunError(quoted(path) + " holds a single preset; load it with --preset-file");
    chunk("loading a bank");  // fails early, with the reason, when the plug-in has no chunk yet
    PresetImage loaded = image;
    // A bank file opens on its first preset, as the plug-in's own "Load bank" does.
    loaded.currentPreset = 0;
    giveChunk(buildChunk(loaded, uniqueId()), "the bank in " + quoted(path));
}

void Session::selectPreset(const std::string& nameOrIndex) {
    const std::vector<std::string> names = presetNames();
    if (names.empty()) throw RunError("the plug-in names no presets");
    int index = -1;
    if (allDigits(nameOrIndex)) {
        index = std::stoi(nameOrIndex);
        if (index >= static_cast<int>(names.size()))
            throw RunError("there is no preset " + nameOrIndex + "; the bank holds presets 0 to " +
                           std::to_string(names.size() - 1));
    } else {
        for (size_t i = 0; i < names.size() && index < 0; ++i)
            if (names[i] == nameOrIndex) index = static_cast<int>(i);
        for (size_t i = 0; i < names.size() && index < 0; ++i)
            if (lower(names[i]) == lower(nameOrIndex)) index = static_cast<int>(i);
        if (index < 0) throw RunError("unknown preset " + quoted(nameOrIndex) + " (--list-presets shows the bank)");
    }
    Bytes bytes = chunk("selecting a preset");
    setChunkCurrentPreset(bytes, uniqueId(), index);
    giveChunk(bytes, "the chunk that selects preset " + std::to_string(index));
    if (chunkCurrentPreset(chunk("selecting a preset"), uniqueId()) != index)
        throw RunError("the plug-in did not select preset " + std::to_string(index));
}

void Session::loadPresetFile(const std::string& path) {
    PresetImage image = parseImage(readFile(path), uniqueId(), quoted(path));
    if (image.bank) throw RunError(quoted(path) + " holds a bank; load it with --bank-file");
    // Handed over as a chunk, the image is read as a bank: its records land in the preset they
    // name, and the header's current preset is selected. Naming the current preset in both puts
    // the file's values into the current preset and keeps it selected, as loading a preset file
    // in the plug-in's editor does.
    const int32_t current = chunkCurrentPreset(chunk("loading a preset file"), uniqueId());
    image.currentPreset = current;
    for (ImageRecord& r : image.records) r.preset = current;
    giveChunk(buildChunk(image, uniqueId()), "the preset in " + quoted(path));
}

void Session::setParameter(const std::string& name, float value) {
    const int index = plugin_->findParameter(name);
    if (index < 0) throw RunError("unknown parameter " + quoted(name) + " (--list-params shows them)");
    plugin_->setParameter(index, value);
}

void Session::printPresets(std::FILE* out) {
    const std::vector<std::string> names = presetNames();
    int current = -1;
    const Bytes bytes = plugin_->getChunk(false);
    if (!bytes.empty()) {
        try {
            current = chunkCurrentPreset(bytes, uniqueId());
        } catch (const RunError&) {
            current = -1;
        }
    }
    if (current < 0) {
        const std::string name = plugin_->programName();
        for (size_t i = 0; i < names.size() && current < 0; ++i)
            if (names[i] == name) current = static_cast<int>(i);
    }
    for (size_t i = 0; i < names.size(); ++i)
        std::fprintf(out, "%c %2zu  %s\n", static_cast<int>(i) == current ? '*' : ' ', i, names[i].c_str());
}

void Session::printParameters(std::FILE* out) {
    for (int i = 0; i < plugin_->numParams(); ++i) {
        std::string text = plugin_->parameterDisplay(i);
        const std::string label = plugin_->parameterLabel(i);
        if (!label.empty()) text += " " + label;
        std::fprintf(out, "%3d  %-14s %-20s %.6f\n", i, plugin_->parameterName(i).c_str(), text.c_str(),
                     plugin_->getParameter(i));
    }
}

int Session::startProcessing() {
    // A clean start: whatever the settings changed on the way, the effect begins from silence.
    plugin_->suspend();
    plugin_->resume();
    plugin_->startProcess();
    processing_ = true;
    return plugin_->initialDelay();
}

void Session::stopProcessing() {
    plugin_->stopProcess();
    plugin_->suspend();
    processing_ = false;
}

void Session::openEditor(int page) {
    if (plugin_->dispatch(effVendorSpecific, vendor::kOffscreenEditorRequest, 1, nullptr) != 1 ||
        plugin_->dispatch(effVendorSpecific, vendor::kPlotPageRequest, page, nullptr) != 1)
        throw RunError("the plug-in cannot open its editor for a picture");
}

void Session::closeEditor() { plugin_->dispatch(effVendorSpecific, vendor::kOffscreenEditorRequest, 0, nullptr); }

void Session::writeSnapshot(const std::string& path) {
    if (plugin_->dispatch(effVendorSpecific, vendor::kSnapshotRequest, 0, const_cast<char*>(path.c_str())) != 1)
        throw RunError("cannot write the editor's picture to " + quoted(path));
}

}  // namespace render
