// The editor's value controls: the header above the plot, the jog and the edit knobs; where
// they sit, how parameter values reach them and what their callbacks do.

#include "gui/Editor.h"

void Editor::buildValueControls(CFrame* /*frame*/) {}

void Editor::releaseValueControls() {}

void Editor::showValueControlsParameter(int /*index*/, float /*value*/) {}

void Editor::valueControlChanged(CControl* /*control*/) {}

void Editor::idleValueControls(uint32_t /*elapsedMs*/) {}

void Editor::hoverBand(int band, int /*flag*/) { plotHoverBand(band); }

void Editor::selectBand(int band) { plotSelectBand(band); }

void Editor::setFocusBand(int /*band*/) {}

void Editor::showDrive(float /*dB*/) {}
