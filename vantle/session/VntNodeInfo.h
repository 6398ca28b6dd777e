#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

#include "kestrava/base/SoType.h"
#include "vantle/session/VantleApi.h"
#include "vantle/session/VntNodeCategory.h"

class SoNode;

/// Sorts node types into categories and knows name and picture of each; the tree and plug-ins show the same.
/// GUI thread only.
class VntNodeInfo {
 public:
  VANTLE_API explicit VntNodeInfo(SoNode* node);
  SoNode* getNode() const { return m_node; }
  Vnt::NodeCategory getCategory() const { return m_category; }
  /// The cache's.
  QPixmap* getPixmap() const { return m_pixmap; }

  /// Never Unknown.
  VANTLE_API static Vnt::NodeCategory category(SoType type);
  VANTLE_API static Vnt::NodeCategory category(SoNode* node);
  VANTLE_API static QString categoryName(Vnt::NodeCategory category);
  static QString categoryName(SoType type) { return categoryName(category(type)); }
  static QString categoryName(SoNode* node) { return categoryName(category(node)); }
  /// A key such as "treeview.light", no file name.
  VANTLE_API static QString iconPath(Vnt::NodeCategory category);
  static QString iconPath(SoType type) { return iconPath(category(type)); }
  static QString iconPath(SoNode* node) { return iconPath(category(node)); }
  /// The cache's; null for values without a picture.
  VANTLE_API static QPixmap* pixmap(Vnt::NodeCategory category);
  static QPixmap* pixmap(SoType type) { return pixmap(category(type)); }
  static QPixmap* pixmap(SoNode* node) { return pixmap(category(node)); }
  /// The same picture for every screen resolution; null for values without one.
  VANTLE_API static QIcon icon(Vnt::NodeCategory category);
  static QIcon icon(SoNode* node) { return icon(category(node)); }
  /// Forgets the pixmaps without destroying them: plug-ins may still hold them. The next one of a category is
  /// another; the one after that is the first again, so that there are two at most.
  VANTLE_API static void clean();

 private:
  static QPixmap** slot(Vnt::NodeCategory category);

  SoNode* m_node;
  Vnt::NodeCategory m_category;
  QPixmap* m_pixmap;

  static QPixmap *m_unknownPixmap, *m_appearancePixmap, *m_callbackPixmap, *m_cameraPixmap, *m_groupPixmap,
      *m_lightPixmap, *m_manipulatorPixmap, *m_nodekitPixmap, *m_propertyPixmap, *m_selectionPixmap,
      *m_separatorPixmap, *m_shapePixmap, *m_switchPixmap, *m_topologyPixmap, *m_transformPixmap;
};
