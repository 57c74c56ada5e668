// The plot's state and its mouse handling; the drawing is in CPlotDrawing.cpp.

#include "gui/plot/CPlot.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

#include "gui/toolkit/CControlListener.h"
#include "gui/toolkit/CFrame.h"
#include "presets/Parameters.h"

namespace {

constexpr int kNoTag = -1;
constexpr int kDetentPixels = 5;
constexpr double kFineQPixelsX = 400;
constexpr double kFineQPixelsY = 200;
constexpr double kDrivePixelsX = 40;
constexpr double kDrivePixelsY = 20;
constexpr float kDriveLowDb = -12;
constexpr float kDriveHighDb = 24;
constexpr float kDriveSpanDb = kDriveHighDb - kDriveLowDb;
constexpr float kAuditionLevelWheel = 2.5f;
constexpr float kFineWheel = 0.1f;

// Parameter indexes of a band's frequency, gain and Q on the first and the second channel.
constexpr int kFrequencyIndex[2] = {params::kFreq, params::kFreqR};
constexpr int kGainIndex[2] = {params::kGain, params::kGainR};
constexpr int kQIndex[2] = {params::kQ, params::kQR};

float clamp01(double v) { return static_cast<float>(std::clamp(v, 0.0, 1.0)); }

}  // namespace

CPlot::CPlot(const CRect& size, CControlListener* listener, plot::PlotOwner* owner, CBitmap* font)
    : CControl(size, listener, kNoTag),
      CTextPrinter(font),
      owner_(owner),
      g_(size) {
    for (int i = 0; i < plot::kGridLines; ++i) gridX_[i] = g_.frequencyX(plot::kGridFrequencies[i]);
    for (int b = 0; b < plot::kBandCount; ++b) {
        setBandFrequency(b, bands_[b].frequency);
        setBandGain(b, bands_[b].gain);
    }
}

uint32_t CPlot::ticks() const { return frame ? frame->getTicks() : 0; }

// ---- Setters --------------------------------------------------------------------------------

void CPlot::setPlotRange(float p) {
    p = std::clamp(p, 0.0f, 1.0f);
    if (p == rangeValue_) return;
    rangeValue_ = p;
    R_ = plot::rangeDb(rangeValue_);
    setDirty();
}

void CPlot::setEditMask(int mask) {
    editMask_ = mask;
    setDirty();
}

void CPlot::setAnalyzerOn(bool on) {
    bars_.setOn(on, ticks());
    setDirty();
}

void CPlot::setBandShown(int band, bool shown) {
    if (band < 0 || band >= plot::kBandCount) return;
    bands_[band].shown = shown;
    setDirty();
}

void CPlot::setHoverBand(int band) {
    if (mode_ == kAuditionMode) return;
    hovered_ = band;
    if (band < 0) mode_ = kNormalMode;
    setDirty();
}

void CPlot::setBandFrequency(int band, float v) {
    if (band < 0 || band >= plot::kBandCount) return;
    bands_[band].frequency = v;
    bands_[band].handleX = static_cast<float>(g_.handleX(v));
    setDirty();
}

void CPlot::setBandGain(int band, float g) {
    if (band < 0 || band >= plot::kBandCount) return;
    bands_[band].gain = g;
    bands_[band].handleY = static_cast<float>(g_.fixedHandleY(g));
    setDirty();
}

void CPlot::setBandQ(int band, float q) {
    if (band < 0 || band >= plot::kBandCount) return;
    bands_[band].q = q;
    setDirty();
}

void CPlot::setBandType(int band, int type) {
    if (band < 0 || band >= plot::kBandCount) return;
    bands_[band].type = type;
    setDirty();
}

void CPlot::setColorScheme(int index) {
    bars_.setColorScheme(index);
    settings_.setIndex(plot::kColourItem, index);
    setDirty();
}

void CPlot::setAnalyzerSpeed(int index) {
    settings_.setIndex(plot::kSpeedItem, index);
    setDirty();
}

void CPlot::setAnalyzerMode(int index) {
    settings_.setIndex(plot::kModeItem, index);
    setDirty();
}

void CPlot::setHoldTime(int index) {
    bars_.setHoldTime(index);
    settings_.setIndex(plot::kHoldItem, index);
    setDirty();
}

void CPlot::setResponseIndex(int index) {
    settings_.setIndex(plot::kResponseItem, index);
    setDirty();
}

void CPlot::setDrive(float p) {
    bars_.setDriveDb(kDriveSpanDb * p + kDriveLowDb);
    setDirty();
}

void CPlot::setBarWidth(int index) {
    barWidth_ = index;
    settings_.setIndex(plot::kWidthItem, index);
    setDirty();
}

void CPlot::setFilterChoice(int index) {
    settings_.setIndex(plot::kFilterItem, index);
    setDirty();
}

void CPlot::setSoloMask(int mask) {
    soloMask_ = mask;
    setDirty();
}

void CPlot::setAutoZoom(bool on) {
    autoZoom_ = on;
    settings_.setIndex(plot::kZoomItem, on ? 0 : 1);
    setDirty();
}

void CPlot::setDisplayOpacity(int opacity) {
    opacity = std::clamp(opacity, 0, 255);
    if (opacity == opacity_) return;
    opacity_ = opacity;
    setDirty();
}

void CPlot::setActive(bool active) {
    active_ = active;
    setDirty();
}

void CPlot::setRateInfo(double rate, int value) {
    rate_ = rate;
    rateValue_ = value;
    setDirty();
}

void CPlot::clearHeldBars() {
    bars_.clearHeld();
    setDirty();
}

void CPlot::showSettingsPage() {
    page_ = kSettingsPage;
    redraw();
}

void CPlot::cyclePages() {
    page_ = page_ == kPlotPage ? kSettingsPage : page_ == kSettingsPage ? kInformationPage : kPlotPage;
    redraw();
}

void CPlot::pollCurves() {
    if (!owner_ || page_ != kPlotPage) return;
    plot::PlotCurves fresh;
    if (!owner_->getCurves(fresh) || std::memcmp(&fresh, &curves_, sizeof fresh) == 0) return;
    curves_ = fresh;
    setDirty();
}

void CPlot::flushRedraw() {
    if (!pendingRedraw_) return;
    pendingRedraw_ = false;
    setDirty();
}

// ---- Hit test and modifiers -------------------------------------------------------------------

double CPlot::drawnHandleY(int band) const { return g_.drawnHandleY(bands_[band].handleY, R_); }

double CPlot::pressHeight(int band) const { return hasGain(bands_[band].type) ? drawnHandleY(band) : g_.yMid; }

int CPlot::hitTest(double x, double y) const {
    if (dragging_ || mode_ == kAuditionMode) return hovered_;
    plot::HandleSpot spots[plot::kBandCount];
    for (int b = 0; b < plot::kBandCount; ++b) spots[b] = {bands_[b].shown, bands_[b].handleX, pressHeight(b)};
    return plot::hitHandle(g_, spots, x, y);
}

void CPlot::armHarmonics() {
    if (hovered_ < 0) return;
    const double f0 = 20.0 * std::pow(1000.0, bands_[hovered_].frequency);
    for (int n = 0; n < kHarmonicTargets; ++n) {
        const double f = n == 0 ? f0 / 2 : f0 * n;
        const double value = std::log10(f / 20.0) / 3.0;
        harmonics_[n] = {static_cast<float>(value), static_cast<int>(value * g_.W)};
    }
    currentHarmonic_ = 1;
    snapArmed_ = true;
}

void CPlot::setModifiers(const CButtonState& buttons) {
    const int now = buttons;
    const int before = lastButtons_;
    lastButtons_ = now;
    const bool shiftNow = now & kShift, shiftBefore = before & kShift;
    if (dragging_ && snapArmed_ && (now & CButtonState::kButtons) != (before & CButtonState::kButtons)) {
        pressPoint_.x += dragX_ - harmonics_[currentHarmonic_].position;
        snapArmed_ = false;
    }
    if (mode_ == kAuditionMode) {
        if (shiftNow && !shiftBefore) armHarmonics();
        if (!shiftNow && shiftBefore && hovered_ >= 0) snapArmed_ = false;
    }
    const int previousMode = mode_;
    if (now & kAlt) {
        mode_ = kVerticalMode;
    } else if ((now & kControl) || (now & kRButton)) {
        if (mode_ != kAuditionMode && hovered_ >= 0) {
            mode_ = kAuditionMode;
            if (owner_) owner_->audition(hovered_);
        }
    } else {
        mode_ = kNormalMode;
    }
    if (previousMode == kAuditionMode && mode_ != kAuditionMode) {
        snapArmed_ = false;
        if (owner_) owner_->audition(-1);
    }
}

// ---- Gestures ---------------------------------------------------------------------------------

// The host's edit gestures go through the listener under the parameter's index.
void CPlot::gesture(int parameter, bool begin) {
    if (!listener) return;
    const int32_t own = tag;
    tag = parameter;
    if (begin) listener->controlBeginEdit(this);
    else listener->controlEndEdit(this);
    tag = own;
}

void CPlot::bandGestures(int band, bool begin, bool q, bool frequencyAndGain) {
    for (int side = 0; side < 2; ++side) {
        if (!(editMask_ & (1 << side))) continue;
        if (frequencyAndGain) {
            gesture(kFrequencyIndex[side] + band, begin);
            gesture(kGainIndex[side] + band, begin);
        }
        if (q) gesture(kQIndex[side] + band, begin);
    }
}

CMouseEventResult CPlot::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton() && !buttons.isRightButton()) return kMouseEventNotHandled;
    if (page_ == kSettingsPage) {
        settingsClick(plot::settingsItemAt(size, where.x, where.y), where);
        return kMouseEventHandled;
    }
    if (page_ == kInformationPage) {
        page_ = kPlotPage;
        redraw();
        return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }
    if (mode_ != kAuditionMode) hovered_ = hitTest(where.x, where.y);
    if (hovered_ < 0) return kMouseEventNotHandled;
    const int band = hovered_;
    setModifiers(buttons);  // the right button auditions the band
    pressPoint_ = where;
    pressHandle_ = CPoint(bands_[band].handleX, pressHeight(band));
    dragX_ = bands_[band].handleX;
    pressQ_ = bands_[band].q;
    detentLatched_ = false;
    bandGestures(band, true, true, true);
    dragging_ = true;
    moveStep(where, buttons);
    return kMouseEventHandled;
}

void CPlot::moveStep(const CPoint& where, const CButtonState& buttons) {
    const int band = hovered_;
    if (band < 0) return;
    Band& b = bands_[band];
    const bool shift = buttons.getModifierState() & kShift;
    if (!shift || mode_ != kNormalMode) {
        if (mode_ != kVerticalMode) {
            dragX_ = static_cast<float>(pressHandle_.x - (pressPoint_.x - where.x));
            float value = clamp01(dragX_ / g_.W);
            if (snapArmed_) {
                int best = -1;
                for (int n = 0; n < kHarmonicTargets; ++n) {
                    const Harmonic& t = harmonics_[n];
                    if (!(t.value > 0 && t.value <= 1)) continue;
                    if (best < 0 || std::fabs(t.position - dragX_) < std::fabs(harmonics_[best].position - dragX_))
                        best = n;
                }
                currentHarmonic_ = best < 0 ? 1 : best;
                value = harmonics_[currentHarmonic_].value;
            }
            setBandFrequency(band, value);
            if (owner_) owner_->setBandFrequency(band, value);
        }
        const double y = pressHandle_.y - (pressPoint_.y - where.y);
        if (mode_ == kAuditionMode) {
            auditionWidth_ = clamp01(startWidth_ - (y - pressHandle_.y) / g_.H);
            if (owner_) owner_->setAuditionWidth(auditionWidth_);
        } else if (hasGain(b.type)) {
            float gain = clamp01(0.5 + (g_.yMid - y) * R_ / (plot::kFixedScaleDb * g_.H));
            // Drag heights carry the rounding of the stored gain.
            const bool nearCentre = std::fabs(y - g_.yMid) < kDetentPixels - plot::kFloatSlack;
            if (nearCentre && (detentLatched_ || std::fabs(gain - 0.5f) < std::fabs(b.gain - 0.5f))) {
                gain = 0.5f;
                detentLatched_ = true;
            } else if (!nearCentre) {
                detentLatched_ = false;
            }
            setBandGain(band, gain);
            if (owner_) owner_->setBandGain(band, gain);
        }
    } else {
        const float q = clamp01(pressQ_ + (where.x - pressPoint_.x) / kFineQPixelsX +
                                (pressPoint_.y - where.y) / kFineQPixelsY);
        setBandQ(band, q);
        if (owner_) owner_->setBandQ(band, q);
    }
    redraw();
}

CMouseEventResult CPlot::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (draggingDrive_) {
        dragDrive(where);
        return kMouseEventHandled;
    }
    if (!dragging_) {
        if (page_ == kSettingsPage) {
            trackSettingsItem(where);
        } else if (page_ == kPlotPage) {
            const int band = hitTest(where.x, where.y);
            if (band != hovered_) {
                hovered_ = band;
                if (owner_) owner_->hover(band);
                redraw();
            }
        }
        setModifiers(buttons);
        return kMouseEventHandled;
    }
    const int before = lastButtons_;
    const int now = buttons;
    if ((before & kControl) && !(now & kControl)) {
        pressPoint_.y = where.y;
        pressHandle_.y = pressHeight(hovered_);
    }
    if (!(before & kControl) && (now & kControl)) {
        startWidth_ = auditionWidth_;
        pressPoint_.y = where.y;
    }
    if (!(before & kShift) && (now & kShift)) {
        pressPoint_ = where;
        pressHandle_ = CPoint(bands_[hovered_].handleX, pressHeight(hovered_));
        pressQ_ = bands_[hovered_].q;
    }
    setModifiers(buttons);
    moveStep(where, buttons);
    return kMouseEventHandled;
}

void CPlot::endDrag() {
    if (dragging_) bandGestures(hovered_, false, true, true);
    if (draggingDrive_) gesture(params::kSpanDrive, false);
    dragging_ = false;
    draggingDrive_ = false;
}

CMouseEventResult CPlot::onMouseUp(CPoint& /*where*/, const CButtonState& buttons) {
    settings_.saved = false;
    if (mode_ != kAuditionMode) {
        if (owner_) owner_->audition(-1);
        mode_ = kNormalMode;
    }
    endDrag();
    // The buttons are up now: leaving the audition a held right button started.
    setModifiers(CButtonState(buttons.getModifierState()));
    redraw();
    return kMouseEventHandled;
}

CMouseEventResult CPlot::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    settings_.hovered = -1;
    mode_ = kNormalMode;
    snapArmed_ = false;
    if (!dragging_) hovered_ = -1;
    if (owner_) {
        owner_->hover(-1);
        owner_->audition(-1);
    }
    redraw();
    return kMouseEventHandled;
}

bool CPlot::onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) {
    if (page_ == kInformationPage) return false;
    if (page_ == kSettingsPage) {
        if (plot::settingsItemAt(size, where.x, where.y) != plot::kGainItem) return false;
        const float dB = std::clamp(bars_.driveDb() + distance, kDriveLowDb, kDriveHighDb);
        bars_.setDriveDb(dB);
        if (owner_) owner_->setDrive(dB);
        redraw();
        return true;
    }
    setModifiers(buttons);
    const float step = wheelInc * distance * ((buttons.getModifierState() & kShift) ? kFineWheel : 1.0f);
    if (mode_ == kAuditionMode && buttons.getButtonState() == 0) {
        auditionLevel_ = clamp01(auditionLevel_ + wheelInc * distance * kAuditionLevelWheel);
        if (owner_) owner_->setAuditionLevel(auditionLevel_);
    } else if (hovered_ >= 0) {
        const float q = clamp01(bands_[hovered_].q + step);
        bandGestures(hovered_, true, true, false);
        setBandQ(hovered_, q);
        if (owner_) owner_->setBandQ(hovered_, q);
        bandGestures(hovered_, false, true, false);
    } else if (buttons.getModifierState() & kControl) {
        const float p = clamp01((bars_.driveDb() - kDriveLowDb) / kDriveSpanDb + step);
        bars_.setDriveDb(kDriveSpanDb * p + kDriveLowDb);
        if (owner_) owner_->setDrive(bars_.driveDb());
    } else {
        setPlotRange(clamp01(rangeValue_ + step));
        if (owner_) owner_->plotRangeChanged(rangeValue_);
    }
    redraw();
    return true;
}

// ---- Settings page ----------------------------------------------------------------------------

void CPlot::trackSettingsItem(const CPoint& where) {
    const int item = plot::settingsItemAt(size, where.x, where.y);
    if (item == settings_.hovered) return;
    settings_.hovered = item;
    redraw();
}

void CPlot::settingsClick(int item, const CPoint& where) {
    switch (item) {
        case -1: return;
        case plot::kExitItem:
            page_ = kPlotPage;
            break;
        case plot::kStoreItem:
            settings_.saved = true;
            if (owner_) owner_->saveGlobalSettings();
            break;
        case plot::kGainItem:
            pressPoint_ = where;
            pressDriveDb_ = bars_.driveDb();
            gesture(params::kSpanDrive, true);
            draggingDrive_ = true;
            break;
        case plot::kLatencyItem: {
            const int next = settings_.nextIndex(item);
            settings_.setIndex(item, next);
            if (owner_) owner_->setLatencyMode(next);
            break;
        }
        default: {
            const int next = settings_.nextIndex(item);
            settings_.setIndex(item, next);
            if (owner_) owner_->setSetting(plot::settingsRow(item).parameter, plot::SettingsPage::parameterValue(item, next));
            break;
        }
    }
    redraw();
}

void CPlot::dragDrive(const CPoint& where) {
    const double dB = pressDriveDb_ + (where.x - pressPoint_.x) / kDrivePixelsX + (pressPoint_.y - where.y) / kDrivePixelsY;
    bars_.setDriveDb(static_cast<float>(std::clamp<double>(dB, kDriveLowDb, kDriveHighDb)));
    if (owner_) owner_->setDrive(bars_.driveDb());
    redraw();
}
