#pragma once

/// One undoable step. The history owns it, may hold it in several entries, and destroys it once.
class VntCommand {
 public:
  /// Called once, when the command enters the history.
  virtual void execute() = 0;
  virtual void undo() = 0;
  virtual void redo() = 0;
  virtual ~VntCommand() = default;
};
