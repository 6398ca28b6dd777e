#pragma once

class QString;

/// Writes a picture of the whole window, then stops: what the program does when it is asked for a snapshot.
///
/// The wish comes as preferences, because a host reaches the session through a handful of entry points only:
/// KSV_VANTLE_SNAPSHOT names the PNG file, KSV_VANTLE_SNAPSHOT_SIZE may give the window's size ("1280x900").
/// The outcome goes back the same way, in KSV_VANTLE_SNAPSHOT_STATUS: "0" when the picture was written.
class VantleSnapshot {
 public:
  /// Before anything is shown. With a wish, messages go to standard error from here on.
  static void prepare();
  /// With the window shown. `sceneNamed`: a file was to be read, so without one the snapshot has failed.
  static void begin(bool sceneNamed);

 private:
  static void settle(int rounds);
  static bool save(QString const& file);
  static void end(bool written);
};
