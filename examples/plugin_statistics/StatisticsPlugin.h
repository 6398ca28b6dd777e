#pragma once

#include <vnt/VntPlugin.h>

#include <QObject>

#include "StatisticsExtension.h"

/// What the inspector finds in this library.
class StatisticsPlugin : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "statistics.json")
  Q_INTERFACES(VntPlugin)
 public:
  VntExtension* getExtension(SbString const& name) override;

 private:
  StatisticsExtension m_extension;
};
