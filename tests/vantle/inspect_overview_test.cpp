// Node overviews in their tabs, the panel and the field watch.

#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>

#include "kestrava/base/SoPath.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/inspect/SoNodeOverviewList.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/NodeOverviewConfig.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

class OverviewTest : public VantleTest {
 protected:
  SoTabNodeOverview* tabs() const { return edition()->getTabNodeOverview(); }
  SoNodeOverview* page() const { return tabs()->getCurrentNodeOverview(); }
  SoFieldWatch* watch() const { return edition()->getFieldWatch(); }
  template <class T> T* part(char const* name) const {
    return page()->findChild<T*>(QString::fromLatin1(name));
  }
  std::string label(char const* name) const { return part<QLabel>(name)->text().toStdString(); }
};

TEST_F(OverviewTest, Page) {
  SoRef<SoSeparator> const scene(new SoSeparator);
  auto* material = new SoMaterial;
  material->setName("skin");
  scene->addChild(material);
  auto* kit = new SoSeparatorKit;
  scene->addChild(kit);
  start(scene);
  edition()->setNode(material, nullptr, false);
  EXPECT_EQ(label("m_nodeNameLabel"), "<b> Node Name </b>:");
  EXPECT_EQ(part<QLineEdit>("m_nodeNameValue")->text(), "skin");
  EXPECT_FALSE(part<QLineEdit>("m_nodeNameValue")->isReadOnly());
  EXPECT_EQ(label("m_nodeIdLabel"), "<b> Node Id </b>: " + std::to_string(material->getNodeId()));
  EXPECT_EQ(
      label("m_adressLabel"),
      "<b> Node Address </b>: 0x" + QString::number(reinterpret_cast<quintptr>(material), 16).toStdString());
  EXPECT_EQ(tabs()->tabText(0), "Material");
  EXPECT_FALSE(tabs()->tabIcon(0).isNull());
  EXPECT_TRUE(part<QCheckBox>("m_overrideCheckBox")->isEnabled());
  material->setOverride(true);
  SoSensorManager::processDelayQueue(true);
  EXPECT_TRUE(part<QCheckBox>("m_overrideCheckBox")->isChecked());
  EXPECT_EQ(label("m_nodeIdLabel"), "<b> Node Id </b>: " + std::to_string(material->getNodeId()));

  // Typed as a person does; the toolkit keeps another name than the one typed.
  auto* box = part<QLineEdit>("m_nodeNameValue");
  box->setFocus();
  box->setCursorPosition(0);
  QTest::keyClicks(box, "my.");
  EXPECT_EQ(material->getName().str(), "my_skin");
  EXPECT_EQ(box->text(), "my_skin");
  EXPECT_EQ(box->cursorPosition(), 3) << "typing goes on where it was";
  EXPECT_EQ(page()->getList()->firstChild()->text(SoVantleList::NODE_NAME_COLUMN), "my_skin");
  EXPECT_EQ(tree()->firstChild()->child(0)->text(1), "my_skin");
  page()->nodeNameChanged("other");
  EXPECT_TRUE(box->text().isEmpty()) << "whatever the name";

  // A part of a kit has the part's name, which is not to be edited.
  SoNode* const transform = kit->getPart("transform", true);
  edition()->setNode(transform, kit, false);
  EXPECT_EQ(label("m_nodeNameLabel"), "<b> Part Name </b>:");
  EXPECT_EQ(part<QLineEdit>("m_nodeNameValue")->text(), "transform");
  EXPECT_TRUE(part<QLineEdit>("m_nodeNameValue")->isReadOnly());
  edition()->setNode(material, kit, false);
  EXPECT_EQ(label("m_nodeNameLabel"), "<b> Node Name </b>:") << "no part of that kit";
  edition()->setNode(scene, nullptr, false);
  EXPECT_FALSE(part<QCheckBox>("m_overrideCheckBox")->isEnabled()) << "no field of that name";

  page()->clear();
  EXPECT_EQ(label("m_nodeNameLabel"), "<b> Node Name </b>: ");
  EXPECT_EQ(label("m_nodeIdLabel"), "<b> Node Id </b>: ");
  EXPECT_EQ(label("m_adressLabel"), "<b> Node Address </b>: ");
}

TEST_F(OverviewTest, Tabs) {
  start(read("Separator { DEF c Cube { } DEF m Material { } }"));
  SoTreeViewItem* const root = tree()->firstChild();
  QSignalSpy cleared(tabs(), &SoTabNodeOverview::clearFieldEditorEvent);
  auto const close = [this](int index) { Q_EMIT tabs()->tabCloseRequested(index); };
  close(0);
  commands()->closeNodeOverview(-1);
  EXPECT_EQ(tabs()->count(), 1) << "the last one is never closed";

  tree()->setCurrentItem(root->child(0));
  commands()->setNodeOverview();
  tree()->setCurrentItem(root->child(1));
  ASSERT_EQ(tabs()->count(), 2);
  EXPECT_EQ(tabs()->tabText(0), "Cube");
  EXPECT_EQ(tabs()->tabText(1), "Material");
  EXPECT_EQ(commands()->getItemOverviewList()->size(), 2);

  // Going back to a tab goes back to its row, and to its first field.
  QTest::mouseClick(tabs()->tabBar(), Qt::LeftButton, {}, tabs()->tabBar()->tabRect(0).center());
  EXPECT_EQ(tree()->currentItem(), root->child(0));
  EXPECT_EQ(tabs()->getCurrentNode(), root->child(0)->getNode());
  ASSERT_TRUE(tabs()->getCurrentFieldItem());
  EXPECT_EQ(tabs()->getCurrentFieldItem(), page()->getList()->firstEnabledChild());
  EXPECT_EQ(VntServices::getInstance()->getSelectedField(), tabs()->getCurrentFieldItem()->getField());
  EXPECT_TRUE(page()->getWatchButton()->isEnabled());

  page()->getList()->setCurrentItem(nullptr);
  EXPECT_EQ(VntServices::getInstance()->getSelectedField(), nullptr);
  cleared.clear();
  SoRef<SoSeparator> const other(new SoSeparator);
  edition()->setNode(new SoIndexedFaceSet, nullptr, false);
  EXPECT_EQ(cleared.size(), 0);

  close(0);
  EXPECT_EQ(tabs()->count(), 1);
  EXPECT_EQ(commands()->getItemOverviewList()->size(), 1);
  tabs()->addTabNode();
  EXPECT_EQ(cleared.size(), 1) << "nothing to edit in the new one";
  edition()->clearScene();
  EXPECT_EQ(tabs()->count(), 1);
  EXPECT_EQ(tabs()->tabText(0), "");
}

TEST_F(OverviewTest, ShownNodesMayDie) {
  start(read("Separator { }"));
  SoRef<SoMaterial> material(new SoMaterial);
  VntServices::getInstance()->setSelectedNode(material);
  ASSERT_EQ(tabs()->getCurrentNode(), material.get());
  SoFieldItem* const row = page()->getList()->firstEnabledChild();
  page()->getList()->setCurrentItem(row);
  commands()->setFieldWatch();
  ASSERT_EQ(watch()->topLevelItemCount(), 1);
  ASSERT_TRUE(VntServices::getInstance()->getSelectedField());
  material.reset();
  EXPECT_EQ(tabs()->getCurrentNode(), nullptr);
  EXPECT_EQ(VntServices::getInstance()->getSelectedNode(), nullptr);
  EXPECT_EQ(VntServices::getInstance()->getSelectedField(), nullptr);
  EXPECT_EQ(row->getField(), nullptr);
  EXPECT_FALSE(part<QCheckBox>("m_overrideCheckBox")->isEnabled());
  QTest::keyClicks(part<QLineEdit>("m_nodeNameValue"), "x");
  commands()->deleteFieldWatch(watch()->topLevelItem(0));
  EXPECT_EQ(watch()->topLevelItemCount(), 0);
  SoSensorManager::processDelayQueue(true);
}

TEST_F(OverviewTest, ColumnWidths) {
  start(read("Separator { }"));
  QString const group = SoNodeOverview::getNodeOverviewPreferencesPath();
  SoNodeOverviewList* const first = page()->getList();
  EXPECT_EQ(first->columnWidth(SoVantleList::NODE_TYPE_COLUMN), 0);
  EXPECT_EQ(first->columnWidth(SoVantleList::NODE_NAME_COLUMN), 0);
  tabs()->addTabNode();
  first->setColumnWidth(3, 120);
  EXPECT_EQ(page()->getList()->columnWidth(3), 120) << "all pages alike";
  EXPECT_EQ(NodeOverviewConfig::listColumnWidth(3, group), -1) << "only shown or hidden is kept";
  first->setColumnWidth(3, 0);
  EXPECT_EQ(NodeOverviewConfig::listColumnWidth(3, group), 0);
  first->setColumnWidth(1, 33);
  EXPECT_EQ(NodeOverviewConfig::listColumnWidth(1, group), 33);

  // What is stored for a column comes back in the next one.
  NodeOverviewConfig::setListColumnWidth(3, 0, group);
  NodeOverviewConfig::setListColumnWidth(0, 0, group);
  NodeOverviewConfig::setListColumnWidth(4, -1, group);
  SoNodeOverviewList list;
  int const untouched = list.columnWidth(5);
  list.initPreferences();
  EXPECT_EQ(list.columnWidth(1), 0);
  EXPECT_EQ(list.columnWidth(2), 33);
  EXPECT_EQ(list.columnWidth(4), 0);
  EXPECT_EQ(list.columnWidth(5), untouched);
}

TEST_F(OverviewTest, Watch) {
  start(read("Separator { DEF c Cube { } DEF f IndexedFaceSet { } DEF d Cube { } }"));
  SoTreeViewItem* const root = tree()->firstChild();
  EXPECT_EQ(watch()->minimumHeight(), 0);
  auto* cube = static_cast<SoCube*>(root->child(0)->getNode());
  auto* faces = static_cast<SoIndexedFaceSet*>(root->child(1)->getNode());
  QSignalSpy emptied(watch(), &SoFieldWatch::listCleared);

  // Fields that hold nodes are refused without a word.
  tree()->setCurrentItem(root->child(1));
  page()->getList()->setCurrentItem(page()->getList()->getListItemFromField(&faces->vertexProperty));
  edition()->addFieldWatch();
  commands()->setFieldWatch();
  EXPECT_EQ(watch()->topLevelItemCount(), 0);

  tree()->setCurrentItem(root->child(0));
  for (SoField* field : {&cube->width, &cube->height}) {
    page()->getList()->setCurrentItem(page()->getList()->getListItemFromField(field));
    for (int i = 0; i < 2; ++i) QTest::mouseClick(page()->getWatchButton(), Qt::LeftButton);
  }
  EXPECT_EQ(watch()->topLevelItemCount(), 2) << "each field once";
  auto* other = static_cast<SoCube*>(root->child(2)->getNode());
  watch()->addField(other, &other->depth);
  watch()->addField(other, &other->depth);
  EXPECT_EQ(watch()->topLevelItemCount(), 3);

  tree()->setCurrentItem(root);
  cube->width.setValue(12);
  SoSensorManager::processDelayQueue(true);
  EXPECT_EQ(watch()->getListItemFromField(&cube->width)->text(SoVantleList::FIELD_VALUE_COLUMN), "12");
  watch()->updateItems(cube);
  EXPECT_EQ(watch()->getListItemFromField(&other->depth)->text(SoVantleList::NODE_NAME_COLUMN), "c")
      << "every row";

  // A row that is selected is edited; double-clicked, its node is shown.
  SoFieldItem* const row = watch()->getListItemFromField(&cube->width);
  QPoint const at = watch()->visualItemRect(row).center();
  QTest::mouseClick(watch()->viewport(), Qt::LeftButton, {}, at);
  EXPECT_EQ(VntServices::getInstance()->getSelectedField(), &cube->width);
  QTest::mouseDClick(watch()->viewport(), Qt::LeftButton, {}, at);
  EXPECT_EQ(tabs()->getCurrentNode(), cube);
  EXPECT_EQ(tree()->currentItem(), root->child(0));

  // Deleted with the key; the list says when it is empty.
  watch()->setFocus();
  watch()->setCurrentItem(nullptr);
  QTest::keyClick(watch(), Qt::Key_Delete);
  EXPECT_EQ(watch()->topLevelItemCount(), 3);
  for (int left = 3; left > 0; --left) {
    EXPECT_EQ(emptied.size(), 0);
    watch()->setCurrentItem(watch()->firstChild());
    QTest::keyClick(watch(), Qt::Key_Delete);
    EXPECT_EQ(watch()->topLevelItemCount(), left - 1);
  }
  EXPECT_EQ(emptied.size(), 1);
}

TEST_F(OverviewTest, WatchWidthsMoveLeftEachRound) {
  start(read("Separator { }"));
  watch()->setColumnWidth(5, 77);
  watch()->setColumnWidth(6, 88);
  watch()->savePreferences();
  SoFieldWatch again;
  EXPECT_EQ(again.columnWidth(4), 77);
  EXPECT_EQ(again.columnWidth(5), 88);
}

} // namespace
