#pragma once
// The analyzer's bar graph as the plot shows it: the levels read at each draw, the fade in and
// out, the held peak marks with their hold time and 36 dB/s fall, the drive offset and the four
// colour tables. Time comes in as the frame's tick count, so tests can drive it.

#include <cstdint>

#include "gui/toolkit/CGeometry.h"

namespace plot {

constexpr int kBars = 31;          // highest band first
constexpr float kNothingHeld = -100.0f;
constexpr int kBarSlot = 15;       // pixels per bar
constexpr int kBarsLeftOffset = 35;
constexpr int kFullBarPixels = 125;  // 0 dB
constexpr float kFloorDb = -30.0f;   // an empty bar
constexpr int kColourTables = 4;

// Colour of bar k in table t (0 grey, 1 cyan, 2 brown, 3 rainbow).
CColor barColour(int table, int k);

class AnalyzerBars {
public:
    AnalyzerBars();

    // Scheme 0..2 pick their table; 3 and anything else the rainbow.
    void setColorScheme(int scheme);
    int colourTable() const { return table_; }
    // Index 1..4: 500, 1000, 2000, 5000 ms; 5 holds for ever; anything else holds nothing.
    void setHoldTime(int index);
    int holdIndex() const { return holdIndex_; }
    void setDriveDb(float dB) { driveDb_ = dB; }
    float driveDb() const { return driveDb_; }
    // Switching on empties the bars and restarts the clock, so the fade-in starts now.
    void setOn(bool on, uint32_t nowMs);
    bool isOn() const { return on_; }
    void clearHeld();

    // One draw's worth of time: new levels (when on), the fade and the held marks.
    void advance(const float* levels, uint32_t nowMs);

    int fade() const { return static_cast<int>(fade_); }
    void settleFade() { fade_ = on_ ? 255.0f : 0.0f; }
    // The bar's level after the drive (whole dB), and its held mark.
    float level(int i) const { return bars_[i] + static_cast<float>(static_cast<int>(driveDb_)); }
    float held(int i) const { return held_[i]; }
    // Height in pixels for a level: 125 at 0 dB, empty at −30; may exceed 125.
    static int heightFor(float dB);
    // Bar i's colour with the fade applied.
    CColor colour(int i) const;

private:
    float bars_[kBars];
    float held_[kBars];
    float holdTimerMs_[kBars];
    float holdTimeMs_ = 0;
    int holdIndex_ = 0;
    int table_ = 2;
    float driveDb_ = 0;
    float fade_ = 0;  // 0..255
    uint32_t lastTick_ = 0;
    bool on_ = false;
};

}  // namespace plot
