// The editor's response plot and its settings and information pages: where the plot sits, how
// parameter values reach it and what it asks of the editor.

#include <algorithm>

#include "gui/Editor.h"
#include "gui/EditorEffect.h"
#include "gui/plot/CPlot.h"
#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"
#include "vst/AudioEffect.h"

namespace {

constexpr CRect kPlotPlace(30, 20, 548, 163);
constexpr int kFontBitmap = 129;
constexpr int kAnalyzerSteps = 16;
constexpr float kDriveLowDb = -12;
constexpr float kDriveSpanDb = 36;

bool on(float value) { return params::quantize(value, 2) == 1; }
int step16(float value) { return params::quantize(value, kAnalyzerSteps); }

}  // namespace

class Editor::PlotLink final : public plot::PlotOwner {
public:
    explicit PlotLink(Editor& editor) : editor_(editor) {}

    void hover(int band) override { editor_.hoverBand(band, 0); }
    void audition(int band) override {
        if (EditorEffect* e = effect()) e->setAuditionBand(band);
    }
    void setAuditionWidth(float width) override {
        if (EditorEffect* e = effect()) e->setAuditionWidth(width);
    }
    void setAuditionLevel(float level) override {
        if (EditorEffect* e = effect()) e->setAuditionLevel(level);
    }
    void setBandFrequency(int band, float value) override {
        if (EditorEffect* e = effect()) e->setBandFrequency(band, value);
    }
    void setBandGain(int band, float value) override {
        if (EditorEffect* e = effect()) e->setBandGain(band, value);
    }
    void setBandQ(int band, float value) override {
        if (EditorEffect* e = effect()) e->setBandQ(band, value);
    }
    void setDrive(float dB) override {
        editor_.showDrive(dB);
        editor_.setAutomated(params::kSpanDrive, (dB - kDriveLowDb) / kDriveSpanDb);
    }
    void setSetting(int parameter, float value) override { editor_.setAutomated(parameter, value); }
    int getLatencyMode() override {
        int mode = 0;
        if (EditorEffect* e = effect()) e->getLatencyMode(mode);
        return mode;
    }
    void setLatencyMode(int mode) override {
        if (EditorEffect* e = effect()) e->setLatencyMode(mode);
    }
    void getLatencyText(char* text) override {
        if (EditorEffect* e = effect()) e->getLatencyText(text);
        else std::copy_n("error", 6, text);
    }
    bool saveGlobalSettings() override {
        EditorEffect* e = effect();
        return e && e->saveGlobalSettings();
    }
    void plotRangeChanged(float p) override { editor_.setAutomated(params::kPlotRange, p); }
    void getAnalyzerBars(float* out) override {
        if (EditorEffect* e = effect()) e->getAnalyzerBars(out);
    }
    bool getCurves(plot::PlotCurves& out) override {
        EditorEffect* e = effect();
        return e && e->getPlotCurves(&out.total[0][0], &out.band[0][0][0]);
    }

private:
    EditorEffect* effect() const { return editor_.editorEffect(); }
    Editor& editor_;
};

void Editor::buildPlot(CFrame* frame) {
    plotLink = new PlotLink(*this);
    auto* font = new CBitmap(kFontBitmap);
    plot = new CPlot(kPlotPlace, this, plotLink, font);
    font->forget();
    frame->addView(plot);
}

void Editor::releasePlot() {
    plot = nullptr;  // the frame deletes it
    delete plotLink;
    plotLink = nullptr;
}

void Editor::showPlotParameter(int index, float value) {
    if (!plot) return;
    const int channel = params::quantize(parameter(params::kChannel), 3);
    switch (index) {
        case params::kPower: plot->setActive(on(value)); return;
        case params::kFat:
        case params::kLrMs:
        case params::kLinPhase:
        case params::kResolution: plot->setDirty(); return;
        case params::kPlotRange:
            // While AutoZoom runs the idle eases the shown range toward the value; a picture
            // taken before any idle shows where the range stands now.
            plot->setPlotRange(shownPlotRange());
            return;
        case params::kChannel:
            plot->setEditMask(params::quantize(value, 3) + 1);
            for (int i = params::kType; i < params::kPlotRange; ++i) showPlotParameter(i, parameter(i));
            return;
        case params::kSpan: plot->setAnalyzerOn(on(value)); return;
        case params::kSpanColor: plot->setColorScheme(step16(value)); return;
        case params::kSpanSpeed: plot->setAnalyzerSpeed(step16(value)); return;
        case params::kSpanMode: plot->setAnalyzerMode(step16(value)); return;
        case params::kSpanHold: plot->setHoldTime(step16(value)); return;
        case params::kSpanResp: plot->setResponseIndex(step16(value)); return;
        case params::kSpanWidth: plot->setBarWidth(step16(value)); return;
        case params::kSpanFilter: plot->setFilterChoice(step16(value)); return;
        case params::kSolo: plot->setSoloMask(params::quantize(value, 256)); return;
        case params::kSpanDrive: plot->setDrive(value); return;
        case params::kAutoZoom:
            plot->setAutoZoom(on(value));
            if (on(value)) {
                if (EditorEffect* e = editorEffect()) e->applyAutoZoom();
                animation.restartAutoZoom();
            }
            return;
        default: break;
    }
    if (index >= params::kType && index < params::kFreq) {
        const bool right = index >= params::kTypeR;
        if (right ? channel == kLeftStep : channel == kRightStep) return;
        const int band = (index - params::kType) % params::kBands;
        const int type = params::quantize(value, params::kBandTypeSteps);
        plot->setBandType(band, type);
        plot->setBandShown(band, type < params::kFirstBypassType);
        return;
    }
    if (index >= params::kFreq && index < params::kPlotRange) {
        // Four fields of two sides, eight bands each: frequency, Q, gain.
        const int field = (index - params::kFreq) / (2 * params::kBands);
        const bool right = (index - params::kFreq) % (2 * params::kBands) >= params::kBands;
        if (right != (channel == kRightStep)) return;
        const int band = (index - params::kFreq) % params::kBands;
        switch (field) {
            case 0: plot->setBandFrequency(band, value); break;
            case 1: plot->setBandQ(band, value); break;
            default: plot->setBandGain(band, value); break;
        }
    }
}

void Editor::idlePlot(uint32_t /*elapsedMs*/) {
    if (!plot) return;
    plot->setPlotRange(shownPlotRange());
    plot->setDisplayOpacity(displayOpacity());
    // The bars move with time: while they are shown or fading, every idle draws them.
    if (on(parameter(params::kSpan)) || !plot->isFadedOut()) plot->setDirty();
    else plot->pollCurves();
    plot->flushRedraw();
}

void Editor::infoClicked() {
    if (plot) plot->cyclePages();
}

void Editor::clearHeldBars() {
    if (plot) plot->clearHeldBars();
}

void Editor::showSettingsPage() {
    if (plot) plot->showSettingsPage();
}

void Editor::showPlotPage(int page) {
    if (!plot) return;
    while (plot->page() != page && page >= CPlot::kPlotPage && page <= CPlot::kInformationPage) plot->cyclePages();
}

void Editor::settlePlotFade() {
    if (plot) plot->settleFade();
}

void Editor::plotHoverBand(int band) {
    if (plot) plot->setHoverBand(band);
}

void Editor::plotSelectBand(int /*band*/) {
    if (plot) plot->setDirty();
}
