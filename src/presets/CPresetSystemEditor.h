#pragma once
// The editor side of the preset system: the preset strip's owner and the place where the
// stored defaults are restored when the plug-in starts.

#include "gui/toolkit/CControlListener.h"
#include "vst/AEffGUIEditor.h"

class CPresetSystemEditor : public AEffGUIEditor, public CControlListener {
public:
    explicit CPresetSystemEditor(AudioEffect* effect) : AEffGUIEditor(effect) {}
    ~CPresetSystemEditor() override = default;

    void valueChanged(CControl* /*control*/) override {}

    // The current preset was renamed: the name display and the preset menu follow.
    virtual void showPresetName(const char* /*name*/) {}

    // Called once while the plug-in is constructed, after its editor object exists: brings back
    // what the user stored as defaults for new instances.
    virtual void restoreStartupDefaults() {}
};
