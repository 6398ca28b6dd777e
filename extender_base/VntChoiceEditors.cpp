#include "extender_base/VntEditorTable.h"

void addChoiceEditors(VntEditorTable&) {}
