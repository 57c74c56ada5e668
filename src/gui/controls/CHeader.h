#pragma once
// The line above the plot: the shown band's number, type, frequency, gain and Q, and the output
// gain, which can be dragged and wheeled there. For a second after each analyzer-drive change
// it shows the drive instead of the band. Values are kept as given and turned into text when
// drawn, so storing one (possibly from the audio thread) never touches a string.

#include "gui/controls/CTextPrinter.h"
#include "gui/controls/ValueDrag.h"
#include "gui/toolkit/CControl.h"

class CHeader : public CControl, public CTextPrinter {
public:
    // How long the drive line stays after a change.
    static constexpr int kDriveShowMs = 1000;
    // Only the output part, from here to the right edge, takes the mouse and the wheel.
    static constexpr double kOutputAreaLeft = 455;

    // The listener gets the output changes under tag (Output); font is the glyph sheet.
    CHeader(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* font);

    void setType(float value);
    void setFrequency(float value);
    void setGain(float value);
    void setQ(float value);
    void setOutput(float value);
    // Band 0..7 is shown; -1 shows only the output.
    void setBand(int index);
    int getBand() const { return band; }
    void setDrive(float dB);
    void advanceDriveShow(int elapsedMs);
    // The analyzer's short help replaces the band while the pointer is over the jog's analyzer
    // button.
    void setAnalyzerHint(bool shown);

    // The texts as drawn now; empty for a field the band's type has not.
    struct Texts {
        std::string type, frequency, gain, q, output;
    };
    Texts texts() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;

    const char* getClassName() const override { return "CHeader"; }

private:
    int typeStep = 0;
    float frequency = 0;
    float gain = 0.5f;
    float q = 0.5f;
    int band = -1;
    float drive = 0;
    int driveShow = 0;
    bool analyzerHint = false;
    ValueDrag drag{ValueDrag::kKnobSpans};
};
