#pragma once

#include "kestrava/io/SoOutput.h"

class SoNode;
class SoPath;

/// Writes graphs to its output, in the form that the output has, which is opened before and closed afterwards by the caller:
///
///     SoWriteAction action;
///     bool ok = action.getOutput()->openFile("scene.kv");
///     action.apply(root);
///     ok = action.getOutput()->closeFile() && ok;
class SoWriteAction {
 public:
  SoWriteAction() : m_output(&m_ownOutput) {}
  /// Writes to an output of the caller, which outlives the action.
  explicit SoWriteAction(SoOutput* output) : m_output(output) {}

  SoOutput* getOutput() const { return m_output; }
  /// Writes the header, if nothing was written yet, and the graph. A fault is kept by the output. A file in
  /// binary form holds what one call writes.
  void apply(SoNode* root);
  /// Writes what lies at and below the head of a path.
  void apply(SoPath* path);

 private:
  SoOutput m_ownOutput;
  SoOutput* m_output;
};
