// Editors for truth values, enumerations and bit masks.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QWheelEvent>

#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/nodes/SoCone.h"
#include "kestrava/nodes/SoDrawStyle.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTexture2.h"
#include "tests/extender_base/EditorTest.h"
#include "vnt/VntServices.h"

/// Its mask has symbols that are made of others.
class MaskedTestNode : public SoNode {
  SO_NODE(MaskedTestNode, SoNode)
  static std::vector<SoEnumSymbol> const& symbols() {
    static std::vector<SoEnumSymbol> const symbols{
        {"NOTHING", 0}, {"LEFT", 1}, {"RIGHT", 2}, {"BOTH", 3}, {"UP", 4}};
    return symbols;
  }
  SoSFBitMask mask{this, "mask", 1, symbols()};

 protected:
  ~MaskedTestNode() override = default;
};

namespace {

class ChoiceTest : public EditorTest {
 public:
  QComboBox* combo() const { return find<QComboBox>("symbols"); }
  Qt::CheckState state(char const* name) const { return find<QCheckBox>(name)->checkState(); }
  void click(char const* name) { QTest::mouseClick(find<QAbstractButton>(name), Qt::LeftButton, {}, {8, 8}); }
  /// The field `n` of a node of a type that nobody knows.
  void editOdd(std::string const& type, std::string const& value) {
    SoRef<SoSeparator> const root(
        static_cast<SoSeparator*>(read("Odd { fields [ " + type + " n ] n " + value + " }")));
    edit(root->getChild(0), "n");
  }
};

TEST_F(ChoiceTest, TruthIsCheckedAndUndone) {
  editOdd("SFBool", "FALSE");
  auto* const box = find<QCheckBox>("value");
  EXPECT_FALSE(box->isChecked());
  EXPECT_EQ(box->text(), "FALSE");
  click("value");
  EXPECT_EQ(value(), "TRUE");
  EXPECT_EQ(box->text(), "TRUE");
  QTest::keyClick(box, Qt::Key_Space);
  EXPECT_EQ(value(), "FALSE");
  EXPECT_EQ(countSteps(), 2);
  undo();
  ASSERT_TRUE(waitFor([&] { return box->isChecked(); }));
}

TEST_F(ChoiceTest, EnumerationsByTheirSymbols) {
  auto* const style = new SoDrawStyle;
  edit(style, "style");
  QStringList symbols;
  for (int i = 0; i < combo()->count(); ++i) symbols << combo()->itemText(i);
  EXPECT_EQ(symbols, QStringList({"FILLED", "LINES", "POINTS", "INVISIBLE"}));
  combo()->setFocus();
  QTest::keyClick(combo(), Qt::Key_Down);
  EXPECT_EQ(style->style.getValue(), SoDrawStyle::LINES);
  QTest::keyClick(combo(), Qt::Key_I);
  EXPECT_EQ(style->style.getValue(), SoDrawStyle::INVISIBLE);
  undo();
  EXPECT_EQ(style->style.getValue(), SoDrawStyle::LINES);
  ASSERT_TRUE(waitFor([&] { return combo()->currentText() == "LINES"; }));
  EXPECT_EQ(countSteps(), 1);

  combo()->clearFocus();
  QPointF const at = combo()->rect().center();
  QWheelEvent wheel(at, combo()->mapToGlobal(at), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
  QApplication::sendEvent(combo(), &wheel);
  EXPECT_EQ(style->style.getValue(), SoDrawStyle::LINES) << "the wheel only scrolls past";
}

TEST_F(ChoiceTest, AValueWithoutASymbolIsANumberWhileItLasts) {
  auto* const style = new SoDrawStyle;
  style->style = 77;
  edit(style, "style");
  EXPECT_EQ(combo()->currentText(), "77 (no symbol)");
  EXPECT_EQ(combo()->count(), 5);
  combo()->setFocus();
  QTest::keyClick(combo(), Qt::Key_Home);
  EXPECT_EQ(value(), "FILLED");
  EXPECT_EQ(combo()->count(), 4);
  undo();
  EXPECT_EQ(style->style.getValue(), 77);
  ASSERT_TRUE(waitFor([&] { return combo()->currentText() == "77 (no symbol)"; }));
  editOdd("SFEnum", "SOMETHING");
  EXPECT_EQ(combo()->currentText(), "SOMETHING") << "a type of a file has the symbols that were met";
}

TEST_F(ChoiceTest, WhatFollowsAnotherFieldCanNotBeChosen) {
  auto* const scene = new SoSeparator;
  auto* const leader = new SoDrawStyle;
  auto* const style = new SoDrawStyle;
  scene->addChild(leader);
  scene->addChild(style);
  edit(scene, "renderCaching");
  edit(style, "style");
  style->style.connectFrom(&leader->style);
  ASSERT_TRUE(waitFor([&] { return !combo()->isEnabled(); }));
  leader->style = SoDrawStyle::POINTS;
  ASSERT_TRUE(waitFor([&] { return combo()->currentText() == "POINTS"; }));
  QTest::mouseClick(combo(), Qt::LeftButton);
  QTest::keyClick(combo(), Qt::Key_Up);
  EXPECT_EQ(style->style.getValue(), SoDrawStyle::POINTS);
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(ChoiceTest, TheFieldGoesWhileTheListIsOpen) {
  edit(new SoSeparator, "renderCaching");
  auto style = std::make_unique<SoRef<SoDrawStyle>>(new SoDrawStyle);
  VntServices::getInstance()->setSelectedField(&(*style)->style);
  combo()->showPopup();
  ASSERT_TRUE(waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  style.reset();
  ASSERT_TRUE(
      waitFor([&] { return !QApplication::activePopupWidget() && !panel()->findChild<QComboBox*>(); }));
}

TEST_F(ChoiceTest, BitMasksAreBoxes) {
  auto* const cone = new SoCone;
  edit(cone, "parts");
  EXPECT_EQ(state("SIDES"), Qt::Checked);
  click("BOTTOM");
  EXPECT_EQ(value(), "SIDES");
  click("none");
  EXPECT_EQ(value(), "NONE");
  QTest::keyClick(find<QCheckBox>("BOTTOM"), Qt::Key_Space);
  EXPECT_EQ(value(), "BOTTOM");
  click("all");
  EXPECT_EQ(value(), "ALL");
  EXPECT_EQ(countSteps(), 4);
  for (int i = 0; i < 4; ++i) undo();
  EXPECT_EQ(value(), "ALL");
}

TEST_F(ChoiceTest, SymbolsMadeOfOthersAndBitsWithoutASymbol) {
  auto* const node = new MaskedTestNode;
  edit(node, "mask");
  EXPECT_EQ(state("BOTH"), Qt::PartiallyChecked);
  EXPECT_EQ(find<QCheckBox>("BOTH")->toolTip(), "0x3: all of LEFT, RIGHT");
  EXPECT_FALSE(find<QCheckBox>("others")->isVisible());
  click("BOTH");
  EXPECT_EQ(node->mask.getValue(), 3);
  EXPECT_EQ(state("RIGHT"), Qt::Checked);
  click("LEFT");
  EXPECT_EQ(node->mask.getValue(), 2);
  click("NOTHING");
  EXPECT_EQ(node->mask.getValue(), 0);
  EXPECT_EQ(state("NOTHING"), Qt::Checked);

  node->mask = 0x1004;
  ASSERT_TRUE(waitFor([&] { return find<QCheckBox>("others")->isVisible(); }));
  EXPECT_EQ(find<QCheckBox>("others")->text(), "others: 0x1000");
  click("LEFT");
  EXPECT_EQ(node->mask.getValue(), 0x1005) << "the others are kept";
  click("all");
  EXPECT_EQ(node->mask.getValue(), 0x1007);
  click("others");
  EXPECT_EQ(node->mask.getValue(), 7);
  click("others");
  EXPECT_EQ(node->mask.getValue(), 0x1007) << "and can be had again";
  click("none");
  EXPECT_EQ(node->mask.getValue(), 0);
}

} // namespace
