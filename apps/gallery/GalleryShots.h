#pragma once

#include <string>
#include <vector>

#include "apps/gallery/GalleryPage.h"

/// Pictures of pages, drawn without a window and without a display.
namespace GalleryShots {

/// Writes FOLDER/<page>.png for each page, and FOLDER/<page>-<choice>.png for each further choice of a page,
/// and prints a line each. The folder is made when it is missing. False when a picture could not be made.
bool write(std::string const& folder, int width, int height, std::vector<GalleryPage const*> const& pages);

} // namespace GalleryShots
