#include "modules/foreign_formats/ModelReading.h"

#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <atomic>
#include <new>

#include "kestrava/base/SoError.h"
#include "modules/foreign_formats/LargeStack.h"
#include "modules/foreign_formats/ModelFiles.h"
#include "modules/foreign_formats/ModelScene.h"

namespace {

/// Percent that reading the file takes; the rest is for making nodes of it.
constexpr double READING = 70;

/// Keeps how far Assimp is, for the thread that waits for it.
class Progress : public Assimp::ProgressHandler {
 public:
  explicit Progress(std::atomic<float>& share) : m_share(share) {}
  bool Update(float share) override {
    if (share > m_share) m_share = std::min(share, 1.0f);
    return true;
  }

 private:
  std::atomic<float>& m_share;
};

/// Tells of what a model has and the toolkit does not show, once for all.
void tellOfTheRest(aiScene const& scene, SbString const& model) {
  unsigned skins = 0, shapes = 0;
  for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
    skins += scene.mMeshes[i]->HasBones() ? 1 : 0;
    shapes += scene.mMeshes[i]->mNumAnimMeshes;
  }
  std::string list;
  auto add = [&list](unsigned count, char const* one, char const* many) {
    if (count == 0) return;
    list += (list.empty() ? "" : ", ") + std::to_string(count) + " " + (count == 1 ? one : many);
  };
  add(scene.mNumAnimations, "animation", "animations");
  add(skins, "skinned mesh (shown as it was made)", "skinned meshes (shown as they were made)");
  add(shapes, "blend shape", "blend shapes");
  if (!list.empty())
    SoDebugError::postInfo("foreign_formats", "%s: not shown: %s", model.c_str(), list.c_str());
}

/// What Assimp makes of a file; owned by the importer.
aiScene const* readScene(Assimp::Importer& importer, SoImporter::File const& file) {
  // One transformation a node instead of a chain of helpers.
  importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
  importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);
  importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
  return importer.ReadFile(file.innerName.str(), aiProcess_GenUVCoords | aiProcess_TransformUVCoords);
}

} // namespace

SbString oneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, ' ');
  while (!text.empty() && text.back() == ' ') text.pop_back();
  constexpr std::size_t LONGEST = 400;
  if (text.size() > LONGEST) text = text.substr(0, LONGEST) + "...";
  return SbString(text);
}

SoRef<SoNode> readModel(SoImporter::File const& file, std::function<void(double)> const& progress,
                        SbString& fault) {
  SoRef<SoNode> root;
  std::unique_ptr<Assimp::Importer> importer;
  std::atomic<float> share = 0;
  ModelFiles* files = nullptr; // the importer's
  aiScene const* scene = nullptr;
  double told = 0;
  auto tell = [&](double percent) {
    if (percent >= told + 1) progress(told = std::min(percent, 99.0));
  };
  try {
    progress(0);
    runOnLargeStack(
        [&] {
          importer = std::make_unique<Assimp::Importer>();
          importer->SetProgressHandler(new Progress(share)); // gives it away, as the next one
          importer->SetIOHandler(files = new ModelFiles(file));
          scene = readScene(*importer, file);
        },
        [&] { tell(READING * share); });
    if (!files->getFault().empty()) {
      fault = files->getFault();
    } else if (!scene || !scene->mRootNode) {
      std::string const reason = importer->GetErrorString();
      bool const isUnknown = reason.starts_with("No suitable reader");
      fault = isUnknown ? SbString("the contents are not what the name says") : oneLine(reason);
    } else {
      for (std::string const& missing : files->getMissing()) {
        if (missing.ends_with(".mtl") || missing.ends_with(".MTL"))
          SoDebugError::postWarning("foreign_formats", "%s: the file '%s' that it names is not found",
                                    file.name.c_str(), missing.c_str());
      }
      tellOfTheRest(*scene, file.name);
      // Its meshes are let go as they become nodes: the importer owns the scene all the same.
      root = ModelScene(const_cast<aiScene&>(*scene), file.name, [&](double part) {
               tell(READING + (100 - READING) * part);
             }).build();
    }
  } catch (std::bad_alloc const&) {
    fault = "there is not enough memory for the model";
  } catch (std::exception const& e) {
    fault = oneLine(e.what());
  }
  // What it built may be as deep as what it read.
  if (importer) runOnLargeStack([&] { importer.reset(); });
  if (root) progress(100);
  return root;
}
