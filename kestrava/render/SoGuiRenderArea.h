#pragma once

#include "kestrava/fields/SoSFFieldContainer.h"
#include "kestrava/render/SoSceneManager.h"

/// A part of a window that shows a scene. It holds its scene manager by a field, so that who knows the manager
/// finds the area among the manager's auditors.
class SoGuiRenderArea : public SoFieldContainer {
  SO_CONTAINER(SoGuiRenderArea, SoFieldContainer)
  SoGuiRenderArea() { sceneManager.setValue(new SoSceneManager); }

  SoSFFieldContainer sceneManager{this, "sceneManager"};

  /// Areas that keep their manager elsewhere answer it here; otherwise it is the field's.
  virtual SoSceneManager* getSceneManager() const {
    SoFieldContainer* const held = sceneManager.getValue();
    return held && held->isOfType(SoSceneManager::getClassTypeId()) ? static_cast<SoSceneManager*>(held) : nullptr;
  }

 protected:
  ~SoGuiRenderArea() override = default;
};
