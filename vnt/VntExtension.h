#pragma once

#include "kestrava/base/SbString.h"

/// A named part of a plug-in: a panel, an editor for one type of field, a preference page. The plug-in owns
/// it.
///
/// A field editor follows VntServices::selectedFieldChanged(), which also tells it to clear itself (null).
/// Everything is called on the GUI thread.
class VntExtension {
 public:
  virtual ~VntExtension() = default;

  /// What a configuration calls it, e.g. "Field Editor" or "SFColor".
  virtual SbString getName() const = 0;
  /// What the user reads: entry of the view menu, title of the preference page. Latin-1 on the screen.
  virtual SbString getInfo() const = 0;

  /// The profile wants it: shell and services exist, widgets may be registered now.
  virtual void activate() {}
  /// Everything that was registered with the shell goes back; called before the shell is destroyed.
  virtual void deactivate() {}
  /// Named by a controlledExtension element of this extension; called before activate(), in file order.
  virtual void addControlled(VntExtension* controlled) { (void)controlled; }

  /// The user switched its entry of the view menu on or off.
  virtual void show() {}
  virtual void hide() {}
};
