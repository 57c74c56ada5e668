#include "vst/AudioEffect.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "vst/AEffEditor.h"

namespace {

VstIntPtr dispatchEffect(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    AudioEffect* effect = AudioEffect::fromAeffect(e);
    if (!effect) return 0;
    // effClose deletes the object: nothing may touch it afterwards.
    return effect->dispatcher(opcode, index, value, ptr, opt);
}

void processReplacingEntry(AEffect* e, float** inputs, float** outputs, VstInt32 frames) {
    if (AudioEffect* effect = AudioEffect::fromAeffect(e)) effect->processReplacing(inputs, outputs, frames);
}

void processDoubleReplacingEntry(AEffect* e, double** inputs, double** outputs, VstInt32 frames) {
    if (AudioEffect* effect = AudioEffect::fromAeffect(e)) effect->processDoubleReplacing(inputs, outputs, frames);
}

void setParameterEntry(AEffect* e, VstInt32 index, float value) {
    if (AudioEffect* effect = AudioEffect::fromAeffect(e)) effect->setParameter(index, value);
}

float getParameterEntry(AEffect* e, VstInt32 index) {
    AudioEffect* effect = AudioEffect::fromAeffect(e);
    return effect ? effect->getParameter(index) : 0.0f;
}

// Opcodes whose answer is written through ptr: a host that passes no buffer gets 0 instead
// of a crash.
bool needsPointer(VstInt32 opcode) {
    switch (opcode) {
        case effSetProgramName:
        case effGetProgramName:
        case effGetParamLabel:
        case effGetParamDisplay:
        case effGetParamName:
        case effEditGetRect:
        case effGetChunk:
        case effSetChunk:
            return true;
        default:
            return false;
    }
}

}  // namespace

AudioEffect::AudioEffect(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams)
    : audioMaster(audioMaster), numPrograms(numPrograms), numParams(numParams) {
    std::memset(&cEffect, 0, sizeof cEffect);
    cEffect.magic = kEffectMagic;
    cEffect.dispatcher = dispatchEffect;
    // The old accumulating call is served by the replacing one; hosts of this age are rare.
    cEffect.process = processReplacingEntry;
    cEffect.setParameter = setParameterEntry;
    cEffect.getParameter = getParameterEntry;
    cEffect.numPrograms = numPrograms;
    cEffect.numParams = numParams;
    cEffect.numInputs = 1;
    cEffect.numOutputs = 2;
    cEffect.ioRatio = 1.0f;
    cEffect.object = this;
    cEffect.uniqueID = fourCharCode('N', 'o', 'E', 'f');
    cEffect.version = 1;
    cEffect.processReplacing = processReplacingEntry;
    cEffect.processDoubleReplacing = processDoubleReplacingEntry;
}

AudioEffect::~AudioEffect() { delete editor; }

VstIntPtr AudioEffect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    if (needsPointer(opcode) && !ptr) return 0;
    VstIntPtr v = 0;
    switch (opcode) {
        case effOpen: open(); break;
        case effClose:
            close();
            delete this;
            return 1;
        case effSetProgram:
            if (value >= 0 && value < numPrograms) setProgram(static_cast<VstInt32>(value));
            break;
        case effGetProgram: v = getProgram(); break;
        case effSetProgramName: setProgramName(static_cast<char*>(ptr)); break;
        case effGetProgramName: getProgramName(static_cast<char*>(ptr)); break;
        case effGetParamLabel: getParameterLabel(index, static_cast<char*>(ptr)); break;
        case effGetParamDisplay: getParameterDisplay(index, static_cast<char*>(ptr)); break;
        case effGetParamName: getParameterName(index, static_cast<char*>(ptr)); break;
        case effSetSampleRate: setSampleRate(opt); break;
        case effSetBlockSize: setBlockSize(static_cast<VstInt32>(value)); break;
        case effMainsChanged:
            if (!value) suspend();
            else resume();
            break;
        case effEditGetRect:
            if (editor) v = editor->getRect(static_cast<ERect**>(ptr)) ? 1 : 0;
            break;
        case effEditOpen:
            if (editor) v = editor->open(ptr) ? 1 : 0;
            break;
        case effEditClose:
            if (editor) editor->close();
            break;
        case effEditIdle:
            if (editor) editor->idle();
            break;
        case effGetChunk: v = getChunk(static_cast<void**>(ptr), index != 0); break;
        case effSetChunk: v = setChunk(ptr, static_cast<VstInt32>(value), index != 0); break;
        default: break;
    }
    return v;
}

VstIntPtr AudioEffect::callHost(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return audioMaster ? audioMaster(&cEffect, opcode, index, value, ptr, opt) : 0;
}

void AudioEffect::setParameterAutomated(VstInt32 index, float value) {
    setParameter(index, value);
    callHost(audioMasterAutomate, index, 0, nullptr, value);
}

void AudioEffect::canProcessReplacing(bool state) {
    if (state) cEffect.flags |= effFlagsCanReplacing;
    else cEffect.flags &= ~effFlagsCanReplacing;
}

void AudioEffect::canDoubleReplacing(bool state) {
    if (state) cEffect.flags |= effFlagsCanDoubleReplacing;
    else cEffect.flags &= ~effFlagsCanDoubleReplacing;
}

void AudioEffect::programsAreChunks(bool state) {
    if (state) cEffect.flags |= effFlagsProgramChunks;
    else cEffect.flags &= ~effFlagsProgramChunks;
}

void AudioEffect::setEditor(AEffEditor* e) {
    editor = e;
    if (editor) cEffect.flags |= effFlagsHasEditor;
    else cEffect.flags &= ~effFlagsHasEditor;
}

VstInt32 AudioEffect::getMasterVersion() {
    const VstIntPtr version = callHost(audioMasterVersion);
    return version ? static_cast<VstInt32>(version) : 1;  // hosts that answer 0 predate the question
}

VstInt32 AudioEffect::getCurrentUniqueId() { return static_cast<VstInt32>(callHost(audioMasterCurrentId)); }

void AudioEffect::masterIdle() { callHost(audioMasterIdle); }

// The host answers 0 when the pin IS connected.
bool AudioEffect::isInputConnected(VstInt32 input) { return callHost(audioMasterPinConnected, input, 0) == 0; }

bool AudioEffect::isOutputConnected(VstInt32 output) { return callHost(audioMasterPinConnected, output, 1) == 0; }

void AudioEffect::float2string(float value, char* text, VstInt32 maxLen) {
    constexpr int kWidth = 8;
    const double v = value;
    char buffer[48];
    if (std::isnan(v) || v > 99999999.0 || v < -9999999.0) {
        std::snprintf(buffer, sizeof buffer, "Huge!");
    } else {
        double magnitude = std::fabs(v);
        const bool negative = v < 0.0;
        int integerDigits = 1;
        for (double p = 10.0; magnitude >= p && integerDigits < 9; p *= 10.0) ++integerDigits;
        int decimals = kWidth - (negative ? 1 : 0) - integerDigits - 1;
        if (decimals < 0) decimals = 0;
        int n = std::snprintf(buffer, sizeof buffer, "%.*f", decimals, v);
        // Rounding may carry into a new integer digit (9.9999999 -> 10.000000): keep eight.
        if (n > kWidth && decimals > 0) n = std::snprintf(buffer, sizeof buffer, "%.*f", decimals - 1, v);
        if (decimals == 0 && n < kWidth) std::snprintf(buffer + n, sizeof buffer - n, ".");
        if (std::strcmp(buffer, "-0.000000") == 0) std::snprintf(buffer, sizeof buffer, "0.000000");
    }
    if (maxLen <= 0) return;
    std::snprintf(text, static_cast<size_t>(maxLen) + 1, "%s", buffer);
}
