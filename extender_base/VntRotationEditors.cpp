#include "extender_base/VntEditorTable.h"

void addRotationEditors(VntEditorTable&) {}
