#pragma once
// What the editor asks of its effect beyond the VST parameter calls: the plug-in implements
// this, so the editor never needs to know the plug-in's class.

class EditorEffect {
public:
    // Band 0..7, value normalized; written to the side or sides that Channel selects.
    virtual void setBandFrequency(int band, float value) = 0;
    virtual void setBandGain(int band, float value) = 0;
    virtual void setBandQ(int band, float value) = 0;
    // The latency the host is told, as the info view shows it; text holds at least 64 bytes.
    virtual void getLatencyText(char* text) const = 0;
    virtual bool saveGlobalSettings() = 0;
    // While AutoZoom is on: PlotRange set to the range the current response needs.
    virtual void applyAutoZoom() = 0;

    // The held output peaks of both channels (largest absolute sample since the last clear).
    virtual void getOutputPeaks(float& first, float& second) const = 0;
    virtual void resetOutputPeaks() = 0;

    // The analyzer's 31 band levels in dB, highest band first.
    virtual void getAnalyzerBars(float* out) = 0;
    // Band audition while the user holds a band: band 0..7 or -1 to end it; width and level 0..1.
    virtual void setAuditionBand(int band) = 0;
    virtual void setAuditionWidth(float width) = 0;
    virtual void setAuditionLevel(float level) = 0;
    // The latency-compensation mode of the settings page (0..2), stored with the global settings.
    virtual void getLatencyMode(int& mode) const = 0;
    virtual void setLatencyMode(int mode) = 0;

    // --- value controls

    // --- switches, solo strip, small views, meters

    // --- response plot and settings page
    // The response curves in dB on the plot grid of 453 points: totals holds 2 × 453 floats
    // (side A, then side B), bands 2 × 8 × 453 (side A's bands 1..8, then side B's). False,
    // and nothing written, while the curves are being recomputed.
    virtual bool getPlotCurves(float* totals, float* bands) = 0;

protected:
    ~EditorEffect() = default;
};
