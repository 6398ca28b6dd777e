#pragma once

#include "kestrava/base/SbString.h"

/// Brings optional extension modules of the toolkit in and out by name. Module NAME is the library
/// "libqor_NAME.so" beside the toolkit's own; when it has plain functions "qor_NAME_init" and
/// "qor_NAME_finish", without arguments, they are called. For the GUI thread.
class SoModuleTool {
 public:
  SoModuleTool() = delete;

  /// False when there is no such module, which is no error. Calls are counted: the first one initialises.
  static bool initModule(SbString const& name);
  /// False when the module is not initialised. The last of as many calls as there were of initModule()
  /// finishes; the library stays loaded, because types that it registered stay.
  static bool finishModule(SbString const& name);
};
