// The editor's response plot and its settings and information pages: where the plot sits, how
// parameter values reach it and what it asks of the editor.

#include "gui/Editor.h"

void Editor::buildPlot(CFrame* /*frame*/) {}

void Editor::releasePlot() {}

void Editor::showPlotParameter(int /*index*/, float /*value*/) {}

void Editor::idlePlot(uint32_t /*elapsedMs*/) {}

void Editor::infoClicked() {}

void Editor::clearHeldBars() {}

void Editor::showSettingsPage() {}

void Editor::plotHoverBand(int /*band*/) {}

void Editor::plotSelectBand(int /*band*/) {}
