#pragma once

#include <QTimer>
#include <QWidget>

#include <kestrava/sensors/SoNodeSensor.h>

#include "SceneCount.h"

class QLabel;
class QTreeWidget;
class SoFieldContainer;

/// Shows what there is in a node and below it, and follows every change there. While nobody sees it, it does
/// not look.
class StatisticsPanel : public QWidget {
  Q_OBJECT
 public:
  explicit StatisticsPanel(QWidget* parent = nullptr);

  /// Null, or what is no node: nothing is shown.
  void setNode(SoFieldContainer* container);
  /// Takes the settings anew.
  void updateSettings();
  void copyToClipboard() const;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  static void nodeChangedCB(void* panel, SoSensor*);
  static void nodeDiesCB(void* panel, SoSensor*);
  void countNow();
  void showCount();
  void showTitle();

  // Takes no reference to the node: the statistics keep nothing alive that the scene has let go.
  SoNodeSensor m_sensor;
  QTimer m_timer;     // however often the scene changes, it is counted a few times a second
  SceneCount m_count; // what is shown
  QLabel* m_icon;
  QLabel* m_title;
  QLabel* m_summary;
  QTreeWidget* m_table;
};
