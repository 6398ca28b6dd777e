// Editors for fields of many values: one table for all of them.

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntTableEditor.h"

void addTableEditors(VntEditorTable& table) {
  struct Entry {
    char const* type;
    char const* info;
  };
  static constexpr Entry ENTRIES[] = {
      {"MField", "Any number of values"},
      {"MFColor", "Colours"},
      {"MFFloat", "Numbers"},
      {"MFInt32", "Whole numbers"},
      {"MFMatrix", "Matrices"},
      {"MFPlane", "Planes"},
      {"MFRotation", "Rotations"},
      {"MFShort", "Whole numbers of 16 bits"},
      {"MFString", "Texts"},
      {"MFUInt32", "Whole numbers that are not negative"},
      {"MFUShort", "Whole numbers of 16 bits that are not negative"},
      {"MFVec2f", "Vectors of two numbers"},
      {"MFVec2i32", "Vectors of two whole numbers"},
      {"MFVec2s", "Vectors of two whole numbers of 16 bits"},
      {"MFVec3f", "Vectors of three numbers"},
      {"MFVec4f", "Vectors of four numbers"},
  };
  for (Entry const& entry : ENTRIES) table.push_back({entry.type, entry.info, makeEditor<VntTableEditor>});
}
