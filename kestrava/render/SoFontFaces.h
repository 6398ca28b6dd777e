#pragma once

#include <ft2build.h>

#include <map>
#include <mutex>
#include <string>
#include FT_FREETYPE_H

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"

/// The font files that the program has opened, for as long as it runs. FreeType's faces serve one thread at a
/// time: the lock is held while one is used.
class SoFontFaces {
 public:
  static SoFontFaces& instance();
  std::unique_lock<std::mutex> lock() { return std::unique_lock(m_mutex); }

  /// The font that fontconfig knows by a name ("Family", "Family:Bold"), or that the name is the file of;
  /// where there is none, the system's that comes nearest, and `error` says so the first time that the name
  /// is asked for. Null when there is no font at all; `error` then says so every time.
  FT_Face find(SbName const& name, SbString& error);

 private:
  FT_Face open(std::string const& name, SbString& error);

  std::mutex m_mutex;
  FT_Library m_library = nullptr;
  std::map<SbString, FT_Face> m_byFile;
  std::map<std::string, FT_Face> m_byName;
};
