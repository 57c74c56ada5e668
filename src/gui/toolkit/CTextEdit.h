#pragma once
// A one-line text field that the user edits inside the frame. A click gives it the frame's
// focus and starts editing with the whole text selected; typing replaces the selection, the
// arrows (with Shift to select), Home, End, Backspace and Delete work as usual. Return or the
// loss of focus takes the text and reports it; Escape puts the old text back silently.

#include <string>
#include <vector>

#include "gui/toolkit/CControl.h"
#include "gui/toolkit/CDrawContext.h"

class CTextEdit : public CControl {
public:
    CTextEdit(const CRect& size, CControlListener* listener, int32_t tag, const char* text = nullptr,
              CBitmap* background = nullptr);

    void setText(const char* text);
    const char* getText() const { return text.c_str(); }
    // Longest text the field accepts, in bytes.
    void setMaxLength(size_t bytes) { maxLength = bytes; }

    void setFont(const std::string& family, double pixelSize) {
        fontFamily = family;
        fontSize = pixelSize;
    }
    void setFontColor(const CColor& c) { fontColor = c; }
    void setBackColor(const CColor& c) { backColor = c; }
    void setFrameColor(const CColor& c) { frameColor = c; }
    void setHoriAlign(CHoriTxtAlign align) { horiAlign = align; }

    bool isEditing() const { return editing; }
    // While editing: the edited text and the selection (anchor..cursor, either order).
    const std::string& getEditText() const { return editText; }
    size_t getCursor() const { return cursor; }
    size_t getSelectionAnchor() const { return anchor; }

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    int32_t onKeyDown(CKeyCode& key) override;
    void takeFocus() override;
    void looseFocus() override;

    CView* newCopy() const override { return new CTextEdit(*this); }
    const char* getClassName() const override { return "CTextEdit"; }

private:
    void replaceSelection(const std::string& with);
    void moveCursor(size_t to, bool extend);
    size_t positionAt(double x) const;
    void endEditing(bool take);

    std::string text;
    std::string editText;
    size_t maxLength = 255;
    bool editing = false;
    bool cancelled = false;
    size_t cursor = 0;
    size_t anchor = 0;
    // x of each edit position as last drawn, for placing the cursor with the mouse.
    std::vector<double> caretX;

    std::string fontFamily = "sans-serif";
    double fontSize = 10;
    CColor fontColor = kBlackCColor;
    CColor backColor = kWhiteCColor;
    CColor frameColor = kTransparentCColor;
    CHoriTxtAlign horiAlign = kLeftText;
};
