#pragma once
// A modal message inside the frame: a caption, one line of text and an OK button over the
// dimmed editor. OK, Return or Escape closes it; clicks elsewhere are swallowed.

#include <string>

#include "gui/toolkit/CView.h"

class CMessageBox : public CView {
public:
    CMessageBox(const CRect& frameSize, std::string text, std::string caption);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    int32_t onKeyDown(CKeyCode& key) override;

    const std::string& getText() const { return text; }
    const std::string& getCaption() const { return caption; }
    const CRect& getOkButton() const { return okButton; }
    const char* getClassName() const override { return "CMessageBox"; }

private:
    void dismiss();

    std::string text;
    std::string caption;
    CRect box;
    CRect okButton;
};
