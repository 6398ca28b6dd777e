#pragma once

#include <QString>
#include <string>

#include "kestrava/fields/SoField.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/nodes/SoSelection.h"
#include "vnt/QtText.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

/// Every row of a tree as a line: depth, scene index, type, name, field, node. Ignored rows are marked.
inline std::string rowLines(SoVantleTreeView const& tree, bool withNodes = true) {
  std::string lines;
  for (SoTreeViewItem* row = tree.firstChild(); row; row = SoVantleTreeView::itemBelowInTree(row)) {
    int depth = 0;
    for (SoTreeViewItem* above = row->parent(); above; above = above->parent()) ++depth;
    QString line = QString(depth * 2, ' ') + QString::number(row->getSceneIndex()) + ' ' + row->text(0);
    if (!row->text(1).isEmpty()) line += " '" + row->text(1) + "'";
    if (row->fromField()) line += " in " + toQString(row->getFieldParent()->getName().toString());
    if (row->isIgnored()) line += " ignored";
    if (withNodes) line += " " + QString::number(reinterpret_cast<quintptr>(row->getNode()), 16);
    lines += line.toStdString() + "\n";
  }
  return lines;
}

/// A tree that watches a selection node of its own, as the viewer's does.
struct WatchedTree {
  WatchedTree() { view.setGraphSelection(selection); }
  explicit WatchedTree(SoNode* scene) : WatchedTree() { selection->addChild(scene); }
  SoTreeViewItem* root() const { return view.firstChild(); }

  SoRef<SoSelection> selection{new SoSelection};
  SoVantleTreeView view;
};
