#pragma once
// What the editor's idle moves with time: the plot range it shows, easing toward PlotRange
// while AutoZoom runs, and the analyzer fade counter that sets the plot's display opacity.
// Plain arithmetic on elapsed milliseconds, so the editor's clock stays outside it.

#include <algorithm>
#include <cstdint>

class IdleAnimation {
public:
    static constexpr int kAutoZoomPeriodMs = 1000;
    static constexpr int kEaseMs = 200;
    static constexpr int kFadeMax = 1775;

    // AutoZoom recomputed the range: a period of easing toward it (re)starts.
    void restartAutoZoom() { zoomLeftMs_ = kAutoZoomPeriodMs; }
    // Outside a period the shown range is simply the parameter's.
    void showRange(float p) { shown_ = p; }

    // One idle step toward target: (target − shown)·elapsed/200, straight there after more
    // than 200 ms, and exactly there when the period ends.
    float advanceRange(uint32_t elapsedMs, float target) {
        if (zoomLeftMs_ <= 0) return shown_;
        if (elapsedMs > static_cast<uint32_t>(kEaseMs)) shown_ = target;
        else shown_ += (target - shown_) * static_cast<float>(elapsedMs) / kEaseMs;
        zoomLeftMs_ -= static_cast<int>(std::min<uint32_t>(elapsedMs, kAutoZoomPeriodMs));
        if (zoomLeftMs_ <= 0) shown_ = target;
        return shown_;
    }

    // The counter rises 4 per millisecond while the analyzer is shown and falls 3 otherwise.
    void advanceFade(uint32_t elapsedMs, bool analyzerShown) {
        const int64_t step = static_cast<int64_t>(std::min<uint32_t>(elapsedMs, kFadeMax)) * (analyzerShown ? 4 : -3);
        fade_ = static_cast<int>(std::clamp<int64_t>(fade_ + step, 0, kFadeMax));
    }
    // 0..255, the alpha the plot gives the band colours.
    int displayOpacity() const { return 255 - std::max(0, (fade_ - 500) / 5); }

    float shownRange() const { return shown_; }
    bool easing() const { return zoomLeftMs_ > 0; }

private:
    float shown_ = 0.0f;
    int zoomLeftMs_ = 0;
    int fade_ = 0;
};
