#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFName.h"

/// Base of the engines whose fields have a type that is given by name. Until `type` is set they have no
/// others; another type replaces them, and what was connected to the old ones no longer is.
class SoTypedEngine : public SoEngine {
  SO_ABSTRACT_ENGINE(SoTypedEngine, SoEngine)

  SoSFName type{this, "type"}; ///< of fields: "MFVec3f". One that will not do is posted as a debug error

 protected:
  using SoEngine::SoEngine;
  ~SoTypedEngine() override = default;

  /// Declares the fields with declareField(); false when the type will not do.
  virtual bool declareFields(SoType fieldType) = 0;
  void fieldChanged(SoField* field) override;
  SoFieldContainer* makeEmpty() const override;

 private:
  SoType m_declared;
};
