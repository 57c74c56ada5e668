// Pins the binary layout of our VST 2.4 declarations: every host has these offsets and
// numbers compiled in, so a moved field or a renumbered opcode breaks them all.

#include <gtest/gtest.h>

#include <cstddef>

#include "vst/aeffect.h"

TEST(AbiLayout, EffectRecordOffsets) {
    EXPECT_EQ(offsetof(AEffect, magic), 0u);
    EXPECT_EQ(offsetof(AEffect, dispatcher), 8u);
    EXPECT_EQ(offsetof(AEffect, process), 16u);
    EXPECT_EQ(offsetof(AEffect, setParameter), 24u);
    EXPECT_EQ(offsetof(AEffect, getParameter), 32u);
    EXPECT_EQ(offsetof(AEffect, numPrograms), 40u);
    EXPECT_EQ(offsetof(AEffect, numParams), 44u);
    EXPECT_EQ(offsetof(AEffect, numInputs), 48u);
    EXPECT_EQ(offsetof(AEffect, numOutputs), 52u);
    EXPECT_EQ(offsetof(AEffect, flags), 56u);
    EXPECT_EQ(offsetof(AEffect, resvd1), 64u);
    EXPECT_EQ(offsetof(AEffect, resvd2), 72u);
    EXPECT_EQ(offsetof(AEffect, initialDelay), 80u);
    EXPECT_EQ(offsetof(AEffect, realQualities), 84u);
    EXPECT_EQ(offsetof(AEffect, offQualities), 88u);
    EXPECT_EQ(offsetof(AEffect, ioRatio), 92u);
    EXPECT_EQ(offsetof(AEffect, object), 96u);
    EXPECT_EQ(offsetof(AEffect, user), 104u);
    EXPECT_EQ(offsetof(AEffect, uniqueID), 112u);
    EXPECT_EQ(offsetof(AEffect, version), 116u);
    EXPECT_EQ(offsetof(AEffect, processReplacing), 120u);
    EXPECT_EQ(offsetof(AEffect, processDoubleReplacing), 128u);
    EXPECT_EQ(offsetof(AEffect, future), 136u);
    EXPECT_EQ(sizeof(AEffect), 192u);
}

TEST(AbiLayout, PassedRecords) {
    EXPECT_EQ(offsetof(VstParameterProperties, stepFloat), 0u);
    EXPECT_EQ(offsetof(VstParameterProperties, smallStepFloat), 4u);
    EXPECT_EQ(offsetof(VstParameterProperties, largeStepFloat), 8u);
    EXPECT_EQ(offsetof(VstParameterProperties, label), 12u);
    EXPECT_EQ(offsetof(VstParameterProperties, flags), 76u);
    EXPECT_EQ(offsetof(VstParameterProperties, minInteger), 80u);
    EXPECT_EQ(offsetof(VstParameterProperties, maxInteger), 84u);
    EXPECT_EQ(offsetof(VstParameterProperties, stepInteger), 88u);
    EXPECT_EQ(offsetof(VstParameterProperties, largeStepInteger), 92u);
    EXPECT_EQ(offsetof(VstParameterProperties, shortLabel), 96u);
    EXPECT_EQ(offsetof(VstParameterProperties, displayIndex), 104u);
    EXPECT_EQ(offsetof(VstParameterProperties, category), 106u);
    EXPECT_EQ(offsetof(VstParameterProperties, numParametersInCategory), 108u);
    EXPECT_EQ(offsetof(VstParameterProperties, reserved), 110u);
    EXPECT_EQ(offsetof(VstParameterProperties, categoryLabel), 112u);
    EXPECT_EQ(offsetof(VstParameterProperties, future), 136u);
    EXPECT_EQ(sizeof(VstParameterProperties), 152u);

    EXPECT_EQ(offsetof(ERect, top), 0u);
    EXPECT_EQ(offsetof(ERect, left), 2u);
    EXPECT_EQ(offsetof(ERect, bottom), 4u);
    EXPECT_EQ(offsetof(ERect, right), 6u);
    EXPECT_EQ(sizeof(ERect), 8u);

    EXPECT_EQ(offsetof(VstSpeakerProperties, name), 16u);
    EXPECT_EQ(offsetof(VstSpeakerProperties, type), 80u);
    EXPECT_EQ(sizeof(VstSpeakerProperties), 112u);
    EXPECT_EQ(offsetof(VstSpeakerArrangement, numChannels), 4u);
    EXPECT_EQ(offsetof(VstSpeakerArrangement, speakers), 8u);
    EXPECT_EQ(offsetof(VstEvents, events), 16u);
}

TEST(AbiLayout, OpcodeAndFlagNumbers) {
    EXPECT_EQ(kEffectMagic, 0x56737450);
    EXPECT_EQ(effEditIdle, 19);
    EXPECT_EQ(effGetChunk, 23);
    EXPECT_EQ(effCanBeAutomated, 26);
    EXPECT_EQ(effGetProgramNameIndexed, 29);
    EXPECT_EQ(effGetPlugCategory, 35);
    EXPECT_EQ(effSetSpeakerArrangement, 42);
    EXPECT_EQ(effGetEffectName, 45);
    EXPECT_EQ(effCanDo, 51);
    EXPECT_EQ(effGetParameterProperties, 56);
    EXPECT_EQ(effGetVstVersion, 58);
    EXPECT_EQ(effEditKeyDown, 59);
    EXPECT_EQ(effSetProcessPrecision, 77);
    EXPECT_EQ(effGetNumMidiOutputChannels, 79);
    EXPECT_EQ(audioMasterPinConnected, 4);
    EXPECT_EQ(audioMasterIOChanged, 13);
    EXPECT_EQ(audioMasterUpdateDisplay, 42);
    EXPECT_EQ(audioMasterEndEdit, 44);
    EXPECT_EQ(effFlagsCanDoubleReplacing, 1 << 12);
    EXPECT_EQ(kVstParameterCanRamp, 1 << 6);
}
