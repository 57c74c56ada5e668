#pragma once
// The base effect class of the VST 2.4 interface: owns the AEffect record that the host
// sees, routes the host's opcodes to virtual operations, and talks back through the host
// callback. The default answers are the ones hosts expect from any VST 2.4 plug-in.

#include "vst/aeffect.h"

class AEffEditor;

class AudioEffect {
public:
    AudioEffect(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams);
    virtual ~AudioEffect();

    AEffect* getAeffect() { return &cEffect; }
    static AudioEffect* fromAeffect(AEffect* e) { return e ? static_cast<AudioEffect*>(e->object) : nullptr; }

    virtual VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

    // Life cycle.
    virtual void open() {}
    virtual void close() {}
    virtual void suspend() {}
    virtual void resume() {}

    // Programs.
    virtual void setProgram(VstInt32 program) { curProgram = program; }
    virtual VstInt32 getProgram() { return curProgram; }
    virtual void setProgramName(char* /*name*/) {}
    virtual void getProgramName(char* name) { *name = 0; }
    virtual VstInt32 getChunk(void** /*data*/, bool /*isPreset*/ = false) { return 0; }
    virtual VstInt32 setChunk(void* /*data*/, VstInt32 /*byteSize*/, bool /*isPreset*/ = false) { return 0; }

    // Parameters.
    virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}
    virtual float getParameter(VstInt32 /*index*/) { return 0.0f; }
    virtual void setParameterAutomated(VstInt32 index, float value);
    virtual void getParameterLabel(VstInt32 /*index*/, char* label) { *label = 0; }
    virtual void getParameterDisplay(VstInt32 /*index*/, char* text) { *text = 0; }
    virtual void getParameterName(VstInt32 /*index*/, char* text) { *text = 0; }

    // Processing.
    virtual void setSampleRate(float sampleRate) { this->sampleRate = sampleRate; }
    virtual void setBlockSize(VstInt32 blockSize) { this->blockSize = blockSize; }
    virtual void processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) = 0;
    virtual void processDoubleReplacing(double** /*inputs*/, double** /*outputs*/, VstInt32 /*sampleFrames*/) {}

    // Setup, as the constructor of a derived effect uses it.
    virtual void setUniqueID(VstInt32 id) { cEffect.uniqueID = id; }
    virtual void setNumInputs(VstInt32 inputs) { cEffect.numInputs = inputs; }
    virtual void setNumOutputs(VstInt32 outputs) { cEffect.numOutputs = outputs; }
    virtual void canProcessReplacing(bool state = true);
    virtual void canDoubleReplacing(bool state = true);
    virtual void programsAreChunks(bool state = true);
    virtual void setInitialDelay(VstInt32 delay) { cEffect.initialDelay = delay; }

    // Editor.
    virtual void setEditor(AEffEditor* editor);
    virtual AEffEditor* getEditor() { return editor; }

    // Host communication.
    virtual VstInt32 getMasterVersion();
    virtual VstInt32 getCurrentUniqueId();
    virtual void masterIdle();
    virtual bool isInputConnected(VstInt32 input);
    virtual bool isOutputConnected(VstInt32 output);

    float getSampleRate() const { return sampleRate; }
    VstInt32 getBlockSize() const { return blockSize; }

    // Writes value with eight characters in all (sign, integer digits, point, then as many
    // fraction digits as fill the eight), as hosts have long shown such values; at most maxLen
    // characters and a NUL are written. Magnitudes too large for eight characters give "Huge!".
    virtual void float2string(float value, char* text, VstInt32 maxLen);

protected:
    float sampleRate = 44100.0f;
    AEffEditor* editor = nullptr;
    audioMasterCallback audioMaster;
    VstInt32 numPrograms;
    VstInt32 numParams;
    VstInt32 curProgram = 0;
    VstInt32 blockSize = 1024;
    AEffect cEffect;

    VstIntPtr callHost(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                       float opt = 0.0f);
};

// Defined by the plug-in: allocates and constructs its effect object.
AudioEffect* createEffectInstance(audioMasterCallback audioMaster);
