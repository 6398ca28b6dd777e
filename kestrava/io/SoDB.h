#pragma once

#include <cstdint>
#include <vector>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoBase.h"

class SoInput;
class SoNode;

/// The toolkit as a whole: starting and ending, reading scenes, and the lock that keeps changes of graphs and
/// traversals in other threads apart.
class SoDB {
 public:
  SoDB() = delete;

  /// Neither is needed before anything else may be used, and each may be called any number of times.
  static void init();
  static void finish();
  static bool isInitialized();

  /// Reads everything that an open stream holds: a scene file of the toolkit's own, or a file that an importer
  /// takes (see SoImporter). The root has count 0: the one top-level Separator of the file, else a Separator
  /// above all its top-level nodes, which `hasAddedRoot` tells. Null after a fault, which is posted as a read
  /// error, once.
  static SoNode* readAll(SoInput* in, bool* hasAddedRoot = nullptr);

  /// Full names of the files that this thread is reading, the outermost first: a file that is read may include
  /// others.
  static std::vector<SbString> const& getFilesBeingRead();
  /// Reads a file for a node that shows its contents. The name is looked for beside the last of the
  /// `includers` (the files that the node stems from, the outermost first) and then in the search path. Null
  /// after a fault, a file among the includers being one too; it is posted as one read error, which names both
  /// files. While another file is being read, a file that is included again gives the same root again.
  static SoRef<SoNode> readIncluded(SbString const& name, std::vector<SbString> includers, SbString& fullName);
  /// As deep as files may include files.
  static constexpr int MAX_INCLUDES = 100;

  // One lock for all graphs. Whoever changes a graph that other threads traverse holds the write lock;
  // traversals in other threads than the changing one hold the read lock. Both are recursive, and whoever holds
  // the write lock gets the read lock at once. A reader that asks for the write lock waits for the other
  // readers: two of them at a time would wait for each other.
  static void writelock();
  static void writeunlock();
  static void readlock();
  static void readunlock();
};
