#include "gui/controls/ValueText.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace valuetext {

namespace {

constexpr const char* kTypeTexts[] = {"LowCut 12dB/oct", "LowCut 24dB/oct", "LowShelf", "Peaking",
                                      "HighShelf",       "HiCut 12dB/oct",  "HiCut 24dB/oct"};
constexpr const char* kBypassText = "Bypass";
constexpr int kShapes = 7;
constexpr int kTypeSteps = 14;
constexpr int kPeakingShape = 3;

// Natural ranges behind the normalized values.
constexpr double kLowestFrequency = 20;  // Hz at 0; three decades up to 20 kHz at 1
constexpr double kFrequencyDecades = 3;
constexpr double kBandGainSpan = 48;     // -24..+24 dB
constexpr double kOutputGainSpan = 24;   // -12..+12 dB
constexpr double kPeakingQBase = 20;     // Q = 20^(2v - 1): 0.05..20
constexpr double kOtherQShift = 1.5;     // Q = 2^(2v - 1.5): 0.35..1.41

int shapeOf(int typeStep) { return std::clamp(typeStep, 0, kTypeSteps - 1) % kShapes; }
bool peaking(int typeStep) { return shapeOf(typeStep) == kPeakingShape; }

std::string printed(const char* pattern, double v) {
    char text[32];
    std::snprintf(text, sizeof text, pattern, v);
    return text;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return std::tolower(x) == std::tolower(y); });
}

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

// A number followed by nothing, or by the field's unit, with "k" before it for thousands
// where thousands make sense.
std::optional<double> readNumber(const std::string& text, std::string_view unit, bool thousandsAllowed) {
    const char* begin = text.c_str();
    char* end = nullptr;
    const double number = std::strtod(begin, &end);
    if (end == begin || !std::isfinite(number)) return std::nullopt;
    std::string_view rest = trimmed(end);
    double factor = 1;
    if (thousandsAllowed && !rest.empty() && (rest.front() == 'k' || rest.front() == 'K')) {
        factor = 1000;
        rest = trimmed(rest.substr(1));
    }
    if (!rest.empty() && !(!unit.empty() && equalsIgnoringCase(rest, unit))) return std::nullopt;
    return number * factor;
}

}  // namespace

const char* typeText(int typeStep) {
    if (typeStep < 0 || typeStep >= kShapes) return kBypassText;
    return kTypeTexts[typeStep];
}

bool hasGain(int typeStep) {
    const int shape = shapeOf(typeStep);
    return shape >= 2 && shape <= 4;
}

bool hasQ(int typeStep) {
    const int shape = shapeOf(typeStep);
    return shape != 0 && shape != 5;
}

double displayValue(Kind kind, float value, int typeStep) {
    const double v = value;
    switch (kind) {
        case kFrequency: return kLowestFrequency * std::pow(10.0, kFrequencyDecades * v);
        case kGain: return (v - 0.5) * kBandGainSpan;
        case kQ: return peaking(typeStep) ? std::pow(kPeakingQBase, 2 * v - 1) : std::pow(2.0, 2 * v - kOtherQShift);
        case kOutput: return (v - 0.5) * kOutputGainSpan;
    }
    return 0;
}

std::string format(Kind kind, float value, int typeStep) {
    const double shown = displayValue(kind, value, typeStep);
    switch (kind) {
        case kFrequency: return printed("%.0f", shown);
        case kGain:
        case kQ: return printed("%.2f", shown);
        case kOutput: return printed("%+.1f", shown);
    }
    return {};
}

std::optional<float> parse(Kind kind, const std::string& text, int typeStep) {
    std::optional<double> number;
    double v = 0;
    switch (kind) {
        case kFrequency:
            number = readNumber(text, "Hz", true);
            if (!number || *number <= 0) return std::nullopt;
            v = std::log10(*number / kLowestFrequency) / kFrequencyDecades;
            break;
        case kGain:
        case kOutput:
            number = readNumber(text, "dB", false);
            if (!number) return std::nullopt;
            v = *number / (kind == kGain ? kBandGainSpan : kOutputGainSpan) + 0.5;
            break;
        case kQ:
            number = readNumber(text, "", false);
            if (!number || *number <= 0) return std::nullopt;
            v = peaking(typeStep) ? (std::log(*number) / std::log(kPeakingQBase) + 1) / 2
                                  : (std::log2(*number) + kOtherQShift) / 2;
            break;
    }
    if (!std::isfinite(v)) return std::nullopt;
    return static_cast<float>(std::clamp(v, 0.0, 1.0));
}

}  // namespace valuetext
