#include "gui/Editor.h"

Editor::Editor(AudioEffect* effect) : CExtendedListener(effect) { rect = ERect{0, 0, kHeight, kWidth}; }

bool Editor::open(void* /*parentWindow*/) { return false; }

void Editor::close() {}
