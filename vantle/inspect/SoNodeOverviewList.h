#pragma once

#include "vantle/inspect/SoVantleList.h"

/// The list of fields of a node overview; its column widths are kept in the settings.
class SoNodeOverviewList : public SoVantleList {
  Q_OBJECT
 public:
  explicit SoNodeOverviewList(QWidget* parent = nullptr, char const* name = nullptr,
                              Qt::WindowFlags flags = {});

  /// Applies the stored widths, each to the column after the one it was stored for: the settings count
  /// without the hidden column.
  void initPreferences();
};
