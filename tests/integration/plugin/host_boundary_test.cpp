// What a host sees of the plug-in: its record, its answers, and the behaviour of the entry
// point itself.

#include <dlfcn.h>

#include <cstring>
#include <vector>

#include "PluginFixture.h"

using HostBoundary = LoadedPluginTest;

TEST_F(HostBoundary, PublishedRecord) {
    const AEffect* e = plugin->effect();
    EXPECT_EQ(e->magic, 0x56737450);
    EXPECT_EQ(e->uniqueID, 0x54587672);  // "TXvr"
    EXPECT_EQ(e->version, 2040);
    EXPECT_EQ(e->numPrograms, 1);
    EXPECT_EQ(e->numParams, 94);
    EXPECT_EQ(e->numInputs, 2);
    EXPECT_EQ(e->numOutputs, 2);
    EXPECT_EQ(e->flags, (1 << 0) | (1 << 4) | (1 << 5) | (1 << 12));
    EXPECT_EQ(e->ioRatio, 1.0f);
    EXPECT_EQ(e->resvd1, 0);
    EXPECT_EQ(e->resvd2, 0);
    EXPECT_NE(e->object, nullptr);
    EXPECT_NE(e->processReplacing, nullptr);
    EXPECT_NE(e->processDoubleReplacing, nullptr);
    for (char c : e->future) EXPECT_EQ(c, 0);
}

TEST_F(HostBoundary, Inquiries) {
    EXPECT_EQ(plugin->effectName(), "Tyx Vireo");
    EXPECT_EQ(plugin->productString(), "Linear-phase parametric equalizer");
    const std::string vendor = plugin->vendorString();
    EXPECT_FALSE(vendor.empty());
    EXPECT_LE(vendor.size(), 63u);
    EXPECT_EQ(plugin->vendorVersion(), 131076);
    EXPECT_EQ(plugin->category(), 4);
    EXPECT_EQ(plugin->dispatch(effGetVstVersion), 2400);
    EXPECT_EQ(plugin->dispatch(effGetTailSize), 0);
    EXPECT_EQ(plugin->dispatch(effSetProcessPrecision, 0, 0), 1);
    EXPECT_EQ(plugin->dispatch(effSetProcessPrecision, 0, 1), 1);

    EXPECT_EQ(plugin->canDo("receiveVstMidiEvent"), 1);
    EXPECT_EQ(plugin->canDo("receiveVstEvents"), 0);
    EXPECT_EQ(plugin->canDo("ReceiveVstMidiEvent"), 0);
    EXPECT_EQ(plugin->canDo("receiveVstMidiEvents"), 0);
    EXPECT_EQ(plugin->canDo(""), 0);

    // The host's own program list has one entry; the bank lives inside the plug-in.
    EXPECT_EQ(plugin->dispatch(effGetProgram), 0);
    plugin->dispatch(effSetProgram, 0, 5);
    EXPECT_EQ(plugin->dispatch(effGetProgram), 0);
    EXPECT_EQ(plugin->programName(), "Flat");

    // Keeps the 2-in/2-out layout whatever the host proposes.
    EXPECT_FALSE(plugin->setSpeakerArrangement(1, 1));
    EXPECT_FALSE(plugin->setSpeakerArrangement(2, 2));

    // MIDI events are accepted and ignored.
    VstEvents events{};
    EXPECT_EQ(plugin->dispatch(effProcessEvents, 0, 0, &events), 0);
}

TEST_F(HostBoundary, EditorReportsItsSizeButDoesNotOpenYet) {
    ERect* rect = nullptr;
    EXPECT_EQ(plugin->dispatch(effEditGetRect, 0, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->top, 0);
    EXPECT_EQ(rect->left, 0);
    EXPECT_EQ(rect->bottom, 509);
    EXPECT_EQ(rect->right, 750);
    EXPECT_EQ(plugin->dispatch(effEditOpen, 0, 0, nullptr), 0);
    plugin->dispatch(effEditIdle);
    plugin->dispatch(effEditClose);
}

TEST_F(HostBoundary, NullBuffersFromAHostAreRefusedNotDereferenced) {
    for (VstInt32 op : {effGetParamName, effGetParamDisplay, effGetParamLabel, effGetProgramName, effGetEffectName,
                        effGetVendorString, effGetProductString, effCanDo, effGetParameterProperties,
                        effGetChunk, effEditGetRect, effGetProgramNameIndexed})
        EXPECT_EQ(plugin->dispatch(op, 0, 0, nullptr), 0) << op;
}

namespace {

VstIntPtr refusingHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? 0 : 0;
}
VstIntPtr modernHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? 2400 : 0;
}

}  // namespace

TEST(EntryPoint, BothNamesAreOneFunctionAndAHostThatRefusesGetsNothing) {
    void* library = dlopen(TYX_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    using Entry = AEffect* (*)(audioMasterCallback);
    auto entry = reinterpret_cast<Entry>(dlsym(library, "VSTPluginMain"));
    auto legacy = reinterpret_cast<Entry>(dlsym(library, "main"));
    ASSERT_NE(entry, nullptr);
    ASSERT_NE(legacy, nullptr);

    EXPECT_EQ(entry(refusingHost), nullptr);
    EXPECT_EQ(legacy(refusingHost), nullptr);

    AEffect* effect = legacy(modernHost);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->uniqueID, 0x54587672);
    EXPECT_EQ(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f), 1);
    dlclose(library);
}
