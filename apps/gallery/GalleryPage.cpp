#include "apps/gallery/GalleryPage.h"

#include "apps/gallery/GalleryFiles.h"
#include "kestrava/base/SoError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"

GalleryPage const* GalleryPage::find(std::string const& name) {
  for (GalleryPage const& page : all()) {
    if (name == page.name) return &page;
  }
  return nullptr;
}

SoNode* GalleryPage::readScene() const {
  SoInput in;
  if (!in.openFile((GalleryFiles::sceneFolder() + "/" + name + ".kv").c_str())) return nullptr;
  return SoDB::readAll(&in);
}

std::unique_ptr<GalleryScene> GalleryPage::still(GalleryPage const& page) {
  SoNode* const root = page.readScene();
  return root ? std::make_unique<GalleryScene>(root) : nullptr;
}
