// Cost of one redraw of the response plot in the off-screen editor, as the editor's idle pays it
// up to 40 times a second while the analyzer runs: the grid copied from its image, eight band
// curves and two totals of 453 points, 31 bars. "new_range" redraws the grid image as well, as
// every idle step of an AutoZoom easing does.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "gui/Editor.h"
#include "gui/plot/CPlot.h"
#include "plugin/Plugin.h"
#include "presets/Parameters.h"

namespace {

VstIntPtr quietHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

CPlot* findPlot(CFrame& frame) {
    for (int i = 0; i < frame.getNbViews(); ++i)
        if (frame.getView(i)->isTypeOf("CPlot")) return static_cast<CPlot*>(frame.getView(i));
    return nullptr;
}

void redrawPlot(benchmark::State& state, bool analyzer, bool newRange) {
    setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-bench", 0);
    Plugin plugin(&quietHost);
    for (int b = 0; b < params::kBands; ++b) {
        plugin.setParameter(params::kType + b, params::stepCentre(3, params::kBandTypeSteps));
        plugin.setParameter(params::kFreq + b, 0.1f + 0.1f * b);
        plugin.setParameter(params::kGain + b, b % 2 ? 0.7f : 0.35f);
    }
    plugin.setParameter(params::kSpan, analyzer ? 1.0f : 0.0f);
    Editor& editor = *plugin.getPluginEditor();
    editor.openOffscreen();
    CFrame& frame = *editor.getFrame();
    CPlot* plot = findPlot(frame);
    int i = 0;
    for (auto _ : state) {
        if (newRange) plot->setPlotRange((++i & 1) ? 0.25f : 0.5f);
        plot->setDirty();
        frame.redrawDirty();
    }
    editor.close();
}

BENCHMARK_CAPTURE(redrawPlot, analyzer_off, false, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(redrawPlot, analyzer_on, true, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(redrawPlot, analyzer_on_new_range, true, true)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
