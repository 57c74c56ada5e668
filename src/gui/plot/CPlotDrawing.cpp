// How the plot draws its three states: the grid, bars, curves and handles; the settings page;
// the information page.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "gui/plot/CPlot.h"
#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/FrameImage.h"

namespace {

constexpr CColor kGridDark{49, 49, 49, 255};
constexpr CColor kGridLine{180, 180, 180, 70};
constexpr CColor kCentreLine{180, 180, 180, 140};
constexpr CColor kPageBackground{205, 229, 237, 255};
constexpr CColor kPageText{49, 49, 49, 255};
constexpr CColor kTotalColour[plot::kSides] = {{240, 240, 240, 255}, {255, 190, 120, 255}};
constexpr CColor kBandColours[plot::kBandCount] = {
    {54, 120, 179, 255}, {206, 83, 4, 255},   {191, 0, 0, 255},    {49, 163, 157, 255},
    {229, 188, 5, 255},  {78, 173, 91, 255},  {106, 110, 186, 255}, {156, 81, 79, 255},
};
constexpr int kInactiveAlpha = 75;

constexpr struct {
    double hz;
    const char* text;
} kFrequencyLabels[] = {{100, "100"}, {1000, "1k"}, {10000, "10k"}};

// Level labels by the spacing the range allows; every one is a "+n"/"-n" pair.
constexpr const char* kLevelTexts[] = {"+24", "-24", "+18", "-18", "+12", "-12", "+9", "-9", "+6", "-6",
                                       "+5",  "-5",  "+4",  "-4",  "+3",  "-3",  "+2", "-2", "+1", "-1"};
constexpr int kLevelValues[] = {24, 18, 12, 9, 6, 5, 4, 3, 2, 1};

int labelSpacing(double R) { return R > 12.01 ? 6 : R > 6.01 ? 3 : R > 3.01 ? 2 : 1; }

constexpr int kHandleHalf = 5;
constexpr double kCurveReach = 0.1;  // pixels a drawn curve may stray from its points

constexpr int kBarWidthTrim[] = {0, 2, 4};
constexpr int kTextBaselineOffset = 9;
constexpr int kLabelColumn = 126;  // pixels from a row's label to its value
constexpr int kHeldMarkPixels = 2;

}  // namespace

CColor CPlot::bandColour(int band) const {
    CColor c = kBandColours[band];
    const int scale = active_ ? 255 : kInactiveAlpha;
    c.alpha = static_cast<uint8_t>(opacity_ * scale / 255);
    return c;
}

void CPlot::draw(CDrawContext* context) {
    // Inside the area the frame is redrawing, and inside the view.
    const CRect frameClip = context->getClipRect();
    const CRect clip = CRect(size).bound(frameClip);
    context->setClipRect(clip);
    float levels[plot::kBars];
    const bool reading = bars_.isOn() && owner_;
    if (reading) owner_->getAnalyzerBars(levels);
    bars_.advance(reading ? levels : nullptr, ticks());

    if (page_ == kSettingsPage) {
        drawSettings(context);
    } else if (page_ == kInformationPage) {
        drawInformation(context);
    } else {
        drawCachedGrid(context);
        drawBars(context);
        drawCurves(context);
        drawHandles(context);
    }
    context->setClipRect(frameClip);
    setDirty(false);
}

// The grid changes only with the level range: it is drawn once into an image of the view's size
// and copied from there.
void CPlot::drawCachedGrid(CDrawContext* context) {
    if (!grid_ || gridRange_ != R_) {
        auto image = std::make_shared<FrameImage>(static_cast<int>(size.getWidth()), static_cast<int>(size.getHeight()));
        CDrawContext imageContext(image->surface());
        drawGrid(&imageContext, -size.left, -size.top);
        grid_ = std::move(image);
        gridRange_ = R_;
    }
    context->drawImage(grid_->surface(), size, CPoint(0, 0), 1.0);
}

// Frame coordinates shifted by (dx, dy).
void CPlot::drawGrid(CDrawContext* context, double dx, double dy) const {
    const CRect area = CRect(size).offset(dx, dy);
    context->setFillColor(kGridDark);
    context->drawRect(area, kDrawFilled);
    context->setLineWidth(1);
    context->setFrameColor(kGridLine);
    for (int x : gridX_) context->drawLine(CPoint(x + dx, g_.top + dy), CPoint(x + dx, g_.bottom + dy));
    const int spacing = labelSpacing(R_);
    for (size_t i = 0; i < std::size(kLevelValues); ++i) {
        const int dB = kLevelValues[i];
        if (dB % spacing != 0 || dB > R_ + 1e-3) continue;
        for (int sign = 0; sign < 2; ++sign) {
            const int y = static_cast<int>(g_.levelY(sign == 0 ? dB : -dB, R_));
            context->setFrameColor(kGridLine);
            context->drawLine(CPoint(g_.left + dx, y + dy), CPoint(g_.right + dx, y + dy));
            // A label on the inner area's edge would be cut off.
            if (y - 4 < size.top || y + 4 >= size.bottom) continue;
            drawText(context, static_cast<int>(area.left) + 16, static_cast<int>(y + dy) + 3, kLevelTexts[2 * i + sign]);
        }
    }
    const int yMid = static_cast<int>(g_.yMid + dy);
    context->setFrameColor(kCentreLine);
    context->drawLine(CPoint(g_.left + dx, yMid), CPoint(g_.right + dx, yMid));
    drawText(context, static_cast<int>(area.left) + 22, yMid + 3, "0");
    for (const auto& label : kFrequencyLabels)
        drawText(context, static_cast<int>(g_.frequencyX(label.hz) + dx) - 3, static_cast<int>(area.top) + 11, label.text);
}

void CPlot::drawCurves(CDrawContext* context) {
    if (owner_) owner_->getCurves(curves_);
    const int side = editMask_ == 2 ? 1 : 0;
    const int columns = std::min(g_.W, plot::kCurvePoints);
    CPoint points[plot::kCurvePoints];
    const auto trace = [&](const float* curve, const CColor& colour, double width) {
        for (int x = 0; x < columns; ++x) {
            const float dB = std::isfinite(curve[x]) ? curve[x] : 0.0f;
            points[x] = CPoint(g_.left + x, std::clamp(g_.levelY(dB, R_), double(g_.top), double(g_.bottom)));
        }
        context->setLineWidth(width);
        context->setFrameColor(colour);
        context->drawPolyline(points, plot::simplifyPolyline(points, columns, kCurveReach));
    };
    const CRect viewClip = context->getClipRect();
    context->setClipRect(CRect(g_.left, g_.top, g_.right, g_.bottom + 1).bound(viewClip));
    for (int b = 0; b < plot::kBandCount; ++b)
        if (bands_[b].shown) trace(curves_.band[side][b], bandColour(b), 1);
    // Both sides' totals, the shown side last so that it lies on top.
    trace(curves_.total[1 - side], kTotalColour[1 - side], 1);
    trace(curves_.total[side], kTotalColour[side], 2);
    context->setLineWidth(1);
    context->setClipRect(viewClip);
}

void CPlot::drawHandles(CDrawContext* context) const {
    for (int b = plot::kBandCount - 1; b >= 0; --b) {
        if (!bands_[b].shown) continue;
        const double cx = g_.left + bands_[b].handleX;
        const double cy = pressHeight(b);
        const CRect box(cx - kHandleHalf, cy - kHandleHalf, cx + kHandleHalf + 1, cy + kHandleHalf + 1);
        context->setFillColor(bandColour(b));
        context->setFrameColor(b == hovered_ ? kWhiteCColor : kGridDark);
        context->drawRect(box, kDrawFilledAndStroked);
        if (b == hovered_ && snapArmed_) {
            char number[16];
            std::snprintf(number, sizeof number, "%d", currentHarmonic_ - 1);
            drawText(context, static_cast<int>(cx) + kHandleHalf + 3, static_cast<int>(cy) + 3, number);
        }
    }
}

void CPlot::drawBars(CDrawContext* context) {
    if (bars_.fade() == 0) return;
    const int base = static_cast<int>(size.bottom) - 1;
    const int trim = barWidth_ >= 0 && barWidth_ < 3 ? kBarWidthTrim[barWidth_] : 0;
    for (int i = 0; i < plot::kBars; ++i) {
        const int slot = static_cast<int>(size.left) + plot::kBarsLeftOffset + plot::kBarSlot * (plot::kBars - 1 - i);
        const int left = slot + trim / 2;
        const int right = slot + plot::kBarSlot - trim / 2 - 1;  // one pixel between neighbours
        const int height = plot::AnalyzerBars::heightFor(bars_.level(i));
        const CColor colour = bars_.colour(i);
        if (height > 0) {
            const int lift = std::max(0, height - plot::kFullBarPixels);
            const int bottom = base - lift;
            context->setFillColor(colour);
            context->drawRect(CRect(left, bottom - std::min(height, plot::kFullBarPixels), right, bottom), kDrawFilled);
        }
        if (bars_.holdIndex() == 0 || bars_.held(i) <= plot::kNothingHeld) continue;
        const int held = std::min(plot::AnalyzerBars::heightFor(bars_.held(i)), plot::kFullBarPixels);
        CColor mark = colour;
        mark.alpha = static_cast<uint8_t>(std::min(255, mark.alpha * 3 / 2));
        context->setFillColor(mark);
        context->drawRect(CRect(left, base - held - kHeldMarkPixels, right, base - held), kDrawFilled);
    }
}

void CPlot::drawSettings(CDrawContext* context) {
    context->setFillColor(kPageBackground);
    context->drawRect(size, kDrawFilled);
    if (owner_) settings_.setIndex(plot::kLatencyItem, owner_->getLatencyMode());
    char text[32];
    for (int item = 0; item < plot::kSettingsItems; ++item) {
        const CRect r = plot::settingsItemRect(size, item);
        const bool lit = item == settings_.hovered;
        const int x = static_cast<int>(r.left) + 2;
        const int baseline = static_cast<int>(r.top) + kTextBaselineOffset;
        const plot::SettingsRow& row = plot::settingsRow(item);
        if (row.label) {
            drawText(context, x, baseline, row.label, false, lit);
            const char* value = settings_.valueText(item);
            if (item == plot::kGainItem) {
                std::snprintf(text, sizeof text, "%ddB", static_cast<int>(bars_.driveDb()));
                value = text;
            }
            drawText(context, x + kLabelColumn, baseline, value, false, lit);
            continue;
        }
        context->setFrameColor(lit ? kWhiteCColor : kPageText);
        if (item == plot::kColourItem) {
            context->setFillColor(kGridDark);
            context->drawRect(r, kDrawFilledAndStroked);
            const int table = bars_.colourTable();
            const double strip = r.getWidth() / plot::kBars;
            for (int k = 0; k < plot::kBars; ++k) {
                CColor c = plot::barColour(table, k);
                c.alpha = 255;
                const double level = bars_.isOn() ? std::clamp(bars_.level(k), plot::kFloorDb, 0.0f) : 0.0f;
                const double top = r.bottom - 2 - (r.getHeight() - 4) * (level - plot::kFloorDb) / -plot::kFloorDb;
                const double left = r.right - (k + 1) * strip;
                context->setFillColor(c);
                context->drawRect(CRect(left + 1, top, left + strip, r.bottom - 2), kDrawFilled);
            }
            continue;
        }
        context->setFillColor(kWhiteCColor);
        context->drawRect(r, kDrawFilledAndStroked);
        if (item == plot::kExitItem) {
            drawText(context, x + 14, baseline + 6, "EXIT", false, lit);
        } else if (settings_.saved) {
            drawText(context, x + 38, baseline + 6, "SAVED", false, lit);
        } else {
            drawText(context, x + 32, baseline + 1, "SAVE AS", false, lit);
            drawText(context, x + 32, baseline + 11, "DEFAULT", false, lit);
        }
    }
}

void CPlot::drawInformation(CDrawContext* context) {
    context->setFillColor(kPageBackground);
    context->drawRect(size, kDrawFilled);
    const int x = static_cast<int>(size.left) + 40;
    const int y = static_cast<int>(size.top) + 40;
    drawText(context, x, y, "Tyx Vireo", true);
    drawText(context, x, y + 30, "Version:");
    drawText(context, x + 120, y + 30, "2.0.4");
    char latency[64] = "error";
    if (owner_) owner_->getLatencyText(latency);
    drawText(context, x, y + 45, "Process latency:");
    drawText(context, x + 120, y + 45, latency);
}
