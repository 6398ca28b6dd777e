#include "apps/hosts/SceneChanges.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "kestrava/base/SbColor.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoCone.h"
#include "kestrava/nodes/SoCylinder.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoResetTransform.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoTranslation.h"

namespace {

constexpr int PLACES_AROUND = 12;
constexpr double MANY_SECONDS = 3;
constexpr long MANY_A_SECOND = 10'000;
constexpr int CROWD = 120;
constexpr char FILE_NAME[] = "host_part.kv"; // in memory

SbColor const COLORS[] = {{0.8f, 0.25f, 0.2f}, {0.25f, 0.6f, 0.3f}, {0.25f, 0.4f, 0.8f},
                          {0.85f, 0.7f, 0.2f}, {0.6f, 0.3f, 0.7f},  {0.3f, 0.65f, 0.7f}};

SoRef<SoShape> newShape(int which, float size) {
  switch (which % 4) {
    case 0: {
      SoRef<SoCube> const cube(new SoCube);
      cube->width = size;
      cube->height = size;
      cube->depth = size;
      return SoRef<SoShape>(cube.get());
    }
    case 1: {
      SoRef<SoSphere> const sphere(new SoSphere);
      sphere->radius = size * 0.6f;
      return SoRef<SoShape>(sphere.get());
    }
    case 2: {
      SoRef<SoCone> const cone(new SoCone);
      cone->bottomRadius = size * 0.6f;
      cone->height = size * 1.2f;
      return SoRef<SoShape>(cone.get());
    }
    default: {
      SoRef<SoCylinder> const cylinder(new SoCylinder);
      cylinder->radius = size * 0.5f;
      cylinder->height = size;
      return SoRef<SoShape>(cylinder.get());
    }
  }
}

SoRef<SoMaterial> newMaterial(int which) {
  SoRef<SoMaterial> const material(new SoMaterial);
  material->diffuseColor = COLORS[static_cast<std::size_t>(which) % std::size(COLORS)];
  return material;
}

std::string nameOf(SoNode const* node) {
  return node->getName().empty() ? node->getTypeId().getName().toString().str()
                                 : node->getName().toString().str();
}

} // namespace

SceneChanges::SceneChanges(SoGroup* root, SoNode* sample, float radius, float height)
    : m_root(root), m_sample(sample), m_radius(radius), m_height(height) {}

std::string SceneChanges::press(char letter) {
  switch (letter) {
    case 'a':
      return add();
    case 'r':
      return remove();
    case 's':
      return share();
    case 'p':
      return replace();
    case 'l':
      return reload();
    case 'k':
      return changeKit();
    case 'm':
      return startMany();
    default:
      return {};
  }
}

SoSeparator* SceneChanges::extras() {
  if (!m_extras) {
    m_extras = SoRef<SoSeparator>(new SoSeparator);
    m_extras->setName("extras");
    // Where the scene ends is no place that stays.
    m_extras->addChild(new SoResetTransform);
  }
  // The user of the inspector may have taken it out.
  if (m_root->findChild(m_extras) < 0) m_root->addChild(m_extras);
  return m_extras;
}

/// The next place around the middle, with the content on it.
SoRef<SoSeparator> SceneChanges::newPlace(SoNode* content) {
  int const index = m_made++;
  float const angle =
      2 * std::numbers::pi_v<float> * static_cast<float>(index % PLACES_AROUND) / PLACES_AROUND;
  float const level = static_cast<float>(index / PLACES_AROUND % 4) * m_radius * 0.2f;
  SoRef<SoSeparator> const place(new SoSeparator);
  SoRef<SoTranslation> const translation(new SoTranslation);
  translation->translation =
      SbVec3f(m_radius * std::cos(angle), m_height + level, m_radius * std::sin(angle));
  place->addChild(translation);
  place->addChild(content);
  return place;
}

// In the middle of the others, so that positions change.
std::string SceneChanges::add() {
  SoRef<SoSeparator> const thing(new SoSeparator);
  char name[32];
  std::snprintf(name, sizeof name, "thing%d", m_made + 1);
  thing->setName(name);
  thing->addChild(newMaterial(m_made));
  thing->addChild(newShape(m_made, m_radius * 0.14f));
  SoRef<SoSeparator> const place = newPlace(thing);
  SoSeparator* const group = extras();
  group->insertChild(place, (group->getNumChildren() + 1) / 2);
  m_places.push_back(place);
  m_newest = thing;
  return std::string("added ") + name;
}

std::string SceneChanges::remove() {
  while (!m_places.empty()) {
    SoRef<SoSeparator> const place = m_places.front();
    m_places.pop_front();
    if (!m_extras || m_extras->findChild(place) < 0) continue; // by the user of the inspector
    m_extras->removeChild(place);
    return "removed " + nameOf(place->getNumChildren() > 1 ? place->getChild(1) : place.get());
  }
  return "nothing is left to be removed";
}

std::string SceneChanges::share() {
  SoNode* const shared = m_newest ? static_cast<SoNode*>(m_newest) : m_sample.get();
  SoRef<SoSeparator> const place = newPlace(shared);
  extras()->addChild(place);
  m_places.push_back(place);
  return nameOf(shared) + " stands at one more place";
}

std::string SceneChanges::replace() {
  for (int i = 0; m_newest && i < m_newest->getNumChildren(); ++i) {
    SoNode* const old = m_newest->getChild(i);
    if (!old->isOfType(SoShape::getClassTypeId())) continue;
    SoRef<SoShape> const shape = newShape(m_made + ++m_turned, m_radius * 0.14f);
    m_newest->replaceChild(i, shape);
    return "replaced the shape of " + nameOf(m_newest) + " by a " + nameOf(shape);
  }
  return "there is no shape to be replaced yet";
}

/// With one box more than the last time, and after four with one again.
std::string SceneChanges::reload() {
  int const count = 1 + m_loads++ % 4;
  std::string text = "#Kestrava V1.0 ascii\nDEF loaded Separator {\n";
  char line[200];
  for (int i = 0; i < count; ++i) {
    SbColor const& color = COLORS[i];
    std::snprintf(line, sizeof line,
                  "  Material { diffuseColor %g %g %g }\n  DEF box%d Cube { width %g height %g depth %g }\n",
                  color[0], color[1], color[2], i + 1, m_radius * 0.1, m_radius * 0.1, m_radius * 0.1);
    text += line;
    std::snprintf(line, sizeof line, "  Translation { translation 0 %g 0 }\n", m_radius * 0.13);
    text += line;
  }
  text += "}\n";
  SoInput::addInMemoryTextFile(FILE_NAME, text.c_str());
  if (!m_file) {
    m_file = SoRef<SoFile>(new SoFile);
    m_file->name = FILE_NAME;
    SoRef<SoSeparator> const place = newPlace(m_file);
    extras()->addChild(place);
  } else {
    m_file->reload();
  }
  std::snprintf(line, sizeof line, "loaded %s, with %d boxes", FILE_NAME, count);
  return line;
}

std::string SceneChanges::changeKit() {
  if (!m_kit) {
    m_kit = SoRef<SoShapeKit>(new SoShapeKit);
    m_kit->setName("kit");
    m_kit->setPart("shape", newShape(0, m_radius * 0.14f));
    SoRef<SoSeparator> const place = newPlace(m_kit);
    extras()->addChild(place);
    return "added a kit";
  }
  // In turns: one part is set, the next one is given and taken away.
  int const step = m_parts++;
  if (step % 2 == 0) {
    SoRef<SoShape> const shape = newShape(step / 2 + 1, m_radius * 0.14f);
    m_kit->setPart("shape", shape);
    return "the kit's shape is a " + nameOf(shape);
  }
  bool const gives = step % 4 == 1;
  m_kit->setPart("appearance.material", gives ? newMaterial(step).get() : nullptr);
  return gives ? "the kit has a material" : "the kit has no material";
}

// Many changes.

std::string SceneChanges::startMany() {
  if (isChangingMuch()) return "many changes are under way";
  m_crowd = SoRef<SoGroup>(new SoGroup);
  m_crowd->setName("crowd");
  extras()->addChild(m_crowd);
  m_started = m_now;
  m_until = m_now + MANY_SECONDS;
  m_manyDone = 0;
  return "many changes, 10,000 a second";
}

std::string SceneChanges::turn(double seconds) {
  m_now = seconds;
  if (!isChangingMuch()) return {};
  long const due = static_cast<long>((std::min(m_now, m_until) - m_started) * MANY_A_SECOND);
  while (m_manyDone < due) changeOnce();
  return m_now >= m_until ? endMany(seconds) : std::string();
}

/// Adds, inserts, moves, shares, replaces and removes in turn.
void SceneChanges::changeOnce() {
  long const step = m_manyDone++;
  int const count = m_crowd->getNumChildren();
  auto const position = static_cast<int>(step * 7919 % std::max(count, 1));
  auto const randomly = [&](long factor) { return static_cast<float>((step * factor) % 1000) / 500 - 1; };
  auto const makeOne = [&] {
    SoRef<SoSeparator> const one(new SoSeparator);
    SoRef<SoTranslation> const at(new SoTranslation);
    at->translation = SbVec3f(randomly(37), 1 + randomly(71), randomly(113)) * m_radius * 0.6f;
    one->addChild(at);
    one->addChild(newMaterial(static_cast<int>(step / 7)));
    one->addChild(newShape(static_cast<int>(step / 3), m_radius * 0.03f));
    return one;
  };
  if (count < CROWD / 2) return m_crowd->addChild(makeOne());
  if (count > CROWD) return m_crowd->removeChild(position);
  SoNode* const chosen = m_crowd->getChild(position);
  switch (step % 6) {
    case 0:
      return m_crowd->insertChild(makeOne(), position);
    case 1:
      return m_crowd->replaceChild(position, makeOne());
    case 2:
      return m_crowd->addChild(chosen);
    case 3:
      return m_crowd->removeChild(position);
    default:
      break;
  }
  // What stands there may be what the user of the inspector made of it.
  SoNode* first = nullptr;
  if (auto* const group = dynamic_cast<SoGroup*>(chosen); group && group->getNumChildren() > 0)
    first = group->getChild(0);
  if (auto* const at = dynamic_cast<SoTranslation*>(first)) {
    at->translation = SbVec3f(randomly(53), 1 + randomly(91), randomly(29)) * m_radius * 0.6f;
  }
}

std::string SceneChanges::endMany(double seconds) {
  char line[80];
  std::snprintf(line, sizeof line, "%ld changes in %.1f s", m_manyDone, seconds - m_started);
  if (m_extras->findChild(m_crowd) >= 0) m_extras->removeChild(m_crowd);
  m_crowd.reset();
  m_until = 0;
  return line;
}
