// Pages about how things look that need the viewer.

#include <utility>

#include "apps/gallery/GalleryBehaviour.h"
#include "apps/gallery/GalleryPage.h"
#include "kestrava/render/SoSceneManager.h"

namespace {

class TransparencyScene : public GalleryScene {
 public:
  explicit TransparencyScene(SoNode* root) : GalleryScene(root) {
    std::vector<std::string> names;
    for (auto const& [name, type] : TYPES) names.emplace_back(name);
    setChoices(std::move(names));
  }
  void choose(int which, SoSceneManager& manager) override {
    manager.getGLRenderAction()->setTransparencyType(TYPES[which].second);
  }

 private:
  static constexpr std::pair<char const*, SoGLRenderAction::Transparency> TYPES[] = {
      {"sorted triangles", SoGLRenderer::SORTED_TRIANGLES},
      {"sorted", SoGLRenderer::SORTED},
      {"blend", SoGLRenderer::BLEND},
      {"screen door", SoGLRenderer::SCREEN_DOOR},
      {"none", SoGLRenderer::NONE}};
};

} // namespace

std::unique_ptr<GalleryScene> GalleryBehaviour::transparency(GalleryPage const& page) {
  SoNode* const root = page.readScene();
  return root ? std::make_unique<TransparencyScene>(root) : nullptr;
}
