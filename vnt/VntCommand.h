#pragma once

#include "kestrava/base/SbString.h"

/// One undoable step. The history owns it, may hold it in several entries, and destroys it once.
class VntCommand {
 public:
  /// Called once, when the command enters the history.
  virtual void execute() = 0;
  virtual void undo() = 0;
  virtual void redo() = 0;
  virtual ~VntCommand() = default;

  /// What it does, for the user, e.g. "Set translation of Transform \"wheel\""; empty when it does not say.
  SbString const& getText() const { return m_text; }

 protected:
  void setText(SbString const& text) { m_text = text; }

 private:
  SbString m_text;
};
