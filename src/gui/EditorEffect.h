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

protected:
    ~EditorEffect() = default;
};
