#pragma once

#include <memory>

#include "apps/gallery/GalleryScene.h"

struct GalleryPage;

/// The pages that do more than show a scene file.
namespace GalleryBehaviour {

/// A scene file under each way to draw what is transparent.
std::unique_ptr<GalleryScene> transparency(GalleryPage const& page);

/// A scene file with handles to drag.
std::unique_ptr<GalleryScene> handles(GalleryPage const& page);

/// A scene file in which the place of each hit is marked.
std::unique_ptr<GalleryScene> picking(GalleryPage const& page);
/// A scene file with a selection that is marked in different ways.
std::unique_ptr<GalleryScene> selection(GalleryPage const& page);
/// A scene file with engines, which can be stopped.
std::unique_ptr<GalleryScene> animation(GalleryPage const& page);

} // namespace GalleryBehaviour
