#include "vantle/session/VantleDefaults.h"

#include "kestrava/io/SoInput.h"

namespace {

// Editors are matched to field types by these names, in this order.
constexpr char const* EDITORS[] = {
    "MFColor",   "MField",   "MFFloat",  "MFInt32",   "MFMatrix",  "MFPlane",    "MFRotation", "MFShort",
    "MFString",  "MFUInt32", "MFUShort", "MFVec2f",   "MFVec2i32", "MFVec2s",    "MFVec3f",    "MFVec4f",
    "SFBitMask", "SFBool",   "SFBox2f",  "SFBox3s",   "SFColor",   "SFEnum",     "SFFloat",    "SFImage",
    "SFInt32",   "SField",   "SFMatrix", "SFName",    "SFPlane",   "SFRotation", "SFShort",    "SFString",
    "SFUInt32",  "SFUShort", "SFVec2f",  "SFVec2i32", "SFVec2s",   "SFVec3f",    "SFVec4f"};

} // namespace

SbString VantleDefaults::text() {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<configuration>\n"
      "<plugins>\n"
      "<loadPlugin file=\"qor_vantle_extender_base\"/>\n"
      "</plugins>\n"
      "<profiles default=\"Defaults\">\n"
      "<profile name=\"Defaults\">\n"
      "<activeExtension plugin=\"VntDefaults\" extension=\"Field Editor\">\n";
  for (char const* editor : EDITORS) {
    text += "<controlledExtension plugin=\"VntDefaults\" extension=\"" + std::string(editor) + "\"/>\n";
  }
  text +=
      "</activeExtension>\n"
      "</profile>\n"
      "</profiles>\n"
      "</configuration>\n";
  return text;
}

void VantleDefaults::init() { SoInput::addInMemoryTextFile(FILE_NAME, text()); }
