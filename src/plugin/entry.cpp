// The library's entry point: what a host calls after loading TyxVireo.so.

#include <new>

#include "plugin/Plugin.h"

// Never lets an exception reach the host: a plug-in that cannot be built is simply absent.
AudioEffect* createEffectInstance(audioMasterCallback audioMaster) {
    try {
        return new Plugin(audioMaster);
    } catch (...) {
        return nullptr;
    }
}

VST_EXPORT AEffect* VSTPluginMain(audioMasterCallback audioMaster) {
    if (!audioMaster || audioMaster(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0) return nullptr;
    AudioEffect* effect = createEffectInstance(audioMaster);
    return effect ? effect->getAeffect() : nullptr;
}

// Older Linux hosts look the entry point up under this name.
VST_EXPORT AEffect* main_plugin(audioMasterCallback audioMaster) __asm__("main");
VST_EXPORT AEffect* main_plugin(audioMasterCallback audioMaster) { return VSTPluginMain(audioMaster); }
