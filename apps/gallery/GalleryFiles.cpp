#include "apps/gallery/GalleryFiles.h"

#include <filesystem>

namespace {

std::string find() {
  std::error_code error;
  std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe", error);
  // bin/ of an installation, or any folder below the source tree.
  std::filesystem::path const installed = program.parent_path().parent_path() / "share/vantle/scenes/gallery";
  if (std::filesystem::is_directory(installed, error)) return installed.string();
  for (std::filesystem::path folder = program.parent_path(); folder.has_relative_path();
       folder = folder.parent_path()) {
    std::filesystem::path const scenes = folder / "scenes/gallery";
    if (std::filesystem::is_directory(scenes, error)) return scenes.string();
  }
  return {};
}

} // namespace

std::string const& GalleryFiles::sceneFolder() {
  static std::string const folder = find();
  return folder;
}
