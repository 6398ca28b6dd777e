#pragma once

#include "kestrava/base/SbString.h"

/// A named part of a plug-in: a panel, an editor for one type of field, a preference page. The plug-in owns
/// it.
///
/// Everything is called on the GUI thread. An exception that leaves one of the operations below is caught and
/// reported; an extension whose activate() fails so loses what it had registered and is not deactivated.
class VntExtension {
 public:
  virtual ~VntExtension();

  /// What a configuration calls it, e.g. "Field Editor" or "SFColor".
  virtual SbString getName() const = 0;
  /// What the user reads: entry of the view menu, title of the preference page. Latin-1 on the screen.
  virtual SbString getInfo() const = 0;
  /// Empty: that of the plug-in.
  virtual SbString getVersion() const { return SbString(); }

  /// The profile wants it: shell and services exist, widgets may be registered now. The window is not shown
  /// yet.
  virtual void activate() {}
  /// Everything that was registered with the shell goes back, and no signal is wanted any more. Called once
  /// for each activate(), while shell, services and the other plug-ins are still there; the extension that
  /// was activated last comes first.
  virtual void deactivate() {}
  /// Named by a controlledExtension element of this extension; called before activate(), in file order. The
  /// other one may belong to another plug-in and outlives this one's deactivate(). False: it can not be used
  /// here, which is reported.
  virtual bool addControlled(VntExtension* controlled) {
    (void)controlled;
    return false;
  }

  /// The user switched its entry of the view menu on or off.
  virtual void show() {}
  virtual void hide() {}
};
