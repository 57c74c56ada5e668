#include "plugin/AnalyzerSettings.h"

#include "analyzer/SPAN.h"
#include "presets/Parameters.h"

using namespace params;

void applyAnalyzerSetting(SPAN& analyzer, int index, int step) {
    switch (index) {
        case kSpan:
            if (step == 1) analyzer.reset();
            break;
        case kSpanSpeed: analyzer.setSpeed(step); break;
        case kSpanMode: analyzer.setMode(step); break;
        case kSpanResp: analyzer.setWeighting(step); break;
        case kSpanFilter: analyzer.setFilterOrder(step == 0 ? 2 : 6); break;
        default: break;
    }
}
