#pragma once
// What a control tells its listener (the editor) when the user changes it, and the bracket
// around a gesture (a drag, a click) that the listener passes on to the host as an edit.

class CControl;

class CControlListener {
public:
    virtual ~CControlListener() = default;
    virtual void valueChanged(CControl* control) = 0;
    virtual void controlBeginEdit(CControl* /*control*/) {}
    virtual void controlEndEdit(CControl* /*control*/) {}
};
