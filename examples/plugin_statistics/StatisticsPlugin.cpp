#include "StatisticsPlugin.h"

VntExtension* StatisticsPlugin::getExtension(SbString const& name) {
  return name == m_extension.getName() ? &m_extension : nullptr;
}
