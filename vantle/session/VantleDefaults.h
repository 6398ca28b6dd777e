#pragma once

#include "kestrava/base/SbString.h"

/// The plug-in configuration that is used when no file brings one.
class VantleDefaults {
 public:
  /// Name of the in-memory file that the text is registered under.
  static constexpr char FILE_NAME[] = "VntMinimal_xml.h";
  static SbString text();
  /// Registers the text with the toolkit; again and again if need be.
  static void init();
};
