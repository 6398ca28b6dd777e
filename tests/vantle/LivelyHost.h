#pragma once

#include <QStringList>
#include <functional>
#include <map>
#include <vector>

#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoError.h"
#include "kestrava/engines/SoEngine.h"
#include "kestrava/engines/SoGlobalField.h"
#include "kestrava/fields/SoMField.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/CarelessPerson.h"

/// A program that changes its scene of nodes of every type all the time, in every way that the toolkit lets
/// it.
class LivelyHost {
 public:
  explicit LivelyHost(CarelessPerson& random) : m_random(random) {
    for (int index = 1; index < SoType::getNumTypes(); ++index) {
      SoType const type = SoType::fromIndex(index);
      if (!type.canCreateInstance()) continue;
      if (type.isDerivedFrom(SoNode::getClassTypeId())) m_nodeTypes.push_back(type);
      if (type.isDerivedFrom(SoEngine::getClassTypeId())) m_engineTypes.push_back(type);
    }
    // What is refused is nobody's business here, and is refused all the time.
    SoError::setHandlerCallback(ignore);
    SoDebugError::setHandlerCallback(ignore);
    SoReadError::setHandlerCallback(ignore);
  }
  ~LivelyHost() {
    SoError::setHandlerCallback(nullptr);
    SoDebugError::setHandlerCallback(nullptr);
    SoReadError::setHandlerCallback(nullptr);
  }
  LivelyHost(LivelyHost const&) = delete;
  LivelyHost& operator=(LivelyHost const&) = delete;

  SoSeparator* root() const { return m_root; }
  void newScene(int nodes) {
    m_root = new SoSeparator;
    while (nodes-- > 0) addNode();
    for (int i = 0; i < 20; ++i) changeField();
  }

  /// Each once, hidden children included.
  std::vector<SoNode*> nodes() const {
    std::vector<SoNode*> found{m_root.get()};
    for (size_t i = 0; i < found.size(); ++i) {
      SoChildList* const children = found[i]->getChildren();
      for (int k = 0; children && k < children->getLength(); ++k) {
        SoNode* const child = (*children)[k];
        if (child && std::find(found.begin(), found.end(), child) == found.end()) found.push_back(child);
      }
    }
    return found;
  }
  /// Of some node, or of an engine that feeds it. Mostly there is one; else null.
  SoField* anyField() {
    SoFieldContainer* container = m_random.pick(nodes());
    SoField* field = fieldOf(container);
    if (field && field->isConnected() && m_random.happens(20)) {
      container = field->getConnectedField()->getContainer();
      if (container) field = fieldOf(container);
    }
    return field;
  }

  /// One change.
  void change() {
    switch (m_random.below(12)) {
      case 0:
        return addNode();
      case 1:
        return removeNode();
      case 2:
        return replaceNode();
      case 3:
        return connectField();
      case 4:
        return connectEngine();
      case 5:
        if (SoField* const field = anyField()) field->disconnect();
        return;
      case 6:
        return m_random.pick(nodes())->setName(SbName(m_random.happens(50) ? "a" : ""));
      case 7:
        return changeState();
      default:
        return changeField();
    }
  }

  /// Another value for some field, also for the one that is given.
  void changeField(SoField* field = nullptr) {
    if (!field) field = anyField();
    if (!field || field->getFieldType() == SoField::EVENT_OUT) return;
    auto* const multiple = dynamic_cast<SoMField*>(field);
    SbString reason;
    switch (m_random.below(multiple ? 7 : 4)) {
      case 0:
        field->touch();
        break;
      case 4:
        multiple->deleteValues(m_random.below(multiple->getNum() + 1));
        break;
      case 5:
        multiple->insertSpace(m_random.below(multiple->getNum() + 1), m_random.below(40));
        break;
      case 6:
        multiple->deleteValues(0);
        break;
      default:
        field->set(valueText().toUtf8().constData(), &reason);
    }
  }

 private:
  static void ignore(SoError const*, void*) {}

  QString valueText() {
    if (m_random.happens(20)) return m_random.nonsense();
    QStringList numbers;
    auto const number = [this] { return QString::number((m_random.below(200) - 100) / 8.0); };
    static constexpr std::array COUNTS{1, 1, 1, 2, 3, 3, 4, 4, 6, 9, 16};
    for (int i = m_random.pick(COUNTS); i > 0; --i) numbers << number();
    if (m_random.happens(70)) return numbers.join(' ');
    static QStringList const OTHERS{"TRUE",
                                    "FALSE",
                                    "\"text\"",
                                    "[ 0, 1, 2, 3, 4, 5, -1 ]",
                                    "[ 1 2 3, 4 5 6, 7 8 9 ]",
                                    "[ 1 2, 3 4 ]",
                                    "[ \"a\", \"b\" ]",
                                    "[ ]",
                                    "2 2 3 0xff0000 0xff00 0xff 0xffffff",
                                    "ALL",
                                    "Cube { }",
                                    "NULL",
                                    "[ 1 0 0 1, 0 1 0 1 ]"};
    return m_random.pick(OTHERS);
  }
  SoField* fieldOf(SoFieldContainer* container) {
    int const count = container->getNumFields();
    return count > 0 ? container->getField(m_random.below(count)) : nullptr;
  }
  SoNode* makeNode() {
    return static_cast<SoNode*>(static_cast<SoFieldContainer*>(m_random.pick(m_nodeTypes).createInstance()));
  }
  SoGroup* anyGroup() {
    for (int i = 0; i < 20; ++i) {
      if (auto* const group = dynamic_cast<SoGroup*>(m_random.pick(nodes()))) return group;
    }
    return m_root;
  }
  /// The places of the whole scene, once a node has become a child of a group.
  double placesWith(SoNode* added, SoGroup const* group) const {
    std::map<SoNode const*, double> known;
    std::function<double(SoNode*)> const below = [&](SoNode* node) {
      if (!known.try_emplace(node, 1).second) return known[node];
      double places = 1;
      SoChildList* const children = node->getChildren();
      for (int k = 0; children && k < children->getLength(); ++k) places += below((*children)[k]);
      if (node == group) places += below(added);
      return known[node] = places;
    };
    return below(m_root);
  }
  void addNode() {
    SoGroup* const group = anyGroup();
    if (m_random.happens(10)) {
      // Shared, or refused. A few dozen nodes that are shared again and again have millions of places.
      SoNode* const shared = m_random.pick(nodes());
      if (placesWith(shared, group) <= MOST_PLACES) group->addChild(shared);
      return;
    }
    if (nodes().size() < 60) group->insertChild(makeNode(), m_random.below(group->getNumChildren() + 1));
  }
  void removeNode() {
    SoGroup* const group = anyGroup();
    if (group->getNumChildren() > 0) group->removeChild(m_random.below(group->getNumChildren()));
  }
  void replaceNode() {
    SoGroup* const group = anyGroup();
    if (group->getNumChildren() > 0) group->replaceChild(m_random.below(group->getNumChildren()), makeNode());
  }
  void connectField() {
    SoField* const field = anyField();
    SoField* const source = m_random.happens(10) ? SoGlobalField::find("realTime") : anyField();
    if (field && source && field != source && field->getFieldType() != SoField::EVENT_OUT)
      field->connectFrom(source);
  }
  void connectEngine() {
    SoRef<SoEngine> const engine(SoEngine::create(m_random.pick(m_engineTypes)));
    SoField* const field = anyField();
    if (!engine || !field || field->getFieldType() == SoField::EVENT_OUT) return;
    for (int i = 0; i < engine->getNumFields() && !field->isConnected(); ++i) {
      SoField* const output = engine->getField(i);
      if (output->getFieldType() == SoField::EVENT_OUT) field->connectFrom(output);
    }
  }
  void changeState() {
    SoField* const field = anyField();
    if (!field) return;
    if (m_random.happens(50))
      field->setIgnored(!field->isIgnored());
    else
      field->setDefault(!field->isDefault());
  }

  static constexpr double MOST_PLACES = 1000;
  CarelessPerson& m_random;
  std::vector<SoType> m_nodeTypes, m_engineTypes;
  SoRef<SoSeparator> m_root;
};
