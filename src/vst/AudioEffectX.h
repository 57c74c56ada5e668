#pragma once
// The extended effect class of VST 2.4: the remaining opcodes and their default answers.

#include "vst/AudioEffect.h"

class AudioEffectX : public AudioEffect {
public:
    AudioEffectX(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams)
        : AudioEffect(audioMaster, numPrograms, numParams) {}

    VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

    virtual VstInt32 processEvents(VstEvents* /*events*/) { return 0; }
    virtual bool canParameterBeAutomated(VstInt32 /*index*/) { return true; }
    virtual bool string2parameter(VstInt32 /*index*/, char* /*text*/) { return false; }
    virtual bool getProgramNameIndexed(VstInt32 /*category*/, VstInt32 /*index*/, char* /*text*/) { return false; }
    virtual bool getInputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) { return false; }
    virtual bool getOutputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) { return false; }
    virtual VstPlugCategory getPlugCategory();
    virtual bool processVariableIo(void* /*varIo*/) { return false; }
    virtual bool setSpeakerArrangement(VstSpeakerArrangement* /*in*/, VstSpeakerArrangement* /*out*/) { return false; }
    virtual bool getSpeakerArrangement(VstSpeakerArrangement** in, VstSpeakerArrangement** out) {
        *in = nullptr;
        *out = nullptr;
        return false;
    }
    virtual bool setBypass(bool /*onOff*/) { return false; }
    virtual bool getEffectName(char* /*name*/) { return false; }
    virtual bool getVendorString(char* /*text*/) { return false; }
    virtual bool getProductString(char* /*text*/) { return false; }
    virtual VstInt32 getVendorVersion() { return 0; }
    virtual VstIntPtr vendorSpecific(VstInt32, VstIntPtr, void*, float) { return 0; }
    virtual VstInt32 canDo(char* /*text*/) { return 0; }
    virtual VstInt32 getGetTailSize() { return 0; }
    virtual bool getParameterProperties(VstInt32 /*index*/, VstParameterProperties* /*p*/) { return false; }
    virtual VstInt32 getVstVersion() { return kVstVersion; }
    virtual VstInt32 beginSetProgram() { return 0; }
    virtual VstInt32 endSetProgram() { return 0; }
    virtual VstInt32 startProcess() { return 0; }
    virtual VstInt32 stopProcess() { return 0; }
    virtual bool setPanLaw(VstInt32 /*type*/, float /*value*/) { return false; }
    virtual VstInt32 beginLoadBank(void* /*patch*/) { return 0; }
    virtual VstInt32 beginLoadProgram(void* /*patch*/) { return 0; }
    virtual bool setProcessPrecision(VstInt32 /*precision*/) { return false; }
    virtual VstInt32 getNumMidiInputChannels() { return 0; }
    virtual VstInt32 getNumMidiOutputChannels() { return 0; }

    // Host communication of the extended interface.
    virtual bool beginEdit(VstInt32 index);
    virtual bool endEdit(VstInt32 index);
    virtual bool updateDisplay();
    virtual bool ioChanged();
    virtual bool sizeWindow(VstInt32 width, VstInt32 height);
};
