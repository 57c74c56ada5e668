// The texts a host (and the editor) shows for each parameter.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "plugin/ParameterTable.h"
#include "plugin/Plugin.h"

using namespace params;

namespace {

// A buffer that starts with these four bytes asks for the text of the float that follows
// them instead of the parameter's current value; the editor uses it to show a value before
// it is set.
constexpr uint32_t kPreviewMagic = 0x44414531;

constexpr int kTextLimit = 16;
constexpr int kFloat2StringLimit = 12;

constexpr const char* kBandTypeTexts[7] = {"LOWCUT 12dB/oct", "LOWCUT 24dB/oct", "LOWSHELF", "PEAKING",
                                           "HIGHSHELF",       "HICUT 12dB/oct",  "HICUT 24dB/oct"};
constexpr const char* kOnOff[2] = {"OFF", "ON"};
constexpr const char* kLrMsTexts[2] = {"LR", "MS"};
constexpr const char* kResolutionTexts[3] = {"LOW", "MED", "HIGH"};
constexpr const char* kChannelTexts[3] = {"LEFT", "RIGHT", "LINK"};
constexpr const char* kSpanColorTexts[4] = {"GREY", "CYAN", "BROWN", "RAINBOW"};
constexpr const char* kSpanSpeedTexts[5] = {"FAST", "MEDIUM", "SLOW", "MED/FAST", "SLOW/MED"};
constexpr const char* kSpanModeTexts[2] = {"PEAK", "AVERAGE"};
constexpr const char* kSpanHoldTexts[6] = {"OFF", "500ms", "1000ms", "2000ms", "5000ms", "INFINITE"};
constexpr const char* kSpanRespTexts[3] = {"FLAT", "A-WGHTD", "C-WGHTD"};
constexpr const char* kSpanWidthTexts[3] = {"WIDE", "MEDIUM", "NARROW"};
constexpr const char* kSpanFilterTexts[2] = {"RESP", "SELECT"};
constexpr const char* kListenTexts[3] = {"OFF", "L(M)", "R(S)"};

void put(char* text, const char* s) { std::snprintf(text, kTextLimit, "%s", s); }

// Writes names[k] when k is one of them, otherwise the fallback (nothing when it is null).
void pickFrom(char* text, const char* const* names, int count, int k, const char* fallback) {
    if (k >= 0 && k < count) put(text, names[k]);
    else if (fallback) put(text, fallback);
}
template <int N>
void pick(char* text, const char* const (&names)[N], int k, const char* fallback) {
    pickFrom(text, names, N, k, fallback);
}

void bandTypeText(char* text, int k) {
    if (k >= 0 && k < kFirstBypassType) put(text, kBandTypeTexts[k]);
    else if (k >= kFirstBypassType && k < kBandTypeSteps) put(text, "BYPASS");
}

// A peaking band's Q spans 0.05..20, every other shape's 0.354..1.414.
double qValue(int typeStep, double v) {
    const bool peaking = typeStep == 3 || typeStep == 10;
    return peaking ? std::pow(20.0, 2.0 * v - 1.0) : std::pow(2.0, 2.0 * v - 1.5);
}

double spanDriveDb(float v) { return static_cast<double>(v) * 36.0 - 12.0; }
float plotRangeDb(float v) { return static_cast<float>(6.0 * std::pow(2.0, 2.0 - 3.0 * static_cast<double>(v))); }

}  // namespace

void Plugin::getParameterName(VstInt32 index, char* text) { parameterName(index, text); }

void Plugin::getParameterLabel(VstInt32 index, char* label) {
    if (index >= kFreq && index < kQ) put(label, "Hz");
    else if (index == kOutput || (index >= kGain && index < kPlotRange) || index == kPlotRange) put(label, "dB");
}

void Plugin::getParameterDisplay(VstInt32 index, char* text) {
    uint32_t magic;
    std::memcpy(&magic, text, sizeof magic);
    if (magic == kPreviewMagic) {
        float v;
        std::memcpy(&v, text + 4, sizeof v);
        if (previewText(index, admitted(v).value_or(0.0f), text)) return;
    }
    currentText(index, text);
}

// Text of a value that is not (yet) the parameter's own. False where the parameter has no
// preview, so that the current value's text is written instead.
bool Plugin::previewText(int index, float v, char* text) {
    int b, side, field;
    if (bandParameter(index, b, side, field)) {
        switch (field) {
            case kTypeField: bandTypeText(text, quantize(v, kBandTypeSteps)); break;
            case kFreqField: std::snprintf(text, kTextLimit, "%.0f", bandFrequencyHz(v)); break;
            case kQField: std::snprintf(text, kTextLimit, "%.1f", qValue(bandModel.band(side, b).bandType, v)); break;
            case kGainField: std::snprintf(text, kTextLimit, "%.1f", 2.0 * bandDesignGainDb(v)); break;
        }
        return true;
    }
    switch (index) {
        case kPower: case kFat: case kLinPhase: case kAutoZoom: put(text, kOnOff[quantize(v, 2)]); return true;
        case kLrMs: put(text, kLrMsTexts[quantize(v, 2)]); return true;
        case kResolution: put(text, kResolutionTexts[quantize(v, 3)]); return true;
        case kOutput: float2string(outputGainDb(v), text, kFloat2StringLimit); return true;
        case kPlotRange: float2string(plotRangeDb(v), text, kFloat2StringLimit); return true;
        case kChannel: put(text, kChannelTexts[quantize(v, 3)]); return true;
        case kSpanType: put(text, quantize(v, 16) == 0 ? "1/3 OCT" : "n/a"); return true;
        case kSpanColor: pick(text, kSpanColorTexts, quantize(v, 16), "undef"); return true;
        case kSpanSpeed: pick(text, kSpanSpeedTexts, quantize(v, 16), "undef"); return true;
        case kSpanMode: pick(text, kSpanModeTexts, quantize(v, 16), "undef"); return true;
        case kSpanHold: pick(text, kSpanHoldTexts, quantize(v, 16), "undef"); return true;
        case kSpanResp: pick(text, kSpanRespTexts, quantize(v, 16), "undef"); return true;
        case kSpanWidth: pick(text, kSpanWidthTexts, quantize(v, 16), "undef"); return true;
        case kSpanDrive: std::snprintf(text, kTextLimit, "%+.1fdB", spanDriveDb(v)); return true;
        default: return false;
    }
}

void Plugin::currentText(int index, char* text) {
    int b, side, field;
    if (bandParameter(index, b, side, field)) {
        const dsp::BandSettings& band = bandModel.band(side, b);
        switch (field) {
            case kTypeField: bandTypeText(text, steps[index]); break;
            case kFreqField: std::snprintf(text, kTextLimit, "%.0f", band.frequency); break;
            case kQField: std::snprintf(text, kTextLimit, "%.1f", qValue(band.bandType, band.q)); break;
            case kGainField: std::snprintf(text, kTextLimit, "%.0f", 2.0 * bandDesignGainDb(parameters.value(index))); break;
        }
        return;
    }
    const int k = (index >= 0 && index < kUsedParameters) ? static_cast<int>(steps[index]) : 0;
    switch (index) {
        case kPower: case kFat: case kLinPhase: case kAutoZoom: pick(text, kOnOff, k, nullptr); break;
        case kLrMs: pick(text, kLrMsTexts, k, nullptr); break;
        case kResolution: pick(text, kResolutionTexts, k, nullptr); break;
        case kOutput: float2string(outputGainDb(parameters.value(kOutput)), text, kFloat2StringLimit); break;
        case kPlotRange: float2string(plotRangeDb(parameters.value(kPlotRange)), text, kFloat2StringLimit); break;
        case kChannel: pick(text, kChannelTexts, link.channel() - 1, "unknown"); break;
        case kSpanType: put(text, k == 0 ? "1/3 OCT" : "n/a"); break;
        case kSpanColor: pick(text, kSpanColorTexts, k, "undef"); break;
        case kSpanSpeed: pick(text, kSpanSpeedTexts, k, "undef"); break;
        case kSpanMode: pick(text, kSpanModeTexts, k, "undef"); break;
        case kSpanHold: pick(text, kSpanHoldTexts, k, "undef"); break;
        case kSpanResp: pick(text, kSpanRespTexts, k, "undef"); break;
        case kSolo: put(text, "---"); break;
        case kSpanDrive: std::snprintf(text, kTextLimit, "%+.1fdB", spanDriveDb(parameters.value(kSpanDrive))); break;
        case kSpanWidth: pick(text, kSpanWidthTexts, k, "undef"); break;
        case kSpanFilter: pick(text, kSpanFilterTexts, k, "undef"); break;
        case kListen: pick(text, kListenTexts, k, "undef"); break;
        default: break;  // SPAN and the spare slots leave the host's buffer as it was
    }
}
