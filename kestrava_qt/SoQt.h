#pragma once

class QWidget;

/// Lets the event loop of a Qt program work off the toolkit's delay queue and its timers. Nothing runs while nothing
/// waits; idle sensors are called at most fifty times a second.
class SoQt {
 public:
  SoQt() = delete;
  /// The Qt application exists; `mainWindow` may be null. Further calls change nothing.
  static void init(QWidget* mainWindow);
  static void finish();
};
