// What the mouse costs in a scene of 10,000 shapes with handles over one of them and handles over all: moving
// the pointer without a button, a drag's press and its moves, and the list that a frame draws after a move.

#include "bench/bench.h"
#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/draggers/SoDragger.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoHandleBoxManip.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/render/SoDrawList.h"

namespace {

constexpr int ROWS = 100;

/// Cubes side by side; in the first place handles over one cube, or over the whole.
class Scene {
 public:
  explicit Scene(bool overAll) : m_action(SbViewportRegion(800, 800)) {
    m_root = SoRef<SoSeparator>(new SoSeparator);
    SoGroup* group = m_root.get();
    if (overAll) group->addChild(m_manip);
    for (int i = 0; i < ROWS * ROWS; ++i) {
      auto* const place = new SoSeparator;
      auto* const move = new SoTranslation;
      move->translation = SbVec3f(static_cast<float>(3 * (i % ROWS)), static_cast<float>(3 * (i / ROWS)), 0);
      place->addChild(move);
      if (!overAll && i == 0) place->addChild(m_manip);
      place->addChild(new SoCube);
      group->addChild(place);
    }
    m_camera = SoRef<SoCamera>(new SoPerspectiveCamera);
    m_camera->viewAll(m_root, SbViewportRegion(800, 800));
    m_action.setCamera(m_camera);
    draw();
  }
  /// What a frame asks for.
  void draw() {
    SbViewVolume const volume = m_camera->getViewVolume(1);
    m_list.update(m_root, {SbViewportRegion(800, 800), m_camera, volume});
  }
  /// The middle of the handle that moves along the view.
  SbVec2s handle() const {
    SbBox3f const& box = m_list.getBounds();
    SbVec3f screen;
    SbVec3f const middle = m_overAll() ? box.getCenter() : SbVec3f();
    m_camera->getViewVolume(1).projectToScreen(middle, screen);
    return SbVec2s(static_cast<short>(screen[0] * 800), static_cast<short>(screen[1] * 800));
  }
  void send(SoEvent& event, SbVec2s at) {
    event.position = at;
    m_action.setEvent(&event);
    m_action.apply(m_root);
  }
  void button(SbVec2s at, SoButtonEvent::State state) {
    SoMouseButtonEvent event;
    event.button = SoMouseButtonEvent::LEFT;
    event.state = state;
    send(event, at);
  }
  void move(SbVec2s at) {
    SoLocation2Event event;
    send(event, at);
  }
  bool isDragged() const { return m_manip->getDragger()->isActive.getValue(); }

 private:
  bool m_overAll() const { return (*m_root->getChildren())[0] == m_manip.get(); }

  SoRef<SoSeparator> m_root;
  SoRef<SoHandleBoxManip> m_manip{new SoHandleBoxManip};
  SoRef<SoCamera> m_camera;
  SoDrawList m_list;
  SoHandleEventAction m_action;
};

void measure(std::string const& name, bool overAll) {
  Scene scene(overAll);
  SbVec2s const from = scene.handle();
  auto const beside = [&](int i) { return SbVec2s(static_cast<short>(from[0] + i), from[1]); };
  constexpr int MOVES = 20;
  // Beyond the shapes, so that nothing lights up and nothing is drawn anew.
  scene.move(SbVec2s(2, 790));
  scene.draw();
  double const hover = bench::fastest([&] {
    for (int i = 0; i < MOVES; ++i) scene.move(SbVec2s(static_cast<short>(2 + i % 3), 790));
  });
  bench::report({name + "_hover", hover / MOVES * 1e6, "us", 0});
  double press = 0, moves = 0, frames = 0;
  press = bench::fastest([&] { scene.button(from, SoButtonEvent::DOWN); }, 1);
  if (!scene.isDragged()) return bench::report({name + "_failed", 0, "drags", 0});
  scene.draw();
  for (int i = 1; i <= MOVES; ++i) {
    moves += bench::fastest([&] { scene.move(beside(i)); }, 1);
    frames += bench::fastest([&] { scene.draw(); }, 1);
  }
  scene.button(beside(MOVES), SoButtonEvent::UP);
  bench::report({name + "_press", press * 1e3, "ms", 0});
  bench::report({name + "_move", moves / MOVES * 1e6, "us", 0});
  bench::report({name + "_list", frames / MOVES * 1e3, "ms", 0});
}

} // namespace

BENCH(drag_one_of_10k) { measure("drag_one_of_10k", false); }
BENCH(drag_all_of_10k) { measure("drag_all_of_10k", true); }
