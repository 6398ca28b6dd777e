#include "extender_base/VntEditorTable.h"

void addColorEditors(VntEditorTable&) {}
