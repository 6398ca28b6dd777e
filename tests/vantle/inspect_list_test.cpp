// The list of fields.

#include <QHeaderView>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "kestrava/base/SoBufferObject.h"
#include "kestrava/base/SoCpuBufferObject.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFInstanceParameter.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFArray.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFBufferObject.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFImage.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoVantleList.h"

/// Fields of every kind that the list treats in its own way.
class SoManyFields : public SoNode {
  SO_NODE(SoManyFields, SoNode)
  SoSFFloat number{this, "number", 1.5f};
  SoMFFloat numbers{this, "numbers"};
  SoSFNode node{this, "node"};
  SoMFNode nodes{this, "nodes"};
  SoMFUniformShaderParameter parameters{this, "parameters"};
  SoMFInstanceParameter instances{this, "instances"};
  SoSFArray array{this, "array"};
  SoSFBufferObject buffer{this, "buffer"};
  SoSFImage image{this, "image"};
  SoSFBool readOnly{this, "readOnly", false, SoField::READ_ONLY};
  SoSFBool hidden{this, "hidden", false, SoField::PRIVATE};
  SoSFBool internal{this, "internal", false, SoField::INTERNAL};
  SoSFBool deprecated{this, "deprecated", false, SoField::DEPRECATED};
  SoSFBool exposed{this, "exposed", true, SoField::EXPOSED};

 protected:
  ~SoManyFields() override = default;
};

namespace {

using ListTest = VantleTest;

struct Shown {
  Shown() { list.setNode(node); }
  SoFieldItem* row(SoField const& field) const { return list.getListItemFromField(&field); }
  std::string value(SoField const& field) const {
    return row(field)->text(SoVantleList::FIELD_VALUE_COLUMN).toStdString();
  }
  bool enabled(SoField const& field) const { return row(field)->flags() & Qt::ItemIsEnabled; }
  void update() {
    SoSensorManager::processDelayQueue(true);
    list.revert(nullptr);
  }
  SoRef<SoManyFields> node{new SoManyFields};
  SoVantleList list;
};

TEST_F(ListTest, RowsAndColumns) {
  Shown s;
  s.node->setName("thing");
  s.list.setNode(s.node);
  std::string names;
  for (SoFieldItem* item = s.list.firstChild(); item; item = item->nextSibling()) {
    names += item->text(SoVantleList::FIELD_NAME_COLUMN).toStdString() + " ";
  }
  EXPECT_EQ(names, "number numbers node nodes parameters instances array buffer image readOnly exposed ");
  SoFieldItem* const row = s.row(s.node->numbers);
  EXPECT_EQ(row->text(SoVantleList::NODE_TYPE_COLUMN), "ManyFields");
  EXPECT_EQ(row->text(SoVantleList::NODE_NAME_COLUMN), "thing");
  EXPECT_EQ(row->text(SoVantleList::FIELD_TYPE_COLUMN), "MFFloat");
  EXPECT_EQ(s.list.columnCount(), 8);
  EXPECT_TRUE(s.list.isColumnHidden(0));
  QStringList labels;
  for (int i = 0; i < 8; ++i) labels << s.list.headerItem()->text(i);
  EXPECT_EQ(labels,
            QStringList({"", "", "", "Node Type", "Node Name", "Field Type", "Field Name", "Field Value"}));
  EXPECT_EQ(s.list.headerItem()->toolTip(1), "This field is ignored");
  EXPECT_EQ(s.list.headerItem()->toolTip(2), "This field is connected");
  s.list.resize(500, 400);
  s.list.show();
  EXPECT_EQ(s.list.visualItemRect(row).height(), 24);
  EXPECT_EQ(s.list.firstEnabledChild(), s.row(s.node->number));
  s.list.setNode(nullptr);
  EXPECT_EQ(s.list.firstChild(), nullptr);
}

TEST_F(ListTest, Values) {
  Shown s;
  SoManyFields& node = *s.node;
  EXPECT_EQ(s.value(node.number), "1.5");
  SbString own;
  node.numbers.get(own);
  EXPECT_EQ(s.value(node.numbers), own.str()) << "without values: the field's own form";
  for (SoField const* field : std::initializer_list<SoField const*>{&node.node, &node.nodes, &node.parameters,
                                                                    &node.buffer, &node.readOnly}) {
    EXPECT_FALSE(s.enabled(*field)) << field->getName().c_str();
  }
  for (SoField const* field : std::initializer_list<SoField const*>{
           &node.number, &node.numbers, &node.instances, &node.array, &node.image, &node.exposed}) {
    EXPECT_TRUE(s.enabled(*field)) << field->getName().c_str();
  }
  EXPECT_EQ(s.value(node.node), "");
  EXPECT_EQ(s.value(node.buffer), "");

  node.numbers.setValues({1, 2, 3, 4, 5, 6});
  node.node.setValue(new SoCube);
  node.nodes.setValues({new SoCube, nullptr, new SoSphere});
  node.parameters.addNode(new SoSphere);
  for (int i = 0; i < 7; ++i) node.instances.addNode(new SoCube);
  node.array.setValue(SbVec3i32(16, 16, 16), std::vector<float>(4096, 1));
  node.buffer.setValue(new SoCpuBufferObject);
  node.image.setValue(SbImage());
  s.update();
  EXPECT_EQ(s.value(node.numbers), "1, 2, 3, 4, 5, 6");
  EXPECT_EQ(s.value(node.node), "Cube");
  EXPECT_EQ(s.value(node.nodes), "Cube, Sphere");
  EXPECT_EQ(s.value(node.parameters), "Sphere");
  EXPECT_EQ(s.value(node.instances), "...") << "of instances nothing is shown";
  node.array.get(own);
  EXPECT_EQ(s.value(node.array), own.str());
  EXPECT_EQ(s.value(node.buffer), "SoBufferObject");
  EXPECT_EQ(s.value(node.image), "");
  EXPECT_TRUE(s.row(node.image)->icon(SoVantleList::FIELD_VALUE_COLUMN).isNull());

  node.numbers.set1Value(6, 7);
  node.array.setValue(SbVec3i32(4097, 1, 1), std::vector<float>(4097, 1));
  s.update();
  EXPECT_EQ(s.value(node.numbers), "1, 2, 3, 4, 5, 6...");
  EXPECT_EQ(s.value(node.array), "ARRAY TOO BIG");
  EXPECT_FALSE(s.enabled(node.array));
}

TEST_F(ListTest, RowsFollowTheirFields) {
  Shown s;
  SoRef<SoCube> const source(new SoCube);
  s.node->number.setValue(7);
  s.node->exposed.setIgnored(true);
  EXPECT_EQ(s.value(s.node->number), "1.5") << "not before the queue is worked off";
  SoSensorManager::processDelayQueue(true);
  EXPECT_EQ(s.value(s.node->number), "7");
  EXPECT_FALSE(s.row(s.node->exposed)->icon(1).isNull());
  EXPECT_TRUE(s.row(s.node->number)->icon(1).isNull());

  s.node->number.connectFrom(&source->width);
  SoSensorManager::processDelayQueue(true);
  EXPECT_EQ(s.value(s.node->number), "2");
  EXPECT_FALSE(s.row(s.node->number)->icon(2).isNull());
  source->width.setValue(9);
  SoSensorManager::processDelayQueue(true);
  EXPECT_EQ(s.value(s.node->number), "9");
  s.node->number.disconnect();
  s.node->exposed.setIgnored(false);
  SoSensorManager::processDelayQueue(true);
  EXPECT_TRUE(s.row(s.node->number)->icon(2).isNull() && s.row(s.node->exposed)->icon(1).isNull());
}

TEST_F(ListTest, ARowOutlivesItsField) {
  Shown s;
  SoFieldItem* const row = s.row(s.node->number);
  s.list.setCurrentItem(row);
  SoVantleList other;
  auto* const copy = new SoFieldItem(&other, row);
  other.displayFieldItem(copy);
  s.node->number.setValue(5); // waits in the queue when the field goes
  s.list.revert(nullptr);
  other.revert(nullptr);
  s.node = SoRef<SoManyFields>(new SoManyFields);
  for (SoFieldItem* item : {row, copy}) {
    EXPECT_EQ(item->getField(), nullptr);
    EXPECT_FALSE(item->flags() & Qt::ItemIsEnabled);
    EXPECT_EQ(item->text(SoVantleList::FIELD_VALUE_COLUMN), "5");
  }
  EXPECT_EQ(s.list.currentItem(), nullptr);
  SoSensorManager::processDelayQueue(true);
  s.list.revert(nullptr);
  s.list.showChangedValues(true);
  other.takeItem(copy);
  delete copy;
  EXPECT_EQ(other.topLevelItemCount(), 0);
}

TEST_F(ListTest, ChangedAndCatalogFilters) {
  SoRef<SoSeparatorKit> const kit(new SoSeparatorKit);
  ASSERT_TRUE(kit->getPart("transform", true));
  SoVantleList list;
  list.setNode(kit);
  EXPECT_EQ(list.getListItemFromField(&kit->topSeparator), nullptr) << "not public";
  SoFieldItem* const transform = list.getListItemFromField(&kit->transform);
  SoFieldItem* const appearance = list.getListItemFromField(&kit->appearance);
  ASSERT_TRUE(transform && appearance && transform->isCatalogPart());
  ASSERT_TRUE(!transform->isDefault() && appearance->isDefault());
  auto const hidden = [&] { return std::pair(transform->isHidden(), appearance->isHidden()); };
  list.showChangedValues(true);
  EXPECT_EQ(hidden(), std::pair(false, true));
  list.showCatalogPart(false);
  EXPECT_EQ(hidden(), std::pair(true, true));
  list.showChangedValues(false);
  EXPECT_EQ(hidden(), std::pair(true, true)) << "parts stay hidden";
  list.showChangedValues(true);
  list.showCatalogPart(true);
  EXPECT_EQ(hidden(), std::pair(false, true)) << "unchanged ones stay hidden";
  list.showChangedValues(false);
  EXPECT_EQ(hidden(), std::pair(false, false));
  list.showCatalogPart(false);
  list.setNode(kit);
  EXPECT_TRUE(list.getListItemFromField(&kit->transform)->isHidden());

  // Only toggling filters: a change hides and shows nothing.
  Shown s;
  s.list.showChangedValues(true);
  EXPECT_TRUE(s.row(s.node->number)->isHidden());
  s.node->number.setValue(3);
  SoSensorManager::processDelayQueue(true);
  EXPECT_TRUE(s.row(s.node->number)->isHidden());
}

TEST_F(ListTest, ColumnsAreHiddenByWidth) {
  Shown s;
  QSignalSpy widths(&s.list, &SoVantleList::columnWidthChanged);
  auto const toggle = [&](char const* text) {
    QAction action(QString::fromLatin1(text), nullptr);
    s.list.toggleHeaderColumnVisibility(&action);
  };
  int const header = QFontMetrics(s.list.header()->font()).horizontalAdvance("Field Value") + 10;
  struct {
    char const* name;
    int column, comesBackAt;
  } const cases[] = {{"Ignore", 1, 20}, {"Connected", 2, 10}, {"Field Value", 7, header}};
  for (auto const& c : cases) {
    widths.clear();
    toggle(c.name);
    EXPECT_EQ(s.list.columnWidth(c.column), 0) << c.name;
    EXPECT_FALSE(s.list.isColumnHidden(c.column));
    toggle(c.name);
    EXPECT_EQ(s.list.columnWidth(c.column), c.comesBackAt) << c.name;
    ASSERT_EQ(widths.size(), 2) << c.name;
    EXPECT_EQ(widths[1], QVariantList({c.column, c.comesBackAt}));
  }
  widths.clear();
  toggle("Something");
  s.list.setColumnWidth(5, s.list.columnWidth(5));
  EXPECT_EQ(widths.size(), 0);
}

TEST_F(ListTest, HeaderMenu) {
  Shown s;
  s.list.resize(600, 300);
  s.list.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&s.list));
  s.list.setColumnWidth(4, 0);
  QString entries;
  QTimer answer;
  QObject::connect(&answer, &QTimer::timeout, [&] {
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu) return;
    answer.stop();
    for (QAction* action : menu->actions()) entries += action->text() + (action->isChecked() ? "+ " : "- ");
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[5]).center());
  });
  answer.start(5);
  QTest::mouseClick(s.list.header()->viewport(), Qt::RightButton, {}, QPoint(40, 5));
  EXPECT_EQ(entries.toStdString(),
            "Ignore+ Connected+ Node Type+ Node Name- Field Type+ Field Name+ Field Value+ ");
  EXPECT_EQ(s.list.columnWidth(6), 0) << "the entry that was clicked";
}

} // namespace
