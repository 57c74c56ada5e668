#pragma once
// The plot's settings page: twelve items (nine rows that step a value on each click, the colour
// area, the store button and the exit button), where each sits, what each shows, and which
// value a click steps to. It holds the shown index of every row; the plot draws it.

#include "gui/toolkit/CGeometry.h"

namespace plot {

enum SettingsItem : int {
    kLatencyItem = 0,
    kZoomItem = 1,
    kColourItem = 2,
    kSpeedItem = 3,
    kModeItem = 4,
    kHoldItem = 5,
    kResponseItem = 6,
    kStoreItem = 7,
    kGainItem = 8,
    kWidthItem = 9,
    kFilterItem = 10,
    kExitItem = 11,
    kSettingsItems = 12,
};

struct SettingsRow {
    const char* label;           // 20 characters, right-aligned; null for the buttons and colours
    const char* const* values;   // texts by index; null where nothing is printed
    int count;                   // how many indexes a click cycles through
    int parameter;               // the parameter the row writes, −1 when none
    int parameterSteps;          // the parameter's step count
    bool reversed;               // index = last step − parameter step
};

const SettingsRow& settingsRow(int item);

// Item areas for a plot view of the given rectangle.
CRect settingsItemRect(const CRect& view, int item);
// The item under (x, y), or −1.
int settingsItemAt(const CRect& view, double x, double y);

class SettingsPage {
public:
    SettingsPage();

    int index(int item) const { return indexes_[item]; }
    void setIndex(int item, int index) { indexes_[item] = index; }
    // The value after a click, wrapping to the first.
    int nextIndex(int item) const;
    // The parameter value that shows an index of a row.
    static float parameterValue(int item, int index);
    // The row's index for a parameter value.
    static int indexForValue(int item, float value);
    // The shown text of a row's value; "n/a" when the index is outside the list.
    const char* valueText(int item) const;

    int hovered = -1;
    bool saved = false;

private:
    int indexes_[kSettingsItems];
};

}  // namespace plot
