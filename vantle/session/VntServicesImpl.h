#pragma once

#include <memory>

#include "kestrava/base/SoBase.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoNodeSensor.h"
#include "vnt/VntServices.h"

class SoCommandManager;
class SoSelection;

/// The inspector's side of VntServices; holds the command manager.
class VntServicesImpl : public VntServices {
  Q_OBJECT
 public:
  static void createInstance();
  /// Created on first use.
  static VntServicesImpl* getImplInstance();
  static bool isInstance() { return m_instance; }
  static void releaseInstance();

  void execute(VntCommand* command) override;
  SoNode* getSceneGraph() const override;
  /// Null once the field has died, like the next one.
  SoField* getSelectedField() const override { return m_fieldSensor.getAttachedField(); }
  SoFieldContainer* getSelectedNode() const override { return m_nodeSensor.getAttachedContainer(); }
  void redo() override;
  void setSceneGraph(SoNode* root) override;
  void setSelectedField(SoField* field) override;
  void setSelectedNode(SoFieldContainer* node) override;
  void undo() override;
  SoSceneManager* getSceneManager() const override { return m_sceneManager; }
  int isStandaloneApplication() const override { return m_standalone; }
  SoGuiRenderArea* getRenderArea() const override { return m_renderArea; }

  void setIsStandaloneApplication(int standalone) { m_standalone = standalone; }
  void setRenderArea(SoGuiRenderArea* area, bool isGiven = false) {
    m_renderArea = area;
    m_renderAreaGiven = isGiven;
  }
  /// Whether the session was started on the render area, and not on a scene manager that it shows.
  bool isRenderAreaGiven() const { return m_renderAreaGiven; }
  void setSceneManager(SoSceneManager* manager) { m_sceneManager = manager; }
  SoCommandManager* getCommandManager() const { return m_commandManager.get(); }

  /// The scene manager draws anew when this selection changes; null: on no selection.
  void redrawOnSelectionChange(SoSelection* selection);

  /// Whether selecting a row also selects in the 3D view.
  bool isSelectionAllowed() const { return m_selectionAllowed; }
  void setSelectionAllowed(bool on) { m_selectionAllowed = on; }
  /// In pixels.
  float getPickRadius() const { return m_pickRadius; }
  void setPickRadius(float pixels) { m_pickRadius = pixels; }

 private:
  VntServicesImpl();
  ~VntServicesImpl() override;
  static void selectionChangeCB(void* data, SoSelection* selection);
  static void selectedNodeDiesCB(void* data, SoSensor* sensor);
  static void selectedFieldDiesCB(void* data, SoSensor* sensor);

  std::unique_ptr<SoCommandManager> m_commandManager;
  // They hold what is selected, without a reference.
  SoFieldSensor m_fieldSensor;
  SoNodeSensor m_nodeSensor;
  SoNode* m_sceneGraph = nullptr;
  SoRef<SoSelection> m_selection;
  SoGuiRenderArea* m_renderArea = nullptr;
  bool m_renderAreaGiven = false;
  SoSceneManager* m_sceneManager = nullptr;
  int m_standalone = 0;
  bool m_selectionAllowed = true;
  float m_pickRadius = 5.0f;
};
