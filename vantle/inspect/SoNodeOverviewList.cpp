#include "vantle/inspect/SoNodeOverviewList.h"

#include <QHeaderView>

#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/prefs/NodeOverviewConfig.h"

SoNodeOverviewList::SoNodeOverviewList(QWidget* parent, char const* name, Qt::WindowFlags flags)
    : SoVantleList(parent, name ? name : "SoNodeOverviewList", flags) {}

void SoNodeOverviewList::initPreferences() {
  for (int i = 0; i + 1 < columnCount(); ++i) {
    int const width =
        NodeOverviewConfig::listColumnWidth(i, SoNodeOverview::getNodeOverviewPreferencesPath());
    if (width == -1) continue;
    header()->setSectionResizeMode(i + 1, QHeaderView::Interactive);
    setColumnWidth(i + 1, width);
  }
}
