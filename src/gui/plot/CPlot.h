#pragma once
// The response plot: the frequency grid, the bands' curves and handles, and the analyzer bars;
// bands are dragged, auditioned and turned on it. Its second state is the settings page, its
// third the product information. Every change goes out through the owner (the editor) or, for
// the host's edit gestures, through the control's listener; parameter values come back in
// through the setters, which only store and mark the view dirty.

#include <memory>

#include "gui/controls/CTextPrinter.h"
#include "gui/plot/AnalyzerBars.h"
#include "gui/plot/PlotGeometry.h"
#include "gui/plot/PlotOwner.h"
#include "gui/plot/SettingsPage.h"
#include "gui/toolkit/CControl.h"

class FrameImage;

class CPlot : public CControl, public CTextPrinter {
public:
    enum Page { kPlotPage, kSettingsPage, kInformationPage };
    enum Mode { kNormalMode = 0, kVerticalMode = 2, kAuditionMode = 3 };
    static constexpr int kHarmonicTargets = 11;

    // font: the glyph sheet the texts are printed from (may be null).
    CPlot(const CRect& size, CControlListener* listener, plot::PlotOwner* owner, CBitmap* font);
    CPlot(const CPlot& other) = default;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;
    CView* newCopy() const override { return new CPlot(*this); }
    const char* getClassName() const override { return "CPlot"; }

    // Setters from the editor.
    void setPlotRange(float p);
    void setEditMask(int mask);
    void setAnalyzerOn(bool on);
    void setBandShown(int band, bool shown);
    void setHoverBand(int band);
    void setBandFrequency(int band, float v);
    void setBandGain(int band, float g);
    void setBandQ(int band, float q);
    void setBandType(int band, int type);
    void setColorScheme(int index);
    void setAnalyzerSpeed(int index);
    void setAnalyzerMode(int index);
    void setHoldTime(int index);
    void setResponseIndex(int index);
    void setDrive(float p);
    void setBarWidth(int index);
    void setFilterChoice(int index);
    void setSoloMask(int mask);
    void setAutoZoom(bool on);
    void setDisplayOpacity(int opacity);
    void setActive(bool active);
    void setAuditionLevel(float v) { auditionLevel_ = v; }
    void setAuditionWidth(float v) { auditionWidth_ = v; }
    void setRateInfo(double rate, int value);
    // The held modifier keys and buttons, as the frame saw them last.
    void setModifiers(const CButtonState& buttons);
    void clearHeldBars();
    void showSettingsPage();
    void cyclePages();

    // Takes the owner's curves and marks the view dirty when they differ from the drawn ones (a
    // redesign may finish after the value that caused it reached the view).
    void pollCurves();

    int hitTest(double x, double y) const;
    // Redraws when something asked for it since the last call.
    void flushRedraw();
    bool isFadedOut() const { return bars_.fade() == 0; }
    // The bars' fade jumps to where it is heading.
    void settleFade() { bars_.settleFade(); }

    Page page() const { return page_; }
    const plot::PlotGeometry& geometry() const { return g_; }
    double rangeDb() const { return R_; }
    int hoveredBand() const { return hovered_; }
    int mode() const { return mode_; }

private:
    struct Band {
        float frequency = 1;  // normalized
        float gain = 0.5f;
        float q = 0.5f;
        float handleX = 0;    // from the inner left edge
        float handleY = 0;    // on the fixed ±24 dB scale
        int type = 7;
        bool shown = false;
    };
    struct Harmonic {
        float value;
        int position;
    };

    static bool hasGain(int type) { return type >= 2 && type <= 4; }
    double drawnHandleY(int band) const;
    double pressHeight(int band) const;
    void gesture(int parameter, bool begin);
    void bandGestures(int band, bool begin, bool q, bool frequencyAndGain);
    void moveStep(const CPoint& where, const CButtonState& buttons);
    void armHarmonics();
    void dragDrive(const CPoint& where);
    void settingsClick(int item, const CPoint& where);
    void trackSettingsItem(const CPoint& where);
    void endDrag();
    void redraw() { pendingRedraw_ = true; setDirty(); }
    uint32_t ticks() const;

    // Drawing (CPlotDrawing.cpp).
    void drawCachedGrid(CDrawContext* context);
    void drawGrid(CDrawContext* context, double dx, double dy) const;
    void drawCurves(CDrawContext* context);
    void drawHandles(CDrawContext* context) const;
    void drawBars(CDrawContext* context);
    void drawSettings(CDrawContext* context);
    void drawInformation(CDrawContext* context);
    CColor bandColour(int band) const;

    plot::PlotOwner* owner_;
    plot::PlotGeometry g_;
    float rangeValue_ = 0;
    double R_ = 24;
    Band bands_[plot::kBandCount];

    int hovered_ = -1;
    int editMask_ = 3;
    int mode_ = kNormalMode;
    bool dragging_ = false;
    bool draggingDrive_ = false;
    CPoint pressPoint_;
    CPoint pressHandle_;
    float dragX_ = 0;  // where the drag puts the handle before any snapping
    float pressQ_ = 0.5f;
    float pressDriveDb_ = 0;
    bool detentLatched_ = false;
    int lastButtons_ = 0;
    float auditionWidth_ = 0.5f;
    float auditionLevel_ = 0.5f;
    float startWidth_ = 0.5f;

    bool snapArmed_ = false;
    Harmonic harmonics_[kHarmonicTargets] = {};
    int currentHarmonic_ = 1;

    plot::AnalyzerBars bars_;
    int barWidth_ = 0;
    int soloMask_ = 0;
    bool autoZoom_ = false;
    int opacity_ = 255;
    bool active_ = true;
    double rate_ = 44100;
    int rateValue_ = 0;

    Page page_ = kPlotPage;
    plot::SettingsPage settings_;
    bool pendingRedraw_ = false;
    plot::PlotCurves curves_ = {};
    int gridX_[plot::kGridLines];  // the vertical grid lines, fixed with the geometry
    // The grid as last drawn, for the range it was drawn at; copies share it (a new range
    // draws a new image rather than changing this one).
    std::shared_ptr<const FrameImage> grid_;
    double gridRange_ = 0;
};
