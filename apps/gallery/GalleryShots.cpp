#include "apps/gallery/GalleryShots.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "apps/gallery/GalleryCamera.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/render/SoOffscreenRenderArea.h"
#include "kestrava/render/SoSceneManager.h"
#include "kestrava/sensors/SoSensorManager.h"

namespace {

/// Scenes that move by themselves are shown at this moment, in seconds.
constexpr double MOMENT = 1.25;

/// A copy of the scene's camera, or one that sees everything, that fits the view.
SoRef<SoCamera> makeCamera(SoSceneManager& manager) {
  SoGLRenderAction& action = *manager.getGLRenderAction();
  SbViewportRegion const& region = manager.getViewportRegion();
  action.setViewportRegion(region);
  action.setCamera(nullptr);
  action.prepare(manager.getSceneGraph());
  SoRef<SoCamera> camera;
  if (SoCamera* const inScene = action.getDrawList().getCamera()) {
    camera = SoRef<SoCamera>(static_cast<SoCamera*>(SoNode::create(inScene->getTypeId())));
    camera->copyFieldValues(*inScene);
  } else {
    camera = SoRef<SoCamera>(new SoPerspectiveCamera);
    camera->position = SbVec3f(0.55f, 0.45f, 1);
    camera->pointAt(SbVec3f(0, 0, 0));
    camera->viewAll(manager.getSceneGraph(), region);
  }
  GalleryCamera::fit(*camera, GalleryCamera::getHeightAngle(*camera), region.getViewportAspectRatio());
  return camera;
}

std::string fileName(GalleryPage const& page, GalleryScene const& scene, int choice) {
  std::string name = page.name;
  if (choice > 0) name += "-" + scene.getChoices()[choice];
  std::replace(name.begin(), name.end(), ' ', '-');
  return name + ".png";
}

bool shoot(GalleryPage const& page, std::filesystem::path const& folder, SbVec2i32 const& size) {
  std::unique_ptr<GalleryScene> const scene = page.open();
  if (!scene) return false;
  SbViewportRegion const region(SbVec2s(static_cast<short>(size[0]), static_cast<short>(size[1])));
  SoRef<SoSceneManager> const manager(new SoSceneManager);
  manager->setSceneGraph(scene->getRoot());
  manager->setViewportRegion(region);
  int const numPictures = std::max(1, static_cast<int>(scene->getChoices().size()));
  bool ok = true;
  for (int choice = 0; choice < numPictures; ++choice) {
    scene->choose(choice, *manager);
    scene->stopAt(MOMENT);
    SoSensorManager::processDelayQueue(true);
    manager->setCamera(makeCamera(*manager));
    manager->getGLRenderAction()->setFitDepth(true);
    SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
    area->setSize(size);
    area->setSceneManager(manager);
    std::string const path = (folder / fileName(page, *scene, choice)).string();
    bool const written = area->renderToFile(path);
    if (written) std::printf("%s\n", path.c_str());
    ok = ok && written;
  }
  return ok;
}

} // namespace

bool GalleryShots::write(std::string const& folder, int width, int height,
                         std::vector<GalleryPage const*> const& pages) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    std::fprintf(stderr, "gallery: %s: %s\n", folder.c_str(), error.message().c_str());
    return false;
  }
  bool ok = true;
  for (GalleryPage const* page : pages) ok = shoot(*page, folder, SbVec2i32(width, height)) && ok;
  return ok;
}
