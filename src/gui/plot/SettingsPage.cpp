#include "gui/plot/SettingsPage.h"

#include "presets/Parameters.h"

namespace plot {

namespace {

constexpr const char* kLatencyValues[] = {"NEVER (OBSOLETE)", "LP-OFF (OBSOLETE)", "ALWAYS (SAFE)"};
constexpr const char* kZoomValues[] = {"AUTOMATIC", "MANUAL"};
constexpr const char* kSpeedValues[] = {"FAST (125ms)", "MEDIUM (250ms)", "SLOW (1000ms)", "MEDIUM/FAST", "SLOW/MEDIUM"};
constexpr const char* kModeValues[] = {"PEAK", "AVERAGE"};
constexpr const char* kHoldValues[] = {"OFF", "500ms", "1000ms", "2000ms", "5000ms", "INFINITE"};
constexpr const char* kResponseValues[] = {"FLAT", "A-WEIGHTED", "C-WEIGHTED"};
constexpr const char* kWidthValues[] = {"WIDE", "MEDIUM", "NARROW"};
constexpr const char* kFilterValues[] = {"RESPONSIVE", "SELECTIVE"};
constexpr int kAnalyzerSteps = 16;

constexpr SettingsRow kRows[kSettingsItems] = {
    {"Latency compensation", kLatencyValues, 3, -1, 3, false},
    {"Response plot   zoom", kZoomValues, 2, params::kAutoZoom, 2, true},
    {nullptr, nullptr, 4, params::kSpanColor, kAnalyzerSteps, false},
    {"Analyzer:      speed", kSpeedValues, 5, params::kSpanSpeed, kAnalyzerSteps, false},
    {"                mode", kModeValues, 2, params::kSpanMode, kAnalyzerSteps, false},
    {"                hold", kHoldValues, 6, params::kSpanHold, kAnalyzerSteps, false},
    {"            response", kResponseValues, 3, params::kSpanResp, kAnalyzerSteps, false},
    {nullptr, nullptr, 1, -1, 1, false},
    {"                gain", nullptr, 1, params::kSpanDrive, 0, false},
    {"           bar width", kWidthValues, 3, params::kSpanWidth, kAnalyzerSteps, false},
    {"             filters", kFilterValues, 2, params::kSpanFilter, kAnalyzerSteps, false},
    {nullptr, nullptr, 1, -1, 1, false},
};

// Text rows from the view's top, 12 pixels apart; rows 2 and 7 stay empty.
constexpr int kTextRow[kSettingsItems] = {0, 1, -1, 3, 4, 5, 6, -1, 8, 9, 10, -1};
constexpr int kRowPitch = 12;
constexpr int kRowsTop = 5;
constexpr int kRowsLeft = 6;
constexpr int kRowsRight = 258;

// Right of the rows: the colour area, and the two buttons beneath it.
constexpr CRect kColourArea(260, -129, 508, -32);  // x from the view's left, y from its bottom
constexpr CRect kStoreButton(262, -28, 372, -4);
constexpr CRect kExitButton(452, -28, 508, -4);

CRect fromView(const CRect& view, const CRect& r) {
    return {view.left + r.left, view.bottom + r.top, view.left + r.right, view.bottom + r.bottom};
}

}  // namespace

const SettingsRow& settingsRow(int item) { return kRows[item]; }

CRect settingsItemRect(const CRect& view, int item) {
    switch (item) {
        case kColourItem: return fromView(view, kColourArea);
        case kStoreItem: return fromView(view, kStoreButton);
        case kExitItem: return fromView(view, kExitButton);
        default: {
            const double top = view.top + kRowsTop + kTextRow[item] * kRowPitch;
            return {view.left + kRowsLeft, top, view.left + kRowsRight, top + kRowPitch};
        }
    }
}

int settingsItemAt(const CRect& view, double x, double y) {
    for (int item = 0; item < kSettingsItems; ++item)
        if (settingsItemRect(view, item).pointInside(CPoint(x, y))) return item;
    return -1;
}

SettingsPage::SettingsPage() : indexes_{2, 1, 2, 0, 0, 0, 0, 0, 0, 0, 1, 0} {}

int SettingsPage::nextIndex(int item) const {
    const int count = kRows[item].count;
    const int next = indexes_[item] + 1;
    return next >= count || next < 0 ? 0 : next;
}

float SettingsPage::parameterValue(int item, int index) {
    const SettingsRow& row = kRows[item];
    const int step = row.reversed ? row.parameterSteps - 1 - index : index;
    return params::stepCentre(step, row.parameterSteps);
}

int SettingsPage::indexForValue(int item, float value) {
    const SettingsRow& row = kRows[item];
    const int step = params::quantize(value, row.parameterSteps);
    return row.reversed ? row.parameterSteps - 1 - step : step;
}

const char* SettingsPage::valueText(int item) const {
    const SettingsRow& row = kRows[item];
    if (!row.values) return "";
    const int i = indexes_[item];
    return i >= 0 && i < row.count ? row.values[i] : "n/a";
}

}  // namespace plot
