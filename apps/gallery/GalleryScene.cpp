#include "apps/gallery/GalleryScene.h"

#include <algorithm>

#include "kestrava/actions/SoPickedPoint.h"
#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/render/SoSceneManager.h"

GalleryScene::GalleryScene(SoNode* root) : m_root(root) {
  m_switch = find<SoSwitch>("choices");
  if (!m_switch) return;
  for (int i = 0; i < m_switch->getNumChildren(); ++i) {
    std::string name = m_switch->getChild(i)->getName().str();
    std::replace(name.begin(), name.end(), '_', ' ');
    m_choices.push_back(name);
  }
}

GalleryScene::~GalleryScene() = default;

SoNode* GalleryScene::findNode(SbName const& name, SoType type) const {
  SoSearchAction search;
  search.setName(name);
  search.setType(type);
  search.setSearchingAll(true);
  search.apply(m_root);
  return search.isFound() ? search.getPath()->getTail() : nullptr;
}

void GalleryScene::choose(int which, SoSceneManager&) {
  if (m_switch) m_switch->whichChild = which;
}

std::string GalleryScene::click(SoPickedPoint const* hit) {
  if (!hit) return "Nothing there.";
  SbVec3f const& at = hit->getPoint();
  return "Hit " + std::string(hit->getPath()->getTail()->getTypeId().getName().c_str()) + " at " +
         SbString::format("%.2f %.2f %.2f", at[0], at[1], at[2]).str() + ".";
}
