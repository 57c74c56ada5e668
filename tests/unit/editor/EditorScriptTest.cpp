// The editor opened off screen and driven by mouse and key events against its frame; every
// outcome is read back through the plug-in's parameters, its bank and the user's store.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "EditorScriptFixture.h"
#include "gui/toolkit/CMessageBox.h"
#include "presets/StoredValues.h"
#include "unit/presets/PresetTestSupport.h"
#include "unit/toolkit/FakePrograms.h"

namespace {

class EditorScript : public EditorScriptFixture {
protected:
    void key(int32_t character, uint8_t virt = 0, uint8_t modifier = 0) {
        VstKeyCode code{character, virt, modifier};
        editor().onKeyDown(code);
    }
    bool stored(std::string_view name) { return editor().userStore().readBinary(name).has_value(); }
};

// Centres of the controls the scripts use.
constexpr CPoint kRockerLeft(345, 500), kRockerRight(365, 500);
constexpr CPoint kDefaultPreset(144, 500);
constexpr CPoint kLoadPreset(174, 500);
constexpr CPoint kNameField(256, 501);
constexpr CPoint kResetFrequencies(38, 314);

// Channel values that select the left side, the right side and both.
struct Sides {
    float channel;
    bool left, right;
};
constexpr Sides kSideCases[] = {{0.0f, true, false}, {0.5f, false, true}, {1.0f, true, true}};

}  // namespace

TEST_F(EditorScript, OpenUntilCloseAndClosedEditorIgnoresParameters) {
    EXPECT_TRUE(editor().isOpen());
    editor().close();
    EXPECT_FALSE(editor().isOpen());
    EXPECT_EQ(editor().getFrame(), nullptr);
    const float before = param(params::kOutput);
    editor().setParameter(params::kPower, 0.0f);
    editor().idle();
    VstKeyCode k{'a', 0, 0};
    EXPECT_FALSE(editor().onKeyDown(k));
    EXPECT_EQ(param(params::kOutput), before);
    EXPECT_TRUE(editor().openOffscreen());  // and it opens again
}

TEST_F(EditorScript, ResetFrequenciesTouchesOnlyTheSelectedSides) {
    for (const Sides& c : kSideCases) {
        p().setParameter(params::kChannel, c.channel);
        for (int i = params::kFreq; i < params::kQ; ++i) p().setParameter(i, 0.01f);
        click(kResetFrequencies);
        EXPECT_NEAR(param(params::kFreq + 4), c.left ? 0.566323f : 0.01f, 1e-6) << c.channel;
        EXPECT_NEAR(param(params::kFreqR + 7), c.right ? 0.958354f : 0.01f, 1e-6) << c.channel;
    }
}

TEST_F(EditorScript, RockerStopsAtBothEndsOfTheBank) {
    p().selectPreset(20);
    click(kRockerRight);
    EXPECT_EQ(p().getCurrentPreset(), 20);
    click(kRockerLeft);
    EXPECT_EQ(p().getCurrentPreset(), 19);
    p().selectPreset(0);
    click(kRockerLeft);
    EXPECT_EQ(p().getCurrentPreset(), 0);
    click(kRockerRight);
    EXPECT_EQ(p().getCurrentPreset(), 1);
}

TEST_F(EditorScript, DefaultPresetStoresOnDoubleClickAndClearsOnCtrlDoubleClick) {
    const auto name = presets::stored::kDefaultPreset;
    click(kDefaultPreset);
    EXPECT_FALSE(stored(name)) << "a single click does nothing";
    click(kDefaultPreset, kLButton | kDoubleClick);
    EXPECT_TRUE(stored(name));
    click(kDefaultPreset, kLButton | kDoubleClick | kControl);
    EXPECT_FALSE(stored(name));
}

TEST_F(EditorScript, RenamingInTheNameFieldRenamesTheProgram) {
    click(kNameField);
    for (char c : std::string("Mastering")) key(c);
    key(0, VKEY_RETURN);
    char name[64] = {};
    p().getProgramName(name);
    EXPECT_STREQ(name, "Mastering");
}

TEST_F(EditorScript, RightClickOnLoadPresetAsksForTheEndianReversedDialog) {
    // Magic in the machine's order, every other field reversed: only the reversed dialog reads it.
    imagebytes::Bytes mixed = imagebytes::presetImage(true, "Mixed", {{params::kOutput, 0.3f}});
    std::memcpy(mixed.data.data(), "\x72\x76\x58\x54", 4);
    const std::string file = testing::TempDir() + "reversed.tyx";
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(mixed.ptr()), static_cast<std::streamsize>(mixed.size()));
    p().setParameter(params::kOutput, 0.9f);

    FakePrograms fakes;
    fakes.add("zenity", "printf '%s\\n' \"$@\" > \"" + fakes.file("args") + "\"\necho '" + file + "'");
    click(kLoadPreset, kRButton);
    ASSERT_TRUE(idleUntil(frame(), [&] { return param(params::kOutput) != 0.9f; }));
    EXPECT_FLOAT_EQ(param(params::kOutput), 0.3f);
    std::ifstream args(fakes.file("args"));
    const std::string text((std::istreambuf_iterator<char>(args)), {});
    EXPECT_NE(text.find("Load preset (endian-reversed)"), std::string::npos) << text;
    std::filesystem::remove(file);
}

TEST_F(EditorScript, ManualButtonReportsWhyTheManualDidNotOpen) {
    constexpr CPoint kManual(734, 500);
    struct Case {
        const char* manualPath;  // null: none stored
        const char* opener;      // the stand-in xdg-open's script
        const char* text;
        const char* caption;
    } cases[] = {
        {nullptr, "exit 0", "Could not open user manual", ""},
        {"/usr/share/doc/tyx/manual.pdf", "exit 3", "Make sure Acrobat Reader is installed", "Could not open manual file"},
        {"/usr/share/doc/tyx/manual.pdf", "exit 2", "Could not open user manual", ""},
    };
    for (const Case& c : cases) {
        FakePrograms fakes(true);
        fakes.add("xdg-open", c.opener);
        if (c.manualPath) editor().userStore().writeString(presets::stored::kManualPath, c.manualPath);
        click(kManual);
        ASSERT_TRUE(idleUntil(frame(), [&] { return frame().getModalView() != nullptr; })) << c.text;
        auto* box = dynamic_cast<CMessageBox*>(frame().getModalView());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->getText(), c.text);
        EXPECT_EQ(box->getCaption(), c.caption);
        frame().setModalView(nullptr);
    }
}

TEST_F(EditorScript, MemoryButtonsStoreAndRecallTheCurrentPreset) {
    constexpr CPoint kStoreA(396, 501), kRecallA(429, 501), kStoreB(460, 501), kRecallB(494, 501);
    p().setParameter(params::kOutput, 0.2f);
    click(kStoreA);
    p().setParameter(params::kOutput, 0.7f);
    click(kStoreB);
    p().setParameter(params::kOutput, 0.5f);
    click(kRecallA);
    EXPECT_FLOAT_EQ(param(params::kOutput), 0.2f);
    click(kRecallB);
    EXPECT_FLOAT_EQ(param(params::kOutput), 0.7f);
}

TEST_F(EditorScript, KeyboardFocusButtonKeepsTheOptionForTheNextSession) {
    constexpr CPoint kKeyboardFocus(715, 500);
    click(kKeyboardFocus);
    EXPECT_EQ(editor().userStore().readDword(presets::stored::kKeyboardFocus), 1u);
    EXPECT_TRUE(editor().readKeyboardFocus());
    click(kKeyboardFocus);
    EXPECT_EQ(editor().userStore().readDword(presets::stored::kKeyboardFocus), 0u);
}
