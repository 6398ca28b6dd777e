#pragma once

#include <string>

/// Where the gallery finds the files that belong to it.
namespace GalleryFiles {

/// The folder with the pages' scene files: in the source tree that the program was built from, or beside an
/// installed program. Empty when there is none.
std::string const& sceneFolder();

} // namespace GalleryFiles
