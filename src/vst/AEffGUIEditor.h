#pragma once
// Editor base for toolkit-drawn editors: keeps the window rectangle the host asks for and
// the frame that the toolkit draws into (the toolkit itself lives above this layer).

#include "vst/AEffEditor.h"

class CFrame;

class AEffGUIEditor : public AEffEditor {
public:
    explicit AEffGUIEditor(AudioEffect* effect) : AEffEditor(effect) {}
    ~AEffGUIEditor() override = default;

    bool getRect(ERect** r) override {
        *r = &rect;
        return true;
    }
    bool open(void* ptr) override {
        systemWindow = ptr;
        return false;
    }
    void idle() override {}
    bool isOpen() override { return frame != nullptr; }

    virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}
    virtual void beginEdit(VstInt32 index);
    virtual void endEdit(VstInt32 index);

    CFrame* getFrame() const { return frame; }

protected:
    ERect rect{0, 0, 0, 0};
    CFrame* frame = nullptr;
};
