// Pages whose scenes answer the mouse.

#include "apps/gallery/GalleryBehaviour.h"
#include "apps/gallery/GalleryPage.h"
#include "kestrava/actions/SoPickedPoint.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/render/SoBoxHighlightRenderAction.h"
#include "kestrava/render/SoHaloHighlightRenderAction.h"
#include "kestrava/render/SoLineHighlightRenderAction.h"
#include "kestrava/render/SoSceneManager.h"

namespace {

template <class Scene> std::unique_ptr<GalleryScene> open(GalleryPage const& page) {
  SoNode* const root = page.readScene();
  return root ? std::make_unique<Scene>(root) : nullptr;
}

/// A scene whose handles are dragged.
class HandlesScene : public GalleryScene {
 public:
  using GalleryScene::GalleryScene;
  bool isForClicks() const override { return true; }
  std::string click(SoPickedPoint const*) override { return {}; }
};

std::string inWords(SbVec3f const& v) {
  return SbString::format("(%.2f, %.2f, %.2f)", v[0], v[1], v[2]).str();
}

/// What of a shape was met, as its data counts it.
std::string inWords(SoPickDetail const& detail) {
  std::string text;
  auto add = [&text](char const* what, int index) {
    if (index >= 0) text += std::string(text.empty() ? "" : ", ") + what + " " + std::to_string(index);
  };
  add("face", detail.faceIndex);
  add("part", detail.partIndex);
  add("line", detail.lineIndex);
  add("point", detail.pointIndex);
  for (int i = 0; i < detail.numCorners; ++i) add(i ? "and" : "corners", detail.corners[i].coordIndex);
  return text;
}

/// Marks the place of a hit.
class PickScene : public GalleryScene {
 public:
  explicit PickScene(SoNode* root)
      : GalleryScene(root),
        m_mark(find<SoSwitch>("mark")),
        m_arrow(find<SoSwitch>("arrow")),
        m_place(find<SoTransform>("place")) {}
  bool isForClicks() const override { return true; }

  std::string click(SoPickedPoint const* hit) override {
    m_mark->whichChild = hit ? 0 : SoSwitch::NONE;
    if (!hit) return "Nothing there.";
    SbVec3f const& normal = hit->getNormal();
    bool const hasNormal = normal.length() > 0;
    m_arrow->whichChild = hasNormal ? 0 : SoSwitch::NONE;
    m_place->translation = hit->getPoint();
    m_place->rotation = hasNormal ? SbRotation(SbVec3f(0, 1, 0), normal) : SbRotation();
    SoPath const& path = *hit->getPath();
    std::string text = path.getTail()->getTypeId().getName().str();
    for (int i = path.getLength() - 1; i > 0; --i) {
      if (SbName const name = path.getNode(i)->getName(); !name.empty()) {
        text += " of '" + name.str() + "'";
        break;
      }
    }
    text += " at " + inWords(hit->getPoint());
    if (hasNormal) text += ", normal " + inWords(normal);
    std::string const detail = inWords(hit->getDetail());
    return text + (detail.empty() ? "" : ": " + detail) + ".";
  }

 private:
  SoSwitch *m_mark, *m_arrow; // in the scene, as the transform
  SoTransform* m_place;
};

/// Marks what is selected in each of the three ways.
class SelectionScene : public GalleryScene {
 public:
  explicit SelectionScene(SoNode* root) : GalleryScene(root), m_selection(find<SoSelection>("choice")) {
    setChoices({"halo", "line", "box"});
    for (char const* name : {"ball", "copies"}) {
      SoRef<SoPath> const path(new SoPath(m_selection));
      path->appendNode(find<SoNode>(name));
      m_selection->select(path);
    }
  }
  bool isForClicks() const override { return true; }
  std::string click(SoPickedPoint const*) override { return {}; }
  void choose(int which, SoSceneManager& manager) override {
    SoHighlightRenderAction* const actions[] = {&m_halo, &m_line, &m_box};
    manager.setGLRenderAction(actions[which]);
  }

 private:
  SoSelection* m_selection; // in the scene
  SoHaloHighlightRenderAction m_halo;
  SoLineHighlightRenderAction m_line;
  SoBoxHighlightRenderAction m_box;
};

} // namespace

std::unique_ptr<GalleryScene> GalleryBehaviour::handles(GalleryPage const& page) {
  return open<HandlesScene>(page);
}
std::unique_ptr<GalleryScene> GalleryBehaviour::picking(GalleryPage const& page) {
  return open<PickScene>(page);
}
std::unique_ptr<GalleryScene> GalleryBehaviour::selection(GalleryPage const& page) {
  return open<SelectionScene>(page);
}
