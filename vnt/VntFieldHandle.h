#pragma once

#include <memory>

class SoField;

/// A field that somebody will come back to later, as a command of the history does. It holds no reference, so that
/// a history leaves the reference counts of a scene alone: when the field goes, the handle knows. GUI thread only.
class VntFieldHandle {
 public:
  /// All handles of one field share one sensor on it.
  explicit VntFieldHandle(SoField* field);
  /// Null once the field is gone.
  SoField* get() const;
  /// At the end of a session: every handle is as if its field had gone, whoever still holds it.
  static void releaseAll();

 private:
  struct Watch;
  std::shared_ptr<Watch> m_watch;
};
