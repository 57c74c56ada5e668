#include "analyzer/Weighting.h"

#include "analyzer/BandFilterDesign.h"

namespace analyzer {
namespace {

// A- and C-weighting at the nominal one-third-octave frequencies 20 Hz ... 20 kHz, to 0.1 dB.
constexpr float kAWeighting[kBandCount] = {
    -50.5f, -44.7f, -39.4f, -34.6f, -30.2f, -26.2f, -22.5f, -19.1f, -16.1f, -13.4f, -10.9f,
    -8.6f,  -6.6f,  -4.8f,  -3.2f,  -1.9f,  -0.8f,  0.0f,   0.6f,   1.0f,   1.2f,   1.3f,
    1.2f,   1.0f,   0.5f,   -0.1f,  -1.1f,  -2.5f,  -4.3f,  -6.6f,  -9.3f};

constexpr float kCWeighting[kBandCount] = {
    -6.2f, -4.4f, -3.0f, -2.0f, -1.3f, -0.8f, -0.5f, -0.3f, -0.2f, -0.1f, 0.0f,
    0.0f,  0.0f,  0.0f,  0.0f,  0.0f,  0.0f,  0.0f,  0.0f,  -0.1f, -0.2f, -0.3f,
    -0.5f, -0.8f, -1.3f, -2.0f, -3.0f, -4.4f, -6.2f, -8.5f, -11.2f};

constexpr float kFlat[kBandCount] = {};

}  // namespace

Weighting weightingFromIndex(int index) {
    if (index == 1) return Weighting::a;
    if (index == 2) return Weighting::c;
    return Weighting::flat;
}

const float* weightingOffsets(Weighting weighting) {
    switch (weighting) {
        case Weighting::a: return kAWeighting;
        case Weighting::c: return kCWeighting;
        case Weighting::flat: break;
    }
    return kFlat;
}

}  // namespace analyzer
