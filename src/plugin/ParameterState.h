#pragma once
// The normalized value of each of the plug-in's parameters and the step of each stepped one.
// The audio thread and the texts read them while other threads set them, so every field is a
// relaxed atomic: each is meaningful on its own.

#include "plugin/RelaxedAtomic.h"
#include "presets/Parameters.h"

class ParameterState {
public:
    class Steps {
    public:
        int operator[](int index) const { return steps_[index]; }

    private:
        friend class ParameterState;
        RelaxedAtomic<int> steps_[params::kUsedParameters] = {};
    };

    // Every parameter at its start value; every band type's step says switched off.
    ParameterState();

    float value(int index) const { return values_[index]; }
    const Steps& steps() const { return steps_; }

    void setValue(int index, float value) { values_[index] = value; }
    // The step of a stepped parameter follows value; a continuous one has none.
    void setStepFrom(int index, float value);

private:
    RelaxedAtomic<float> values_[params::kUsedParameters] = {};
    Steps steps_;
};
