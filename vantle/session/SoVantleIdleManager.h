#pragma once

class SoIdleSensor;
class SoSensor;

/// Keeps the toolkit's delay queue busy while the inspector is attached to a host: one idle sensor that
/// always schedules itself again.
class SoVantleIdleManager {
 public:
  SoVantleIdleManager();
  /// The pointer keeps its value, as the interface has it; whether a sensor lives is kept beside it.
  static void deleteInstance();

 private:
  static void VantleSensorCB(void* data, SoSensor* sensor);
  static SoIdleSensor* m_idleSensor;
  static bool m_lives;
};
