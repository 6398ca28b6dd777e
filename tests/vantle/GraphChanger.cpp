#include "tests/vantle/GraphChanger.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include <QFile>

#include "kestrava/base/SoError.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoSceneKit.h"
#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/kits/SoWrapperKit.h"
#include "kestrava/nodes/SoAnnotation.h"
#include "kestrava/nodes/SoArray.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFaceSet.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoFragmentShader.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoInfo.h"
#include "kestrava/nodes/SoLOD.h"
#include "kestrava/nodes/SoLevelOfDetail.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShaderParameter1f.h"
#include "kestrava/nodes/SoShaderParameterSampler2D.h"
#include "kestrava/nodes/SoShaderProgram.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "kestrava/nodes/SoVertexShader.h"
#include "vnt/QtText.h"

namespace {

/// More places are not made; each step is compared with a tree built afresh.
constexpr double MOST_PLACES = 200;

void ignore(SoError const*, void*) {}

template <class T> T* as(SoNode* node) { return dynamic_cast<T*>(node); }

} // namespace

GraphChanger::GraphChanger(unsigned seed) : m_seed(seed), m_random(seed), m_sensor(changeAgain, this) {
  // What is refused is refused all the time.
  SoError::setHandlerCallback(ignore);
  SoDebugError::setHandlerCallback(ignore);
  SoReadError::setHandlerCallback(ignore);
  SoWWWInline::setFetchURLCallBack(fetch, this);
  m_sensor.setPriority(0);
  for (int i = 0; i < 2; ++i) {
    m_pool.insert(m_pool.end(), {new SoSeparator, new SoSwitch, new SoGroup, new SoWrapperKit, new SoShapeKit,
                                 new SoIndexedFaceSet, new SoVertexProperty, new SoCube, new SoFragmentShader,
                                 new SoShaderParameter1f, new SoFile, new SoWWWInline});
    writeFile(i);
  }
  m_pool.insert(m_pool.end(), {new SoShaderProgram, new SoSceneKit, new SoLevelOfDetail});
  m_sources = {new SoFaceSet, new SoShaderProgram, new SoVertexShader};
  m_root = new SoSeparator;
  m_watched->addChild(m_root);
}

GraphChanger::~GraphChanger() {
  SoWWWInline::setFetchURLCallBack(nullptr);
  SoError::setHandlerCallback(nullptr);
  SoDebugError::setHandlerCallback(nullptr);
  SoReadError::setHandlerCallback(nullptr);
}

void GraphChanger::say(std::string const& text, SoNode const* node) {
  m_what += (m_what.empty() ? "" : "; ") + text;
  if (node) m_what += std::string(" of ") + node->getTypeId().getName().c_str();
}

std::vector<SoNode*> GraphChanger::below(SoNode const* node) {
  std::vector<SoNode*> found;
  if (SoChildList const* const children = node->getChildren()) {
    // The stand-in of an inline is its own affair, and changes without a word.
    int const first = dynamic_cast<SoWWWInline const*>(node) ? 1 : 0;
    found.assign(children->begin() + first, children->end());
    return found;
  }
  for (int i = 0; i < node->getNumFields(); ++i) {
    SoField* const field = node->getField(i);
    if (auto* const single = dynamic_cast<SoSFNode*>(field)) found.push_back(single->getValue());
    auto* const multiple = dynamic_cast<SoMFNode*>(field);
    for (int k = 0; multiple && k < multiple->getNumValues(); ++k) found.push_back(multiple->getNode(k));
  }
  std::erase(found, nullptr);
  return found;
}

std::vector<SoNode*> GraphChanger::nodes() const {
  std::vector<SoNode*> found;
  if (!m_root) return found;
  std::unordered_set<SoNode*> seen{m_root};
  found.push_back(m_root);
  for (std::size_t i = 0; i < found.size(); ++i) {
    for (SoNode* node : below(found[i])) {
      if (seen.insert(node).second) found.push_back(node);
    }
  }
  return found;
}

namespace {

/// Sums up, over all ways down from a node, what each node on them counts.
double sumBelow(SoNode* node, std::function<double(SoNode*)> const& count,
                std::unordered_map<SoNode*, double>& known) {
  auto const found = known.find(node);
  if (found != known.end()) return found->second;
  double sum = count(node);
  for (SoNode* child : GraphChanger::below(node)) sum += sumBelow(child, count, known);
  return known[node] = sum;
}

double placesBelow(SoNode* node) {
  std::unordered_map<SoNode*, double> known;
  return sumBelow(
      node, [](SoNode*) { return 1.0; }, known);
}

} // namespace

double GraphChanger::places() const { return m_root ? placesBelow(m_root) : 0; }

bool GraphChanger::fits(SoNode* holder, SoNode* child) const {
  if (SoNode::closesCircle(holder, child)) return false;
  // Kits do not see circles that close through their own groups.
  for (int i = 0; i < holder->getNumFields() && as<SoBaseKit>(holder); ++i) {
    auto const* const part = dynamic_cast<SoSFNode const*>(holder->getField(i));
    if (part && part->getValue() && SoNode::closesCircle(part->getValue(), child)) return false;
  }
  double const added = placesBelow(child);
  if (added > MOST_PLACES / 2 || !m_root) return added <= MOST_PLACES / 2;
  std::unordered_map<SoNode*, double> known;
  double const holders = sumBelow(
      m_root, [holder](SoNode* n) { return n == holder ? 1.0 : 0.0; }, known);
  // What is not in the scene is not to grow all the more.
  return holders > 0 ? places() + holders * added <= MOST_PLACES : added < MOST_PLACES / 20;
}

/// Of the scene, sometimes of what is not in it; null when there is none.
template <class T> T* GraphChanger::any() {
  std::vector<SoNode*> all = nodes();
  if (all.empty() || number(6) == 0) {
    for (auto const& node : m_pool) all.push_back(node);
    for (auto const& node : m_outside) all.insert(all.end(), 5, node);
  }
  std::erase_if(all, [](SoNode* node) { return !as<T>(node); });
  return all.empty() ? nullptr : as<T>(all[number(all.size())]);
}

SoNode* GraphChanger::make() {
  switch (number(19)) {
    case 0:
    case 1:
    case 2:
      return new SoSeparator;
    case 3:
      return new SoSwitch;
    case 4:
      return new SoLOD;
    case 5:
      return number(2) ? static_cast<SoNode*>(new SoAnnotation) : new SoArray;
    case 6: {
      auto* const shape = new SoFaceSet;
      if (number(2)) shape->vertexProperty.setValue(new SoVertexProperty);
      return shape;
    }
    case 7:
      return new SoShapeKit;
    case 8:
      return new SoWrapperKit;
    case 9:
      return new SoAppearanceKit;
    case 10: {
      auto* const file = new SoFile;
      file->name.setValue(toSbString(m_folder.filePath(number(2) ? "0.kv" : "1.kv")));
      return file;
    }
    case 11:
      return new SoWWWInline;
    case 12: {
      auto* const shader = new SoVertexShader;
      shader->parameter.addShaderParameter(new SoShaderParameter1f);
      return shader;
    }
    case 13:
      return new SoShaderParameterSampler2D;
    case 14: {
      auto* const group = new SoSeparator;
      group->addChild(new SoCube);
      group->addChild(new SoMaterial);
      return group;
    }
    case 15:
      return new SoNodeKitListPart;
    case 16:
      return new SoMaterial;
    case 17:
      return new SoSphere;
    default:
      return new SoCube;
  }
}

/// Something that the holder may get; a new leaf when nothing else fits.
SoNode* GraphChanger::pick(SoNode* holder) {
  for (int tries = 0; tries < 3; ++tries) {
    SoNode* node = nullptr;
    if (number(2)) {
      node = m_pool[number(m_pool.size())];
    } else if (number(3) == 0) {
      node = any<SoNode>();
    } else {
      node = make();
    }
    if (node && fits(holder, node)) return node;
    if (node && node->getRefCount() == 0) SoRef<SoNode> const destroyed(node);
  }
  return new SoMaterial;
}

void GraphChanger::step(unsigned number) {
  m_random.seed(m_seed * 1'000'003u + number);
  m_what.clear();
  m_single = true;
  m_newRoot = false;
  change();
  if (places() > MOST_PLACES) prune();
}

/// What connections, files and kits have let grow beyond the limit.
void GraphChanger::prune() {
  say("prune");
  m_single = false;
  for (int tries = 0; tries < 100 && places() > MOST_PLACES; ++tries) {
    SoGroup* const group = any<SoGroup>();
    if (group) group->removeAllChildren();
  }
  while (m_root && places() > MOST_PLACES) changeRoot();
}

void GraphChanger::change() {
  switch (m_root ? number(30) : 26) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
    case 8:
      if (auto* group = any<SoGroup>()) changeGroup(group);
      return;
    case 9:
    case 10:
    case 11:
    case 12:
      if (auto* kit = any<SoBaseKit>()) changeKit(kit);
      return;
    case 13:
    case 14:
      if (auto* list = any<SoNodeKitListPart>()) changeList(list);
      return;
    case 15:
    case 16:
    case 17:
    case 18:
      changeField(any<SoNode>());
      return;
    case 19:
      if (auto* file = any<SoFile>()) changeFile(file);
      return;
    case 20:
      if (auto* external = any<SoWWWInline>()) changeInline(external);
      return;
    case 21:
      return moveBranch();
    case 22:
      return copyBranch();
    case 23:
      return changeSilently();
    case 24:
    case 25:
      return changeInsideAChange();
    case 26:
      if (m_depth == 0 && (!m_root || number(20) == 0)) changeRoot();
      return;
    default:
      if (SoNode* node = any<SoNode>()) {
        node->setName(SbName(number(2) ? std::string(1, static_cast<char>('a' + number(5))) : std::string()));
        say("rename", node);
      }
  }
}

void GraphChanger::changeGroup(SoGroup* group) {
  SoRef<SoGroup> const kept(group);
  int const count = group->getNumChildren();
  switch (number(10)) {
    case 0:
    case 1:
    case 2:
      say("addChild", group);
      return group->addChild(pick(group));
    case 3:
    case 4:
      say("insertChild", group);
      return group->insertChild(pick(group), number(count + 1));
    case 5:
      say("replaceChild", group);
      if (count) group->replaceChild(number(count), pick(group));
      return;
    case 6:
    case 7:
      say("removeChild", group);
      if (count) group->removeChild(number(count));
      return;
    case 8:
      say("removeChild(node)", group);
      if (count) group->removeChild(group->getChild(number(count)));
      return;
    default:
      say("removeAllChildren", group);
      if (number(3) == 0) group->removeAllChildren();
  }
}

void GraphChanger::changeKit(SoBaseKit* kit) {
  SoRef<SoBaseKit> const kept(kit);
  SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
  if (catalog.getNumEntries() < 2) return;
  int const part = 1 + number(catalog.getNumEntries() - 1);
  std::string const name = catalog.getName(part).str();
  switch (number(6)) {
    case 0:
      say("getPart " + name, kit);
      kit->getPart(name, true);
      return;
    case 1: { // as a host does that knows the fields, private parts too
      say("field of part " + name, kit);
      auto* const field = static_cast<SoSFNode*>(kit->getField(catalog.getName(part)));
      field->setValue(number(2) ? SoNode::create(catalog.getDefaultType(part)) : nullptr);
      return;
    }
    case 2: { // deep ones; the parts on the way are made
      static char const* const names[] = {"appearance.material",       "appearance.texture2",
                                          "childList[0].transform",    "childList[0].appearance.font",
                                          "childList[0].childList[0]", "childList[1].topSeparator"};
      char const* const deep = names[number(std::size(names))];
      m_single = false;
      say(std::string("deep part ") + deep, kit);
      if (number(2)) {
        kit->getPart(deep, true);
      } else {
        kit->setPart(deep, nullptr);
      }
      return;
    }
    case 3:
      say("setPart null " + name, kit);
      kit->setPart(catalog.isList(part) && number(2) ? name + "[0]" : name, nullptr);
      return;
    default:
      if (!catalog.isList(part)) return setPartOf(kit, name, catalog.getType(part));
      m_single = false; // may make the list first
      setPartOf(kit, name + "[" + std::to_string(number(3)) + "]", catalog.getListItemType(part));
  }
}

/// A new node, or one that stands somewhere in the scene.
void GraphChanger::setPartOf(SoBaseKit* kit, std::string const& name, SoType type) {
  SoNode* node = type.canCreateInstance() && number(2) ? SoNode::create(type) : nullptr;
  for (int tries = 0; tries < 5 && !node; ++tries) {
    SoNode* const found = pick(kit);
    if (found->isOfType(type)) {
      node = found;
    } else if (found->getRefCount() == 0) {
      SoRef<SoNode> const destroyed(found);
    }
  }
  SoRef<SoNode> const kept(node);
  say("setPart " + name, kit);
  if (node) kit->setPart(name, node);
}

void GraphChanger::changeList(SoNodeKitListPart* list) {
  SoRef<SoNodeKitListPart> const kept(list);
  int const count = list->getNumChildren();
  SoNode* const node = !list->getItemType().isBad() && list->getItemType().canCreateInstance() && number(2)
                           ? SoNode::create(list->getItemType())
                           : pick(list);
  SoRef<SoNode> const keptNode(node);
  int const kind = number(8);
  say("list " + std::to_string(kind), list);
  switch (kind) {
    case 0:
    case 1:
    case 2:
      list->insertChild(node, number(count + 1));
      return;
    case 3:
    case 4:
      if (count) list->removeChild(number(count));
      return;
    case 5:
      if (count) list->replaceChild(number(count), node);
      return;
    case 6:
      list->containerNode.setValue(number(3) ? new SoGroup : nullptr);
      return;
    default:
      if (SoGroup* group = any<SoGroup>(); group && fits(list, group)) list->containerNode.setValue(group);
  }
}

void GraphChanger::changeField(SoNode* node) {
  if (!node) return;
  SoRef<SoNode> const kept(node);
  if (as<SoBaseKit>(node) || as<SoNodeKitListPart>(node)) return;
  std::vector<SoField*> fields;
  for (int i = 0; i < node->getNumFields(); ++i) {
    SoField* const field = node->getField(i);
    if (dynamic_cast<SoSFNode*>(field) || dynamic_cast<SoMFNode*>(field)) fields.push_back(field);
  }
  if (fields.empty()) return;
  SoField* const field = fields[number(fields.size())];
  bool const silent = number(8) == 0;
  bool const was = silent && field->enableNotify(false);
  if (auto* single = dynamic_cast<SoSFNode*>(field)) {
    changeSingle(single, node);
  } else {
    changeMultiple(static_cast<SoMFNode*>(field), node);
  }
  if (!silent) return;
  say("silently");
  m_single = false;
  field->enableNotify(was);
  field->touch();
}

void GraphChanger::changeSingle(SoSFNode* field, SoNode* node) {
  int const kind = number(9);
  say("value of " + field->getName().str() + " " + std::to_string(kind), node);
  auto& source = static_cast<SoFaceSet&>(*m_sources[0]).vertexProperty;
  switch (kind) {
    case 0:
      return field->setValue(nullptr);
    case 1:
      m_single = false;
      field->set(number(2) ? "Cube { }" : "NULL");
      return;
    case 2:
      m_single = false;
      field->connectFrom(&source);
      return;
    case 3:
      return field->disconnect();
    case 4: // perhaps connected
      m_single = false;
      return source.setValue(number(3) ? new SoVertexProperty : nullptr);
    case 5:
      return field->setIgnored(!field->isIgnored());
    default:
      return field->setValue(pick(node));
  }
}

void GraphChanger::changeMultiple(SoMFNode* field, SoNode* node) {
  int const count = field->getNumValues();
  int const kind = number(12);
  say("values of " + field->getName().str() + " " + std::to_string(kind), node);
  bool const isParameter = field->getTypeId() != SoMFNode::getClassTypeId();
  auto& source = isParameter
                     ? static_cast<SoVertexShader&>(*m_sources[2]).parameter
                     : static_cast<SoMFNode&>(static_cast<SoShaderProgram&>(*m_sources[1]).shaderObject);
  switch (kind) {
    case 0:
      return field->setValue(pick(node));
    case 1: {
      SoRef<SoNode> const first(pick(node)), second(new SoShaderParameter1f);
      if (placesBelow(first) > 10) return;
      return field->setValues({first, second, first});
    }
    case 2:
      return field->insertSpace(number(count + 1), 1 + number(2));
    case 3:
      return field->deleteValues(number(count + 1), number(3) - 1);
    case 4:
      if (count) field->replaceNode(number(count), pick(node));
      return;
    case 5:
      if (count) field->removeNode(number(count));
      return;
    case 6:
      m_single = false;
      field->set1(number(count + 2), number(2) ? "Sphere { }" : "NULL");
      return;
    case 7:
      m_single = false;
      field->connectFrom(&source);
      return;
    case 8:
      m_single = false;
      field->disconnect();
      return source.setValue(new SoShaderParameter1f);
    case 9:
      m_single = false;
      field->append(source);
      return;
    default:
      return field->insertNode(pick(node), number(count + 1));
  }
}

void GraphChanger::writeFile(int which) {
  static char const* const texts[] = {
      "Separator { Cube { } DEF x Group { Sphere { } USE x2 } }", // faulty: nothing of it is shown
      "Separator { DEF s Separator { Cube { } } Switch { USE s USE s } }",
      "Group { IndexedFaceSet { vertexProperty VertexProperty { } } }",
      "Separator { File { name \"0.kv\" } Cone { } }",
      "Cube { }",
      "WrapperKit { contents Separator { Cube { } } }"};
  QFile file(m_folder.filePath(QString::number(which) + ".kv"));
  if (!file.open(QIODevice::WriteOnly)) return;
  file.write(QByteArray("#Kestrava V1.0 ascii\n") + texts[number(std::size(texts))] + '\n');
}

void GraphChanger::changeFile(SoFile* file) {
  SoRef<SoFile> const kept(file);
  m_single = false;
  switch (number(4)) {
    case 0: {
      static char const* const names[] = {"0.kv", "1.kv", "1.kv", "missing.kv", ""};
      QString const name = names[number(std::size(names))];
      say("file name " + name.toStdString());
      file->name.setValue(toSbString(name.isEmpty() ? name : m_folder.filePath(name)));
      return;
    }
    case 1:
      say("reload");
      return file->reload();
    default:
      say("write and reload");
      writeFile(number(2));
      return file->reload();
  }
}

void GraphChanger::fetch(SbString const& url, void* data, SoWWWInline* external) {
  auto* const changer = static_cast<GraphChanger*>(data);
  if (url == "later") {
    changer->m_awaiting.emplace_back(external);
  } else {
    external->setChildData(changer->pick(external));
  }
}

void GraphChanger::changeInline(SoWWWInline* external) {
  SoRef<SoWWWInline> const kept(external);
  m_single = false;
  int const kind = number(6);
  say("inline " + std::to_string(kind));
  switch (kind) {
    case 0:
      return external->setChildData(nullptr);
    case 1:
      external->name.setValue(number(2) ? "now" : "later");
      return external->requestChildrenFromURL();
    case 2:
      return external->alternateRep.setValue(number(2) ? new SoCube : nullptr);
    case 3:
      for (auto const& waiting : std::exchange(m_awaiting, {})) waiting->setChildData(pick(waiting));
      return;
    default:
      return external->setChildData(pick(external));
  }
}

void GraphChanger::changeRoot() {
  m_single = false;
  m_newRoot = true;
  SoRef<SoNode> next(number(4) ? m_pool[number(m_pool.size())].get() : make());
  if (placesBelow(next) > MOST_PLACES) next = new SoSeparator;
  int const kind = m_root ? number(4) : 0;
  say("root " + std::to_string(kind));
  switch (kind) {
    case 0:
      m_watched->removeAllChildren();
      m_watched->addChild(next);
      break;
    case 1:
      m_watched->replaceChild(0, next);
      break;
    case 2: // the one that came last is the scene
      while (m_watched->getNumChildren() > 1) m_watched->removeChild(m_watched->getNumChildren() - 1);
      m_watched->insertChild(next, 0);
      break;
    default:
      m_watched->removeAllChildren();
      next = nullptr;
  }
  m_root = next;
}

/// Under another parent, the same node all the time.
void GraphChanger::moveBranch() {
  m_single = false;
  SoRef<SoGroup> const from(any<SoGroup>()), to(any<SoGroup>());
  if (!from || !to || from->getNumChildren() == 0) return;
  SoRef<SoNode> const branch(from->getChild(number(from->getNumChildren())));
  bool const first = number(2);
  if (SoNode::closesCircle(to, branch) || !fits(to, branch)) return;
  say("move", branch);
  if (first) from->removeChild(branch);
  to->insertChild(branch, number(to->getNumChildren() + 1));
  if (!first) from->removeChild(branch);
}

void GraphChanger::copyBranch() {
  m_single = false;
  SoRef<SoGroup> const to(any<SoGroup>());
  SoRef<SoNode> const original(any<SoNode>());
  if (!to || !original) return;
  SoRef<SoNode> const copied(original->copy(number(2)));
  if (!copied || !fits(to, copied)) return;
  say("copy", original);
  to->addChild(copied);
}

void GraphChanger::changeSilently() {
  m_single = false;
  SoRef<SoGroup> const group(any<SoGroup>());
  if (!group) return;
  bool const above = m_silentAbove && number(2);
  say("silent", group);
  group->enableNotify(false);
  for (int i = number(3); i >= 0; --i) {
    if (above) {
      std::vector<SoNode*> all = below(group);
      SoRef<SoNode> const node(all.empty() ? group.get() : all[number(all.size())]);
      if (auto* inner = as<SoGroup>(node)) changeGroup(inner);
      if (auto* inner = as<SoBaseKit>(node)) changeKit(inner);
      changeField(node);
    } else {
      changeGroup(group);
    }
  }
  group->enableNotify(true);
  group->touch();
}

void GraphChanger::changeInsideAChange() {
  if (m_depth > 0 || !m_root) return;
  m_single = false;
  SoNode* const heard = number(3) ? any<SoNode>() : m_watched.get();
  if (!heard) return;
  SoRef<SoNode> const kept(heard);
  say("inside a change");
  m_sensor.attach(heard);
  ++m_depth;
  change();
  --m_depth;
  m_sensor.detach();
}

void GraphChanger::changeAgain(void* data, SoSensor*) {
  auto* const changer = static_cast<GraphChanger*>(data);
  changer->m_sensor.detach();
  ++changer->m_depth;
  changer->say("inner");
  changer->change();
  --changer->m_depth;
}
