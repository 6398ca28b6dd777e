#pragma once

#include <QObject>

class SoField;
class SoFieldContainer;
class SoGuiRenderArea;
class SoNode;
class SoSceneManager;
class VntCommand;

/// The data side of the inspector as plug-ins see it: scene, selection, undoable commands. GUI thread only.
class VntServices : public QObject {
  Q_OBJECT
 public:
  /// Null while no session exists.
  static VntServices* getInstance() { return m_instance; }

  /// Runs the command and takes it over into the undo history.
  virtual void execute(VntCommand* command) = 0;
  /// Root of the inspected scene; null when there is none.
  virtual SoNode* getSceneGraph() const = 0;
  virtual SoField* getSelectedField() const = 0;
  virtual SoFieldContainer* getSelectedNode() const = 0;
  virtual void redo() = 0;
  virtual void setSceneGraph(SoNode* root) = 0;
  /// Null: no field is selected any more.
  virtual void setSelectedField(SoField* field) = 0;
  virtual void setSelectedNode(SoFieldContainer* node) = 0;
  virtual void undo() = 0;
  virtual SoSceneManager* getSceneManager() const = 0;
  virtual int isStandaloneApplication() const = 0;
  virtual SoGuiRenderArea* getRenderArea() const = 0;

 Q_SIGNALS:
  // Each is sent when the new value is already in place.
  void sceneGraphChanged(SoNode* root);
  void selectedNodeChanged(SoFieldContainer* node);
  void selectedFieldChanged(SoField* field);
  /// The user wants to edit the selected field now: he has double-clicked its row or pressed Enter on it.
  void fieldActivated(SoField* field);

 protected:
  using QObject::QObject;
  static VntServices* m_instance;
};
