#include "extender_base/VntEditorTable.h"

void addNumberEditors(VntEditorTable&) {}
