#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/gallery/GalleryScene.h"

/// A page of the gallery: its place in the list, what is said about it, and how its scene is made.
struct GalleryPage {
  using Make = std::unique_ptr<GalleryScene>(GalleryPage const& page);

  char const* group;
  char const* name; ///< of its scene file, without the ending, and of its picture; given on the command line
  char const* title;
  char const* about; ///< what it shows and what one can do
  Make* make;

  /// All of them, in the order of the list; those of one group stand together.
  static std::vector<GalleryPage> const& all();
  /// Null when there is none of that name.
  static GalleryPage const* find(std::string const& name);

  /// The scene of the page's file, count 0; null after a fault, which was posted.
  SoNode* readScene() const;
  /// Null after a fault, which was posted.
  std::unique_ptr<GalleryScene> open() const { return make(*this); }
  /// The way to make a page that is a scene file and nothing else.
  static std::unique_ptr<GalleryScene> still(GalleryPage const& page);
};
