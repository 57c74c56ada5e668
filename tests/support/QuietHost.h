#pragma once
// The smallest host a test can hand the plug-in object directly: it answers the version query
// and nothing else.

#include "vst/aeffect.h"

inline VstIntPtr quietHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}
