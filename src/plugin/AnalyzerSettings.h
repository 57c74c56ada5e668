#pragma once
// What the analyzer parameters change in the analyzer itself. Hold, width, type, colour and
// drive are the plot's business and change nothing here.

class SPAN;

// index is a parameter index, step its current step.
void applyAnalyzerSetting(SPAN& analyzer, int index, int step);
