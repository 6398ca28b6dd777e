#pragma once

#include <QObject>

class QContextMenuEvent;

/// What a panel does with the shared actions of the main frame while it has the focus.
class SoVantleState : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;
  virtual void activate() = 0;
  /// The spelling is that of those who derive from it.
  virtual void desactivate() = 0;
  /// Shows a menu at the pointer and runs it.
  virtual void createContextPopupMenu(QContextMenuEvent* event) = 0;
};
