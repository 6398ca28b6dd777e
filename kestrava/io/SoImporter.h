#pragma once

#include <functional>
#include <string_view>

#include "kestrava/base/SbString.h"
#include "kestrava/nodes/SoNode.h"

/// Turns files of other programs into scene graphs; SoDB::readAll() asks the importers for what is no scene
/// file of the toolkit's own.
class SoImporter {
 public:
  struct File {
    SbString name;      ///< full name, or that of an in-memory file
    SbString innerName; ///< without what names the compression
    bool isPacked;      ///< compressed as a whole
  };

  virtual ~SoImporter() = default;

  /// True when it reads such files: by their first bytes (of compressed files those of the contents) where
  /// these tell, else by the inner name.
  virtual bool takes(File const& file, std::string_view beginning) const = 0;
  /// The root, or null with the reason in `fault`. `progress` is to be called with 0 to 100, on this thread.
  virtual SoRef<SoNode> read(File const& file, std::function<void(double)> const& progress,
                             SbString& fault) const = 0;

  // The importers are asked in the order in which they were added. They belong to the caller, who removes
  // them while nobody reads. Any thread.
  static void add(SoImporter const* importer);
  static void remove(SoImporter const* importer);
  /// Reads an existing file that is no scene file. Null with the reason in `fault`; that is empty when nobody
  /// takes such a file.
  static SoRef<SoNode> readFile(SbString const& name, std::function<void(double)> const& progress,
                                SbString& fault);
};
