#include "extender_base/VntEditorTable.h"

void addVectorEditors(VntEditorTable&) {}
