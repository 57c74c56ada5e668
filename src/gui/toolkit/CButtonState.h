#pragma once
// What a mouse event carries: the buttons held, the modifier keys, a double click; and what a
// view answers to it. Keys arrive as the host delivers them: a character or a virtual key.

#include <cstdint>

enum CButton : int32_t {
    kLButton = 1 << 0,
    kMButton = 1 << 1,
    kRButton = 1 << 2,
    kShift = 1 << 3,
    kControl = 1 << 4,
    kAlt = 1 << 5,
    kApple = 1 << 6,
    kDoubleClick = 1 << 7,
};

class CButtonState {
public:
    static constexpr int32_t kButtons = kLButton | kMButton | kRButton;
    static constexpr int32_t kModifiers = kShift | kControl | kAlt | kApple;

    CButtonState(int32_t state = 0) : state(state) {}

    int32_t getButtonState() const { return state & kButtons; }
    int32_t getModifierState() const { return state & kModifiers; }
    bool isLeftButton() const { return state & kLButton; }
    bool isRightButton() const { return state & kRButton; }
    bool isDoubleClick() const { return state & kDoubleClick; }
    operator int32_t() const { return state; }

private:
    int32_t state;
};

enum CMouseEventResult {
    kMouseEventNotImplemented = 0,
    kMouseEventHandled,
    kMouseEventNotHandled,
    kMouseDownEventHandledButDontNeedMovedOrUpEvents,
};

// Virtual keys and modifier bits, numbered as hosts number them in their key messages.
enum CVirtualKey : uint8_t {
    VKEY_BACK = 1, VKEY_TAB, VKEY_CLEAR, VKEY_RETURN, VKEY_PAUSE, VKEY_ESCAPE, VKEY_SPACE, VKEY_NEXT,
    VKEY_END, VKEY_HOME, VKEY_LEFT, VKEY_UP, VKEY_RIGHT, VKEY_DOWN, VKEY_PAGEUP, VKEY_PAGEDOWN,
    VKEY_SELECT, VKEY_PRINT, VKEY_ENTER, VKEY_SNAPSHOT, VKEY_INSERT, VKEY_DELETE,
};
enum CKeyModifier : uint8_t {
    MODIFIER_SHIFT = 1 << 0,
    MODIFIER_ALTERNATE = 1 << 1,
    MODIFIER_COMMAND = 1 << 2,
    MODIFIER_CONTROL = 1 << 3,
};

struct CKeyCode {
    int32_t character = 0;  // the typed character, 0 for a virtual key
    uint8_t virt = 0;       // a CVirtualKey, 0 for a character
    uint8_t modifier = 0;   // CKeyModifier bits
};
