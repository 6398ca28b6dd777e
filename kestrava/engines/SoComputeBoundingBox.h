#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/sensors/SoNodeSensor.h"

/// Tells the box around a node, or around what a path leads to in the coordinates of its head.
class SoComputeBoundingBox : public SoEngine {
  SO_ENGINE(SoComputeBoundingBox, SoEngine)
  SoComputeBoundingBox();

  SoSFNode node{this, "node"};
  SoSFPath path{this, "path"}; ///< counts while there is no node
  SoSFVec3f min{this, "min", {}, SoField::EVENT_OUT};
  SoSFVec3f max{this, "max", {}, SoField::EVENT_OUT};
  SoSFVec3f boxCenter{this, "boxCenter", {}, SoField::EVENT_OUT};
  SoSFVec3f objectCenter{
      this, "objectCenter", {}, SoField::EVENT_OUT}; ///< as SoGetBoundingBoxAction tells it

 protected:
  ~SoComputeBoundingBox() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  static void pathChanged(void* data, SoSensor* sensor);
  void watchPath();
  SoNodeSensor m_pathSensor; // a path does not tell of changes below it
};
