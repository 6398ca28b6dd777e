#pragma once

#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/sensors/SoFieldSensor.h"

/// A field that somebody will come back to later, as a command of the history does: its container is kept
/// alive. A field that stands alone is not, and neither is one that its container gives up.
class VntFieldHandle {
 public:
  explicit VntFieldHandle(SoField* field)
      : m_container(field ? field->getContainer() : nullptr), m_name(field ? field->getName() : SbName()) {
    if (field) m_type = field->getTypeId();
    if (field && !m_container) m_alone.attach(field);
  }

  /// Null when it is there no longer, or another one has taken its name.
  SoField* get() const {
    SoField* const field = m_container ? m_container->getField(m_name) : m_alone.getAttachedField();
    return field && field->getTypeId() == m_type ? field : nullptr;
  }

 private:
  SoRef<SoFieldContainer> m_container;
  SbName m_name;
  SoType m_type;
  SoFieldSensor m_alone; // follows only whether the field is there
};
