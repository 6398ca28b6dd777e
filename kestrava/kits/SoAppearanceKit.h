#pragma once

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoComplexity.h"
#include "kestrava/nodes/SoDrawStyle.h"
#include "kestrava/nodes/SoEnvironment.h"
#include "kestrava/nodes/SoFont.h"
#include "kestrava/nodes/SoLightModel.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoTexture2.h"

/// How something looks: one property of each kind.
class SoAppearanceKit : public SoBaseKit {
  SO_NODE(SoAppearanceKit, SoBaseKit)

  SoKitPart lightModel{this, "lightModel", SoLightModel::getClassTypeId(), SoLightModel::getClassTypeId(),
                       "this"};
  SoKitPart environment{this, "environment", SoEnvironment::getClassTypeId(), SoEnvironment::getClassTypeId(),
                        "this"};
  SoKitPart drawStyle{this, "drawStyle", SoDrawStyle::getClassTypeId(), SoDrawStyle::getClassTypeId(),
                      "this"};
  SoKitPart material{this, "material", SoMaterial::getClassTypeId(), SoMaterial::getClassTypeId(), "this"};
  SoKitPart complexity{this, "complexity", SoComplexity::getClassTypeId(), SoComplexity::getClassTypeId(),
                       "this"};
  SoKitPart texture2{this, "texture2", SoTexture2::getClassTypeId(), SoTexture2::getClassTypeId(), "this"};
  SoKitPart font{this, "font", SoFont::getClassTypeId(), SoFont::getClassTypeId(), "this"};

 protected:
  ~SoAppearanceKit() override = default;
};
