// Pins the binary layout of our VST 2.4 declarations: every host has these offsets and
// numbers compiled in, so a moved field or a renumbered opcode breaks them all.

#include <gtest/gtest.h>

#include <cstddef>

#include "vst/aeffect.h"

#define AT(type, field, offset) EXPECT_EQ(offsetof(type, field), offset##u) << #type "::" #field

TEST(AbiLayout, EffectRecordOffsets) {
    AT(AEffect, magic, 0); AT(AEffect, dispatcher, 8); AT(AEffect, process, 16); AT(AEffect, setParameter, 24);
    AT(AEffect, getParameter, 32); AT(AEffect, numPrograms, 40); AT(AEffect, numParams, 44);
    AT(AEffect, numInputs, 48); AT(AEffect, numOutputs, 52); AT(AEffect, flags, 56); AT(AEffect, resvd1, 64);
    AT(AEffect, resvd2, 72); AT(AEffect, initialDelay, 80); AT(AEffect, realQualities, 84);
    AT(AEffect, offQualities, 88); AT(AEffect, ioRatio, 92); AT(AEffect, object, 96); AT(AEffect, user, 104);
    AT(AEffect, uniqueID, 112); AT(AEffect, version, 116); AT(AEffect, processReplacing, 120);
    AT(AEffect, processDoubleReplacing, 128); AT(AEffect, future, 136);
    EXPECT_EQ(sizeof(AEffect), 192u);
}

TEST(AbiLayout, PassedRecords) {
    using P = VstParameterProperties;
    AT(P, stepFloat, 0); AT(P, smallStepFloat, 4); AT(P, largeStepFloat, 8); AT(P, label, 12); AT(P, flags, 76);
    AT(P, minInteger, 80); AT(P, maxInteger, 84); AT(P, stepInteger, 88); AT(P, largeStepInteger, 92);
    AT(P, shortLabel, 96); AT(P, displayIndex, 104); AT(P, category, 106); AT(P, numParametersInCategory, 108);
    AT(P, reserved, 110); AT(P, categoryLabel, 112); AT(P, future, 136);
    EXPECT_EQ(sizeof(P), 152u);
    AT(ERect, top, 0); AT(ERect, left, 2); AT(ERect, bottom, 4); AT(ERect, right, 6);
    EXPECT_EQ(sizeof(ERect), 8u);
    AT(VstSpeakerProperties, name, 16); AT(VstSpeakerProperties, type, 80);
    EXPECT_EQ(sizeof(VstSpeakerProperties), 112u);
    AT(VstSpeakerArrangement, numChannels, 4); AT(VstSpeakerArrangement, speakers, 8); AT(VstEvents, events, 16);
}

TEST(AbiLayout, OpcodeAndFlagNumbers) {
    const int numbers[][2] = {
        {kEffectMagic, 0x56737450},          {effEditIdle, 19},
        {effGetChunk, 23},                   {effCanBeAutomated, 26},
        {effGetProgramNameIndexed, 29},      {effGetPlugCategory, 35},
        {effSetSpeakerArrangement, 42},      {effGetEffectName, 45},
        {effCanDo, 51},                      {effGetParameterProperties, 56},
        {effGetVstVersion, 58},              {effEditKeyDown, 59},
        {effSetProcessPrecision, 77},        {effGetNumMidiOutputChannels, 79},
        {audioMasterPinConnected, 4},        {audioMasterIOChanged, 13},
        {audioMasterUpdateDisplay, 42},      {audioMasterEndEdit, 44},
        {effFlagsCanDoubleReplacing, 1 << 12}, {kVstParameterCanRamp, 1 << 6},
    };
    for (const auto& [got, want] : numbers) EXPECT_EQ(got, want);
}
