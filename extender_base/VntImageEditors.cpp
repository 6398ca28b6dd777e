#include "extender_base/VntEditorTable.h"

void addImageEditors(VntEditorTable&) {}
