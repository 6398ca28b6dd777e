#include "vantle/session/SoVantleIdleManager.h"

#include "kestrava/sensors/SoIdleSensor.h"

SoIdleSensor* SoVantleIdleManager::m_idleSensor = nullptr;
bool SoVantleIdleManager::m_lives = false;

SoVantleIdleManager::SoVantleIdleManager() {
  deleteInstance();
  m_idleSensor = new SoIdleSensor(VantleSensorCB);
  m_lives = true;
  m_idleSensor->schedule();
}

void SoVantleIdleManager::deleteInstance() {
  if (m_lives) delete m_idleSensor;
  m_lives = false;
}

void SoVantleIdleManager::VantleSensorCB(void*, SoSensor* sensor) {
  static_cast<SoIdleSensor*>(sensor)->schedule();
}
