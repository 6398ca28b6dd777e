#pragma once

#include "kestrava/base/SbString.h"

/// Names of files and what they stand for.
class SbFileHelper {
 public:
  SbFileHelper() = delete;

  /// Replaces $NAME and ${NAME} by the preference or environment variable of that name, by nothing when there
  /// is none. A $ without a name stays.
  static SbString expandString(SbString const& text);

  /// The folder, ending with a separator, so that a name can be appended: "./" for a bare name.
  static SbString getDirName(SbString const& path);
  /// What follows the last separator.
  static SbString getBaseName(SbString const& path);
  /// What follows the last dot of the base name, without it; empty when there is no dot.
  static SbString getExtension(SbString const& path);
  /// With / for every backslash.
  static SbString toUnixPath(SbString const& path);
  static bool isAbsolute(SbString const& path);
  /// Against the working folder, with "." and ".." resolved by text alone.
  static SbString toAbsolutePath(SbString const& path);

  static bool exists(SbString const& path);
  /// True for a file, not a folder, that this process may read.
  static bool isReadable(SbString const& path);
  /// True for a file that may be read and for a folder that may be listed and entered.
  static bool isAccessible(SbString const& path);
};
