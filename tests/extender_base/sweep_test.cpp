// Every field of every type of node, one after the other: looking at a field changes nothing.

#include <QLabel>
#include <QScrollArea>
#include <set>

#include "kestrava/fields/SoField.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "kestrava/sensors/SoNodeSensor.h"
#include "tests/extender_base/EditorTest.h"
#include "vnt/VntServices.h"

namespace {

using SweepTest = EditorTest;

/// All that an onlooker could have changed.
struct State {
  explicit State(SoField& field)
      : isDefault(field.isDefault()),
        isIgnored(field.isIgnored()),
        isConnected(field.isConnected()),
        needsEvaluation(field.needsEvaluation()),
        kind(field.getFieldType()),
        count(field.getNumValues()),
        references(field.getContainer() ? field.getContainer()->getRefCount() : 0) {
    field.get(value);
  }
  bool operator==(State const&) const = default;

  bool isDefault, isIgnored, isConnected, needsEvaluation;
  SoField::FieldType kind;
  int count, references;
  SbString value;
};

std::string nameOf(SoType type) { return type.getName().getString(); }

QWidget* editorOf(QWidget const* panel) { return panel->findChild<QScrollArea*>("editorArea")->widget(); }

TEST_F(SweepTest, EveryFieldOfEveryNodeIsShownAndLeftAsItWas) {
  SoRef<SoNode> const scene(new SoSeparator);
  edit(scene, "renderCaching");
  VntServices* const services = VntServices::getInstance();
  auto const count = [](void* counter, SoSensor*) { ++*static_cast<int*>(counter); };
  int nodes = 0, fields = 0, kept = 0;
  std::set<std::string> withoutEditor;
  for (int index = 1; index < SoType::getNumTypes(); ++index) {
    SoType const type = SoType::fromIndex(index);
    if (!type.isDerivedFrom(SoNode::getClassTypeId()) || !type.canCreateInstance()) continue;
    SoRef<SoNode> node(static_cast<SoNode*>(static_cast<SoFieldContainer*>(type.createInstance())));
    ASSERT_TRUE(node);
    ++nodes;
    int notifications = 0;
    SoNodeSensor sensor(count, &notifications);
    sensor.setPriority(0);
    sensor.attach(node);
    for (int i = 0; i < node->getNumFields(); ++i, ++fields) {
      SoField* const field = node->getField(i);
      SCOPED_TRACE(nameOf(type) + "." + field->getName().getString() + ", " + nameOf(field->getTypeId()));
      State const before(*field);
      notifications = 0;
      bool const wasWatched = field->isWatched();
      services->setSelectedField(field);
      if (!editorOf(panel())) withoutEditor.insert(nameOf(field->getTypeId()));
      if (i % 8 == 0) QCoreApplication::processEvents();
      services->setSelectedField(nullptr);
      EXPECT_EQ(editorOf(panel()), nullptr);
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      EXPECT_EQ(field->isWatched(), wasWatched);
      EXPECT_EQ(notifications, 0);
      EXPECT_TRUE(State(*field) == before);
    }
    // The last one goes with its editor open, unless something else of its class holds it.
    if (node->getNumFields() > 0) services->setSelectedField(node->getField(node->getNumFields() - 1));
    sensor.detach();
    node = nullptr;
    if (find<QLabel>("fieldName")->text() != "No field is selected") {
      ++kept;
      services->setSelectedField(nullptr);
    }
  }
  EXPECT_LT(kept, 5);
  EXPECT_GT(nodes, 100);
  EXPECT_GT(fields, 500);
  EXPECT_EQ(withoutEditor, std::set<std::string>());
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(SweepTest, AFieldOfEveryTypeThatStandsAloneIsShown) {
  edit(new SoSeparator, "renderCaching");
  int fields = 0;
  for (int index = 1; index < SoType::getNumTypes(); ++index) {
    SoType const type = SoType::fromIndex(index);
    if (!type.isDerivedFrom(SoField::getClassTypeId()) || !type.canCreateInstance()) continue;
    SCOPED_TRACE(nameOf(type));
    std::unique_ptr<SoField> field(static_cast<SoField*>(type.createInstance()));
    State const before(*field);
    VntServices::getInstance()->setSelectedField(field.get());
    EXPECT_TRUE(editorOf(panel()));
    EXPECT_EQ(find<QLabel>("fieldName")->text().toStdString(), nameOf(type));
    // A change while it is shown, and one that nobody looks at.
    field->touch();
    QCoreApplication::processEvents();
    EXPECT_EQ(field->getNumValues(), before.count);
    field.reset();
    EXPECT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
    ++fields;
  }
  EXPECT_GT(fields, 60);
}

} // namespace
