#include "plugin/ParameterState.h"

#include "plugin/ParameterTable.h"

using namespace params;

ParameterState::ParameterState() {
    for (int i = 0; i < kUsedParameters; ++i) {
        values_[i] = startValue(i);
        setStepFrom(i, values_[i]);
    }
    // Type value 0 alone would mean a low cut switched on.
    for (int side = 0; side < 2; ++side)
        for (int b = 0; b < kBands; ++b) steps_.steps_[bandIndex(0, side, b)] = kFirstBypassType;
}

void ParameterState::setStepFrom(int index, float value) {
    if (const int n = stepCount(index)) steps_.steps_[index] = quantize(value, n);
}
