#pragma once
// A button that opens a list of entries inside the frame. The list takes the mouse until it
// closes: a click on an entry makes it current (the value is its index) and reports it; a
// click elsewhere or Escape closes the list and changes nothing.

#include <string>
#include <vector>

#include "gui/toolkit/CControl.h"

class CMenuItem {
public:
    explicit CMenuItem(std::string title) : title(std::move(title)) {}
    const char* getTitle() const { return title.c_str(); }
    void setTitle(const char* t) { title = t ? t : ""; }

private:
    std::string title;
};

class COptionMenu : public CControl {
public:
    static constexpr double kRowHeight = 14;

    COptionMenu(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* background = nullptr);
    // A copy has the same entries and no open list.
    COptionMenu(const COptionMenu& other);
    ~COptionMenu() override;

    CMenuItem* addEntry(const char* title);
    CMenuItem* getEntry(int index);
    int getNbEntries() const { return static_cast<int>(entries.size()); }
    void removeAllEntry();
    // The current entry; its index is the control's value.
    void setCurrent(int index);
    int getCurrent() const { return static_cast<int>(value); }
    void setFontColor(const CColor& c) { fontColor = c; }
    void setBackColor(const CColor& c) { backColor = c; }

    bool isPopupOpen() const;
    // Where the list opens: under the button, moved up or left to stay inside the frame.
    CRect popupRect() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new COptionMenu(*this); }
    const char* getClassName() const override { return "COptionMenu"; }

private:
    friend class COptionMenuList;
    void choose(int index);

    std::vector<CMenuItem> entries;
    class COptionMenuList* popup = nullptr;
    CColor fontColor{30, 32, 36, 255};
    CColor backColor{236, 238, 240, 255};
};
