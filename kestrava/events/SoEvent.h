#pragma once

#include "kestrava/base/SbTime.h"
#include "kestrava/base/SbVec2s.h"
#include "kestrava/base/SoType.h"

/// Declares an event class; stands first in it.
#define SO_EVENT(Class, Parent)                                                                   \
 public:                                                                                          \
  static SoType getClassTypeId() {                                                                \
    static SoType const type = SoType::createType(Parent::getClassTypeId(), &#Class[2]);          \
    return type;                                                                                  \
  }                                                                                               \
  SoType getTypeId() const override { return getClassTypeId(); }                                  \
                                                                                                  \
 private:                                                                                         \
  inline static bool const s_registered = !getClassTypeId().isBad();                              \
                                                                                                  \
 public:

/// Something that a user did with the mouse or the keyboard while the pointer was over a view.
class SoEvent {
 public:
  virtual ~SoEvent() = default;
  static SoType getClassTypeId() {
    static SoType const type = SoType::createType(SoType::badType(), "Event");
    return type;
  }
  virtual SoType getTypeId() const { return getClassTypeId(); }
  bool isOfType(SoType type) const { return getTypeId().isDerivedFrom(type); }

  SbTime time;
  /// Device pixels from the lower left corner of the window.
  SbVec2s position;
  bool shiftDown = false, ctrlDown = false, altDown = false;
};
