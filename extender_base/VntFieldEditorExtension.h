#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <unordered_map>

#include "kestrava/base/SoType.h"
#include "vnt/VntExtension.h"

class QDockWidget;
class QWidget;
class SoField;
class VntFieldEditor;
class VntFieldEditorPanel;

/// The extension "Field Editor": a dock that shows an editor for the selected field, made by the extension
/// that is controlled for its type. F6 moves the keyboard focus into it and back to where it was.
class VntFieldEditorExtension : public QObject, public VntExtension {
  Q_OBJECT
 public:
  ~VntFieldEditorExtension() override;

  SbString getName() const override { return "Field Editor"; }
  SbString getInfo() const override { return "Field Editor"; }
  void activate() override;
  void deactivate() override;
  /// Field editors only; of two for one type the later one is asked first.
  bool addControlled(VntExtension* controlled) override;
  void show() override;
  void hide() override;

 private:
  void selectField(SoField* field);
  void giveKeys();
  void switchKeys();

  std::unordered_map<SoType, QList<VntFieldEditor*>> m_editors; // the plug-ins', in the order of asking
  QPointer<QDockWidget> m_dock;
  QPointer<VntFieldEditorPanel> m_panel; // the dock's
  QPointer<QWidget> m_before;            // what had the keyboard before F6 gave it to the editor
};
