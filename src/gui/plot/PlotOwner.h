#pragma once
// What the response plot asks of the editor that owns it. Bands are 0..7, values normalized
// 0..1 unless said otherwise.

namespace plot {

constexpr int kCurvePoints = 453;  // one curve value per pixel column of the inner area
constexpr int kSides = 2;

// Response curves in dB on the plot grid (20·1000^(i/453) Hz).
struct PlotCurves {
    float total[kSides][kCurvePoints];
    float band[kSides][8][kCurvePoints];
};

class PlotOwner {
public:
    virtual void hover(int band) = 0;  // −1 none
    // The band heard alone while the user holds it, or −1 to end it.
    virtual void audition(int band) = 0;
    virtual void setAuditionWidth(float width) = 0;
    virtual void setAuditionLevel(float level) = 0;
    virtual void setBandFrequency(int band, float value) = 0;
    virtual void setBandGain(int band, float value) = 0;
    virtual void setBandQ(int band, float value) = 0;
    // The analyzer's drive, −12 .. +24 dB.
    virtual void setDrive(float dB) = 0;
    // A settings row wrote a parameter.
    virtual void setSetting(int parameter, float value) = 0;
    virtual int getLatencyMode() = 0;
    virtual void setLatencyMode(int mode) = 0;
    // text holds at least 64 bytes.
    virtual void getLatencyText(char* text) = 0;
    virtual bool saveGlobalSettings() = 0;
    // The wheel moved the plot range to p.
    virtual void plotRangeChanged(float p) = 0;
    // The analyzer's 31 band levels in dB, highest band first.
    virtual void getAnalyzerBars(float* out) = 0;
    // False when the curves are being recomputed; the plot then keeps the ones it has.
    virtual bool getCurves(PlotCurves& out) = 0;

protected:
    ~PlotOwner() = default;
};

}  // namespace plot
