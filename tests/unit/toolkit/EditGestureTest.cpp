// A control's gesture reaches the host as an edit of the parameter its tag names, through the
// editor that listens to it.
#include <gtest/gtest.h>

#include "ToolkitSupport.h"
#include "gui/toolkit/CKickButton.h"
#include "presets/CPresetSystemEditor.h"
#include "vst/AudioEffectX.h"

namespace {

std::vector<std::pair<int, int>> hostCalls;  // opcode, index

VstIntPtr spyHost(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float) {
    if (opcode == audioMasterBeginEdit || opcode == audioMasterEndEdit) hostCalls.emplace_back(opcode, index);
    return 0;
}

struct SilentEffect : AudioEffectX {
    SilentEffect() : AudioEffectX(spyHost, 1, 94) {}
    void processReplacing(float**, float**, VstInt32) override {}
};

TEST(EditGesture, ParameterTagsReachTheHostAndCommandTagsDoNot) {
    SilentEffect effect;
    CPresetSystemEditor editor(&effect);
    CFrame frame(CRect(0, 0, 100, 20));
    for (int32_t tag : {0, 93, 94, 95, 1012, -1})
        frame.addView(new CKickButton(CRect(frame.getNbViews() * 10, 0, frame.getNbViews() * 10 + 10, 10), &editor, tag, 10, nullptr));
    hostCalls.clear();
    for (int i = 0; i < frame.getNbViews(); ++i) click(frame, i * 10 + 5, 5);
    EXPECT_EQ(hostCalls, (std::vector<std::pair<int, int>>{{audioMasterBeginEdit, 0}, {audioMasterEndEdit, 0},
                                                           {audioMasterBeginEdit, 93}, {audioMasterEndEdit, 93}}));
}

}  // namespace
