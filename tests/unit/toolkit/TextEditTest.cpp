// The in-frame text field: editing keys, and what the listener hears on Return, Escape and
// focus loss.
#include <gtest/gtest.h>

#include "ToolkitSupport.h"
#include "gui/toolkit/CTextEdit.h"

namespace {

using Calls = std::vector<SpyListener::Call>;

struct TextEditTest : testing::Test {
    CFrame frame{CRect(0, 0, 300, 40)};
    SpyListener spy;
    CTextEdit* field = new CTextEdit(CRect(10, 10, 130, 24), &spy, 1000, "Hello");
    void SetUp() override { frame.addView(field); }
    void keys(std::initializer_list<CKeyCode> sequence) {
        for (CKeyCode k : sequence) frame.onKeyDown(k);
    }
};

TEST_F(TextEditTest, ClickStartsEditingWithAllSelectedAndReturnReports) {
    CKeyCode x = character('x');
    EXPECT_EQ(frame.onKeyDown(x), -1);  // not editing yet
    click(frame, 20, 15);
    EXPECT_TRUE(field->isEditing());
    EXPECT_EQ(frame.getFocusView(), field);
    keys({character('B'), character('a'), character('s'), character('s'), virtualKey(VKEY_RETURN)});
    EXPECT_FALSE(field->isEditing());
    EXPECT_STREQ(field->getText(), "Bass");
    EXPECT_EQ(frame.getFocusView(), nullptr);
    EXPECT_EQ(spy.calls, (Calls{{"begin", 1000, 0}, {"changed", 1000, 0}, {"end", 1000, 0}}));
}

TEST_F(TextEditTest, EscapeKeepsTheOldTextAndReportsNothing) {
    click(frame, 20, 15);
    keys({character('Z'), virtualKey(VKEY_ESCAPE)});
    EXPECT_FALSE(field->isEditing());
    EXPECT_STREQ(field->getText(), "Hello");
    EXPECT_TRUE(spy.calls.empty());
}

TEST_F(TextEditTest, ClickElsewhereTakesTheText) {
    click(frame, 20, 15);
    keys({virtualKey(VKEY_END), character('!')});
    click(frame, 200, 30);
    EXPECT_STREQ(field->getText(), "Hello!");
    EXPECT_EQ(spy.changedValues().size(), 1u);
}

struct EditCase {
    const char* name;
    std::vector<CKeyCode> keys;
    const char* result;
};

class TextEditKeys : public TextEditTest, public testing::WithParamInterface<EditCase> {};

TEST_P(TextEditKeys, EditText) {
    click(frame, 20, 15);  // "Hello", all selected, cursor at the end
    for (CKeyCode k : GetParam().keys) frame.onKeyDown(k);
    EXPECT_EQ(field->getEditText(), GetParam().result);
}

const CKeyCode kLeft = virtualKey(VKEY_LEFT), kRight = virtualKey(VKEY_RIGHT), kHome = virtualKey(VKEY_HOME),
               kEnd = virtualKey(VKEY_END), kBack = virtualKey(VKEY_BACK), kDelete = virtualKey(VKEY_DELETE),
               kShiftLeft = virtualKey(VKEY_LEFT, MODIFIER_SHIFT), kShiftHome = virtualKey(VKEY_HOME, MODIFIER_SHIFT);

INSTANTIATE_TEST_SUITE_P(
    Toolkit, TextEditKeys,
    testing::Values(EditCase{"TypingReplacesTheSelection", {character('Q')}, "Q"},
                    EditCase{"BackspaceDeletesTheSelection", {kBack}, ""},
                    EditCase{"BackspaceAtTheEnd", {kEnd, kBack}, "Hell"},
                    EditCase{"DeleteAtTheStart", {kHome, kDelete}, "ello"},
                    EditCase{"BackspaceAtTheStartDoesNothing", {kHome, kBack}, "Hello"},
                    EditCase{"DeleteAtTheEndDoesNothing", {kEnd, kDelete}, "Hello"},
                    EditCase{"InsertInTheMiddle", {kHome, kRight, kRight, character('-')}, "He-llo"},
                    EditCase{"ShiftArrowsSelect", {kEnd, kLeft, kShiftLeft, kShiftLeft, character('X')}, "HeXo"},
                    EditCase{"ShiftHomeSelectsToTheStart", {kEnd, kLeft, kShiftHome, kDelete}, "o"},
                    EditCase{"CursorStopsAtTheEnds", {kHome, kLeft, kLeft, character('<'), kEnd, kRight, character('>')}, "<Hello>"},
                    EditCase{"SpaceKey", {kEnd, virtualKey(VKEY_SPACE), character('2')}, "Hello 2"},
                    EditCase{"ControlLettersAreNotTyped", {kEnd, CKeyCode{'s', 0, MODIFIER_CONTROL}}, "Hello"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(TextEditTest, LengthLimitRefusesLongerText) {
    field->setMaxLength(6);
    click(frame, 20, 15);
    keys({kEnd, character('1'), character('2'), virtualKey(VKEY_RETURN)});
    EXPECT_STREQ(field->getText(), "Hello1");
}

TEST_F(TextEditTest, ClickWhileEditingPlacesTheCursor) {
    click(frame, 20, 15);
    frame.idle();  // drawn: the field knows where its characters are
    click(frame, 11, 15);
    EXPECT_EQ(field->getCursor(), 0u);
    EXPECT_EQ(field->getSelectionAnchor(), 0u);
    click(frame, 129, 15, kLButton | kShift);
    EXPECT_EQ(field->getCursor(), 5u);
    EXPECT_EQ(field->getSelectionAnchor(), 0u);
}

TEST_F(TextEditTest, ClosingTheFrameWhileEditingReportsNothing) {
    auto* frame2 = new CFrame(CRect(0, 0, 100, 40));
    SpyListener spy2;
    frame2->addView(new CTextEdit(CRect(0, 0, 100, 20), &spy2, 1, "x"));
    click(*frame2, 5, 5);
    delete frame2;
    EXPECT_TRUE(spy2.calls.empty());
}

}  // namespace
