#include "vst/AudioEffectX.h"

#include "vst/AEffEditor.h"

VstIntPtr AudioEffectX::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    VstIntPtr v = 0;
    switch (opcode) {
        case effProcessEvents: v = ptr ? processEvents(static_cast<VstEvents*>(ptr)) : 0; break;
        case effCanBeAutomated: v = canParameterBeAutomated(index) ? 1 : 0; break;
        case effString2Parameter: v = string2parameter(index, static_cast<char*>(ptr)) ? 1 : 0; break;
        case effGetProgramNameIndexed:
            if (ptr) v = getProgramNameIndexed(static_cast<VstInt32>(value), index, static_cast<char*>(ptr)) ? 1 : 0;
            break;
        case effGetInputProperties:
            if (ptr) v = getInputProperties(index, static_cast<VstPinProperties*>(ptr)) ? 1 : 0;
            break;
        case effGetOutputProperties:
            if (ptr) v = getOutputProperties(index, static_cast<VstPinProperties*>(ptr)) ? 1 : 0;
            break;
        case effGetPlugCategory: v = getPlugCategory(); break;
        case effProcessVarIo: v = processVariableIo(ptr) ? 1 : 0; break;
        case effSetSpeakerArrangement:
            v = setSpeakerArrangement(reinterpret_cast<VstSpeakerArrangement*>(value),
                                      static_cast<VstSpeakerArrangement*>(ptr))
                    ? 1
                    : 0;
            break;
        case effGetSpeakerArrangement:
            if (value && ptr)
                v = getSpeakerArrangement(reinterpret_cast<VstSpeakerArrangement**>(value),
                                          static_cast<VstSpeakerArrangement**>(ptr))
                        ? 1
                        : 0;
            break;
        case effSetBypass: v = setBypass(value != 0) ? 1 : 0; break;
        case effGetEffectName:
            if (ptr) v = getEffectName(static_cast<char*>(ptr)) ? 1 : 0;
            break;
        case effGetVendorString:
            if (ptr) v = getVendorString(static_cast<char*>(ptr)) ? 1 : 0;
            break;
        case effGetProductString:
            if (ptr) v = getProductString(static_cast<char*>(ptr)) ? 1 : 0;
            break;
        case effGetVendorVersion: v = getVendorVersion(); break;
        case effVendorSpecific: v = vendorSpecific(index, value, ptr, opt); break;
        case effCanDo:
            if (ptr) v = canDo(static_cast<char*>(ptr));
            break;
        case effGetTailSize: v = getGetTailSize(); break;
        case effGetParameterProperties:
            if (ptr) v = getParameterProperties(index, static_cast<VstParameterProperties*>(ptr)) ? 1 : 0;
            break;
        case effGetVstVersion: v = getVstVersion(); break;
        case effEditKeyDown:
        case effEditKeyUp:
            if (editor) {
                VstKeyCode key{index, static_cast<unsigned char>(value), static_cast<unsigned char>(opt)};
                v = (opcode == effEditKeyDown ? editor->onKeyDown(key) : editor->onKeyUp(key)) ? 1 : 0;
            }
            break;
        case effSetEditKnobMode:
            if (editor) v = editor->setKnobMode(static_cast<VstInt32>(value)) ? 1 : 0;
            break;
        case effGetMidiProgramName:
        case effGetCurrentMidiProgram:
        case effGetMidiProgramCategory:
        case effHasMidiProgramsChanged:
        case effGetMidiKeyName:
        case effShellGetNextPlugin:
        case effOfflineNotify:
        case effOfflinePrepare:
        case effOfflineRun:
            break;
        case effBeginSetProgram: v = beginSetProgram(); break;
        case effEndSetProgram: v = endSetProgram(); break;
        case effStartProcess: v = startProcess(); break;
        case effStopProcess: v = stopProcess(); break;
        case effSetTotalSampleToProcess: v = value; break;
        case effSetPanLaw: v = setPanLaw(static_cast<VstInt32>(value), opt) ? 1 : 0; break;
        case effBeginLoadBank: v = beginLoadBank(ptr); break;
        case effBeginLoadProgram: v = beginLoadProgram(ptr); break;
        case effSetProcessPrecision: v = setProcessPrecision(static_cast<VstInt32>(value)) ? 1 : 0; break;
        case effGetNumMidiInputChannels: v = getNumMidiInputChannels(); break;
        case effGetNumMidiOutputChannels: v = getNumMidiOutputChannels(); break;
        default: v = AudioEffect::dispatcher(opcode, index, value, ptr, opt); break;
    }
    return v;
}

VstPlugCategory AudioEffectX::getPlugCategory() {
    return (cEffect.flags & effFlagsIsSynth) ? kPlugCategSynth : kPlugCategUnknown;
}

bool AudioEffectX::beginEdit(VstInt32 index) { return callHost(audioMasterBeginEdit, index) != 0; }

bool AudioEffectX::endEdit(VstInt32 index) { return callHost(audioMasterEndEdit, index) != 0; }

bool AudioEffectX::updateDisplay() { return callHost(audioMasterUpdateDisplay) != 0; }

bool AudioEffectX::ioChanged() { return callHost(audioMasterIOChanged) != 0; }

bool AudioEffectX::sizeWindow(VstInt32 width, VstInt32 height) {
    return callHost(audioMasterSizeWindow, width, height) != 0;
}
