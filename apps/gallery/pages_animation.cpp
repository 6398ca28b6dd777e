// The page that moves by itself.

#include "apps/gallery/GalleryBehaviour.h"
#include "apps/gallery/GalleryPage.h"
#include "kestrava/engines/SoElapsedTime.h"

namespace {

class AnimationScene : public GalleryScene {
 public:
  AnimationScene(SoNode* root, SoElapsedTime* watch) : GalleryScene(root), m_watch(watch) {
    setChoices({"running", "paused"});
  }
  void choose(int which, SoSceneManager&) override { m_watch->pause = which == 1; }
  void stopAt(double seconds) override {
    m_watch->timeIn.disconnect();
    m_watch->timeIn = SbTime(0);
    m_watch->pause = false;
    m_watch->reset.setValue();
    m_watch->timeIn = SbTime(seconds);
  }

 private:
  SoRef<SoElapsedTime> const m_watch; // all engines of the scene have the time from it
};

} // namespace

std::unique_ptr<GalleryScene> GalleryBehaviour::animation(GalleryPage const& page) {
  SoRef<SoNode> const root(page.readScene());
  auto* const watch =
      static_cast<SoElapsedTime*>(SoBase::getNamedBase("watch", SoElapsedTime::getClassTypeId()));
  return root && watch ? std::make_unique<AnimationScene>(root, watch) : nullptr;
}
