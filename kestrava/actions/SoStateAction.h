#pragma once

#include "kestrava/actions/SoAction.h"
#include "kestrava/actions/SoElements.h"

/// Base of the actions that need the traversal state: properties set their elements, transformations
/// multiply, switches and levels of detail choose, arrays repeat. What is done at a shape is the subclass's.
class SoStateAction : public SoAction {
  SO_ACTION(SoStateAction, SoAction)
 public:
  explicit SoStateAction(SbViewportRegion const& region = SbViewportRegion()) : m_region(region) {}

  /// The viewport that cameras, levels of detail and texts in the plane of the screen are made for.
  SbViewportRegion const& getViewportRegion() const { return m_region; }
  void setViewportRegion(SbViewportRegion const& region) { m_region = region; }
  /// Called where a node asks to forget the bounds of what came before.
  virtual void resetBounds() {}

 protected:
  void begin() override { getState().modify<SoViewportElement>().region = m_region; }

 private:
  SbViewportRegion m_region;
};
