#include "vst/AEffGUIEditor.h"

#include "vst/AudioEffectX.h"

void AEffGUIEditor::beginEdit(VstInt32 index) {
    if (auto* fx = dynamic_cast<AudioEffectX*>(effect)) fx->beginEdit(index);
}

void AEffGUIEditor::endEdit(VstInt32 index) {
    if (auto* fx = dynamic_cast<AudioEffectX*>(effect)) fx->endEdit(index);
}
