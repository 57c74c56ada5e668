#pragma once
// The editor side of the VST 2.4 base classes: the plug-in's editor object answers the
// host's editor opcodes through these virtual operations.

#include "vst/aeffect.h"

class AudioEffect;

class AEffEditor {
public:
    explicit AEffEditor(AudioEffect* effect = nullptr) : effect(effect) {}
    virtual ~AEffEditor() = default;

    virtual AudioEffect* getEffect() { return effect; }
    virtual bool getRect(ERect** rect) {
        *rect = nullptr;
        return false;
    }
    virtual bool open(void* ptr) {
        systemWindow = ptr;
        return false;
    }
    virtual void close() { systemWindow = nullptr; }
    virtual bool isOpen() { return systemWindow != nullptr; }
    virtual void idle() {}
    virtual bool setKnobMode(VstInt32 /*val*/) { return false; }
    virtual bool onKeyDown(VstKeyCode& /*keyCode*/) { return false; }
    virtual bool onKeyUp(VstKeyCode& /*keyCode*/) { return false; }
    virtual bool onWheel(float /*distance*/) { return false; }

protected:
    AudioEffect* effect;
    void* systemWindow = nullptr;
};
