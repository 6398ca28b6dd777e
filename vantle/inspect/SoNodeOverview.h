#pragma once

#include <QTimer>
#include <QWidget>

#include "kestrava/sensors/SoNodeSensor.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class SoFieldContainer;
class SoNode;
class SoNodeOverviewList;

/// One container in full: name, address and id above its list of fields.
class SoNodeOverview : public QWidget {
  Q_OBJECT
 public:
  explicit SoNodeOverview(QWidget* parent = nullptr, char const* name = nullptr, Qt::WindowFlags flags = {});
  SoNodeOverview(SoFieldContainer* container, SoNode* kit, QWidget* parent = nullptr,
                 char const* name = nullptr, Qt::WindowFlags flags = {});
  ~SoNodeOverview() override;

  /// `kit`: the node kit that the container may be a part of; null when there is none.
  void setSceneNode(SoFieldContainer* container, SoNode* kit);
  void clear();
  /// Null when nothing is shown, or when what was shown is gone.
  SoFieldContainer* getAttachedNode() const { return m_container; }
  SoNodeOverviewList* getList() const { return m_list; }
  QPushButton* getWatchButton() const { return m_watchButton; }
  static QString getNodeOverviewPreferencesPath() { return QStringLiteral("/NodeOverviewPreferences/"); }
  static void nodeSensorCB(void* overview, SoSensor* sensor);

 public Q_SLOTS:
  void nameEdited(QString const& text);
  void overrideButtonStateChanged();
  /// Empties the name box, whatever the name.
  void nodeNameChanged(QString const& name);
  void languageChange();

 Q_SIGNALS:
  /// The shown node goes, or has got another name.
  void containerDied();
  void containerRenamed();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  static void containerDiesCB(void* overview, SoSensor* sensor);
  void initClass();
  void showName(SoNode* kit);
  void showId();
  void idChanged();
  void showState();

  SoFieldContainer* m_container = nullptr;
  SoNodeSensor m_sensor;
  QTimer m_idPause; // runs while the shown id stays
  bool m_idIsOld = false;
  QLabel* m_nodeNameLabel = nullptr;
  QLineEdit* m_nodeNameValue = nullptr;
  QLabel* m_nodeNetNameLabel = nullptr; // only in a host's launch mode
  QLabel* m_adressLabel = nullptr;
  QLabel* m_nodeIdLabel = nullptr;
  QCheckBox* m_overrideCheckBox = nullptr;
  QCheckBox* m_showChangedCheckBox = nullptr;
  QPushButton* m_watchButton = nullptr;
  SoNodeOverviewList* m_list = nullptr;
};
