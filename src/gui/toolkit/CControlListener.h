#pragma once
// What a control tells its listener (the editor) when the user changes it.

class CControl;

class CControlListener {
public:
    virtual ~CControlListener() = default;
    virtual void valueChanged(CControl* control) = 0;
};
