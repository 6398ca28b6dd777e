#include "vantle/tree/SoPickMenu.h"

#include <QCursor>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <map>
#include <set>

#include "kestrava/nodes/SoSelection.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

constexpr int NEAR_LEVELS = 2;     // of those above a node, shown with it
constexpr int MAX_NAME = 40;       // letters
constexpr int INPUT_INTERVAL = 50; // milliseconds

QString typeOf(SoTreeViewItem* row) { return row->text(SoVantleTreeView::TYPE_COLUMN); }

QString nameOf(SoTreeViewItem* row) {
  QString const name = row->text(SoVantleTreeView::NAME_COLUMN);
  return name.size() <= MAX_NAME ? name : name.left(MAX_NAME - 1) + QChar(0x2026);
}

QString nameOrType(SoTreeViewItem* row) {
  QString const name = nameOf(row);
  return name.isEmpty() ? typeOf(row) : name;
}

QString typeAndName(SoTreeViewItem* row) {
  QString const name = nameOf(row);
  return name.isEmpty() ? typeOf(row) : QStringLiteral("%1 \"%2\"").arg(typeOf(row), name);
}

/// The text of an entry while it is being made.
struct Label {
  explicit Label(SoTreeViewItem* row) { row->getListPathFromRoot(rows); }
  int depth() const { return static_cast<int>(rows.size()); }
  int positionAt(int level) const { return level < depth() ? rows[level]->row() : -1; }

  QString title() const {
    QString const text = typeAndName(rows.back());
    return telling.contains(depth() - 1)
               ? QStringLiteral("%1 [%2]").arg(text).arg(rows.back()->getSceneIndex())
               : text;
  }

  /// "wheels[2] / … / hub": the levels right above the node, and those that tell it from others.
  QString place() const {
    QStringList steps;
    int last = -1;
    for (int level = 0; level < depth() - 1; ++level) {
      bool const isNear = level >= depth() - 1 - NEAR_LEVELS;
      bool const tells = telling.contains(level);
      if (!isNear && !tells) continue;
      if (last >= 0 && level > last + 1) steps << QStringLiteral("…");
      QString const text = nameOrType(rows[level]);
      steps << (tells ? QStringLiteral("%1[%2]").arg(text).arg(rows[level]->getSceneIndex()) : text);
      last = level;
    }
    return steps.join(QStringLiteral(" / "));
  }

  QList<SoTreeViewItem*> rows; // from the root row down
  std::set<int> telling;
};

/// Finds the levels that tell labels apart which read the same.
void tellApart(std::vector<Label*> const& group, int level) {
  int deepest = 0;
  for (Label const* label : group) deepest = std::max(deepest, label->depth());
  for (; group.size() > 1 && level < deepest; ++level) {
    std::map<int, std::vector<Label*>> parts;
    for (Label* label : group) parts[label->positionAt(level)].push_back(label);
    if (parts.size() == 1) continue;
    for (Label* label : group) {
      if (level < label->depth()) label->telling.insert(level);
    }
    for (auto const& part : parts) tellApart(part.second, level + 1);
    return;
  }
}

} // namespace

SoPickMenu::SoPickMenu(SoVantleTreeView* tree, std::vector<SoPickedPlace> const& places)
    : QMenu(tree), m_tree(tree) {
  setObjectName(QStringLiteral("pickMenu"));
  setAttribute(Qt::WA_DeleteOnClose);
  setToolTipsVisible(true);
  QAction* const title = addAction(places.empty() ? tr("Nothing is under the pointer")
                                                  : tr("Under the pointer, nearest first\tdistance"));
  title->setEnabled(false);
  if (!places.empty()) {
    addSeparator();
    addPlaces(places);
  }
  SoSelection* const selection = tree->getGraphSelection();
  for (int i = 0; selection && i < selection->getNumSelected(); ++i) {
    bool isWhole = false;
    SoRef<SoPath> const path = selection->getPath(i, &isWhole);
    if (isWhole) m_markedBefore.push_back(path);
  }
  connect(this, &QMenu::hovered, this, &SoPickMenu::mark);
  // A choice is told of after this.
  connect(this, &QMenu::aboutToHide, this, &SoPickMenu::unmark);
  connect(this, &QMenu::triggered, this, &SoPickMenu::choose);
  connect(tree, &SoVantleTreeView::newSceneGraph, this, &QMenu::close);
}

// While the base class hides itself nobody is to be called any more.
SoPickMenu::~SoPickMenu() { disconnect(this, nullptr, this, nullptr); }

void SoPickMenu::addPlaces(std::vector<SoPickedPlace> const& places) {
  std::size_t const count = std::min<std::size_t>(places.size(), MAX_ENTRIES);
  std::vector<Label> labels;
  for (std::size_t i = 0; i < count; ++i) labels.emplace_back(places[i].row);
  std::map<QString, std::vector<Label*>> alike;
  for (Label& label : labels) alike[typeAndName(label.rows.back()) + '\t' + label.place()].push_back(&label);
  for (auto const& group : alike) tellApart(group.second, 0);

  for (std::size_t i = 0; i < count; ++i) {
    SoTreeViewItem* const row = labels[i].rows.back();
    QString text = labels[i].title();
    QString const place = labels[i].place();
    if (!place.isEmpty()) text += tr("   in  %1").arg(place);
    text.replace('&', QLatin1String("&&"));
    // Behind the tabulator: a column of its own.
    QAction* const entry = addAction(VntNodeInfo::icon(row->getNode()),
                                     QStringLiteral("%1\t%2").arg(text).arg(places[i].distance, 0, 'g', 4));
    entry->setToolTip(SoVantleTreeView::toolTipText(row));
    entry->setData(static_cast<int>(i));
    m_paths.push_back(places[i].path);
  }
  if (places.size() > count) {
    addSeparator();
    addAction(tr("and %1 more, farther away").arg(places.size() - count))->setEnabled(false);
  }
}

void SoPickMenu::popUp() {
  popup(QCursor::pos());
  takeInput();
}

/// A click in a window that is not Qt's keeps the pointer until its button is up; only then can a menu have
/// it, and the keys.
void SoPickMenu::takeInput() {
  if (!isVisible() || !windowHandle()) return;
  if (windowHandle()->setMouseGrabEnabled(true)) {
    windowHandle()->setKeyboardGrabEnabled(true);
  } else {
    QTimer::singleShot(INPUT_INTERVAL, this, &SoPickMenu::takeInput);
  }
}

/// Null for what is only said.
SoPath* SoPickMenu::pathOf(QAction const* entry) const {
  return entry->data().isValid() ? m_paths[static_cast<std::size_t>(entry->data().toInt())].get() : nullptr;
}

void SoPickMenu::mark(QAction* entry) {
  SoPath* const path = pathOf(entry);
  if (!path || !SoVantleTreeView::isAutoHighlight()) return;
  m_marked = path;
  m_tree->markPaths({SoRef<SoPath>(path)});
}

void SoPickMenu::unmark() {
  SoSelection const* const selection = m_tree->getGraphSelection();
  // What was marked by others meanwhile stays.
  if (m_marked && selection && selection->isSelected(m_marked)) m_tree->markPaths(m_markedBefore);
  m_marked = nullptr;
}

void SoPickMenu::choose(QAction* entry) {
  SoPath const* const path = pathOf(entry);
  if (path && SoVantleViewer::isInstance()) SoVantleViewer::getInstance()->showPicked(path);
}
