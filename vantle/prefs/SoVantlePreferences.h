#pragma once

#include <QDialog>
#include <QList>
#include <QString>
#include <memory>
#include <vector>

class QListWidgetItem;

namespace Ui {
class QPreferences;
}

/// One page of the preferences dialog. The page belongs to whoever made it.
struct Preferences {
  QWidget* page = nullptr;
  QString title;
  QObject* receiver = nullptr;
  /// Slots of the receiver in Qt's string form, SLOT(...); either may be null.
  char const* initSlot = nullptr; ///< makes the page read the settings
  char const* setSlot = nullptr;  ///< makes it write them
};

/// Asks one page to read its values.
class SenderObject : public QObject {
  Q_OBJECT
 public:
  void emitInitSignal() { Q_EMIT initSignal(); }
 Q_SIGNALS:
  void initSignal();
};

/// The pages of the panels and of the plug-ins in one modal dialog. It has no settings of its own, and gives
/// the pages back without a parent when it goes.
class SoVantlePreferences : public QDialog {
  Q_OBJECT
 public:
  /// Every page has read its values when this returns.
  explicit SoVantlePreferences(QList<Preferences> const& pages, QWidget* parent = nullptr,
                               char const* name = nullptr, Qt::WindowFlags flags = {});
  ~SoVantlePreferences() override;

  /// Makes the page at an index read its values again.
  void emitInitSignal(int index);

 public Q_SLOTS:
  void raiseWidget(QListWidgetItem* current, QListWidgetItem* previous);

 private:
  std::unique_ptr<Ui::QPreferences> m_form;
  std::vector<std::unique_ptr<SenderObject>> m_senders; // one a page
};
