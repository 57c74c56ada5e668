#include "plugin/ParameterTable.h"

#include <cstdio>
#include <cstring>

namespace params {
namespace {

struct Row {
    const char* name;
    int steps;
    float start;
};

// Indexes 0..5 and 70..84; the 64 band parameters follow their own patterns.
constexpr Row kHead[] = {
    {"Power", 2, 0.75f},    {"FAT", 2, 0.25f},        {"LR<>MS", 2, 0.25f},
    {"LinPhase", 2, 0.75f}, {"Resolution", 3, 1.0f / 6}, {"Output", 0, 0.5f},
};
constexpr Row kTail[] = {
    {"PlotRange", 0, 0.5f},         {"Channel", 3, 5.0f / 6},     {"SPAN", 2, 0.25f},
    {"SPANType", 16, 1.0f / 32},    {"SPANColor", 16, 1.0f / 32}, {"SPANSpeed", 16, 1.0f / 32},
    {"SPANMode", 16, 1.0f / 32},    {"SPANHold", 16, 1.0f / 32},  {"SPANResp", 16, 1.0f / 32},
    {"Solo", 256, 1.0f / 512},      {"AutoZoom", 2, 0.25f},       {"SPANDrive", 0, 1.0f / 3},
    {"SPANWidth", 16, 1.0f / 32},   {"SPANFilter", 16, 3.0f / 32}, {"Listen", 3, 1.0f / 6},
};
static_assert(sizeof kTail / sizeof kTail[0] == kListen - kPlotRange + 1);

constexpr const char* kBandNamePatterns[8] = {"FLT%d Type", "FLT%d TypeR", "FLT%d Freq", "FLT%d Freq R",
                                              "FLT%d Q",    "FLT%d Q R",   "FLT%d Gain", "FLT%d Gain R"};
// Start values of type, frequency (20 kHz), Q and gain (0 dB); the type's step is set apart
// (switched off) because value 0 alone would mean "on".
constexpr float kBandStart[4] = {0.0f, 1.0f, 0.5f, 0.5f};

const Row* row(int index) {
    if (index >= 0 && index < kType) return &kHead[index];
    if (index >= kPlotRange && index <= kListen) return &kTail[index - kPlotRange];
    return nullptr;
}

}  // namespace

bool bandParameter(int index, int& band, int& side, int& field) {
    if (index < kType || index >= kPlotRange) return false;
    const int offset = index - kType;
    field = offset / 16;
    side = (offset / 8) % 2;
    band = offset % 8;
    return true;
}

int stepCount(int index) {
    int band, side, field;
    if (bandParameter(index, band, side, field)) return field == 0 ? kBandTypeSteps : 0;
    const Row* r = row(index);
    return r ? r->steps : 0;
}

float startValue(int index) {
    int band, side, field;
    if (bandParameter(index, band, side, field)) return kBandStart[field];
    const Row* r = row(index);
    return r ? r->start : 0.0f;
}

void parameterName(int index, char* text) {
    int band, side, field;
    if (bandParameter(index, band, side, field)) {
        std::snprintf(text, 16, kBandNamePatterns[field * 2 + side], band + 1);
    } else if (const Row* r = row(index)) {
        std::snprintf(text, 16, "%s", r->name);
    } else if (index > kListen) {
        std::snprintf(text, 16, "dummy");
    }
}

bool automatable(int index) { return index == kPower || (index >= kOutput && index < kPlotRange); }

void describeSteps(int index, VstParameterProperties& p) {
    auto integerSteps = [&p](int maxInteger) {
        p.flags = kVstParameterUsesIntStep;
        p.minInteger = 0;
        p.maxInteger = maxInteger;
        p.stepInteger = 1;
        p.largeStepInteger = 1;
    };
    switch (index) {
        case kPower: case kFat: case kLrMs: case kLinPhase: case kAutoZoom:
            integerSteps(1);
            break;
        case kResolution: case kChannel:
            integerSteps(2);
            break;
        case kSpan: case kSpanColor: case kSpanSpeed: case kSpanMode: case kSpanHold: case kSpanWidth:
        case kSpanFilter:
            integerSteps(15);
            break;
        case kOutput:
            p.flags = kVstParameterUsesFloatStep;
            p.stepFloat = 1.0f / 24.0f;
            p.smallStepFloat = 1.0f / 240.0f;
            break;
        default:
            if (index >= kType && index < kFreq) {
                integerSteps(kBandTypeSteps - 1);
            } else {
                p.flags = kVstParameterUsesFloatStep;
                p.stepFloat = 0.01f;
                p.smallStepFloat = 0.0001f;
            }
            break;
    }
}

}  // namespace params
