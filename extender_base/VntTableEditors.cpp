#include "extender_base/VntEditorTable.h"

void addTableEditors(VntEditorTable&) {}
