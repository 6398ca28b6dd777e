#pragma once

#include <gtest/gtest.h>

#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/actions/SoGetMatrixAction.h"
#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/base/SoModuleTool.h"
#include "tests/kestrava/io_helpers.h"

namespace model_test {

using io_test::ReadErrors;
using io_test::TemporaryFolder;

inline std::string const MODELS = VANTLE_SOURCE_DIR "/tests/data/models/";

/// Has the modules while its tests run.
class ForeignFormats : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(SoModuleTool::initModule("foreign_formats")) << "the module is not built";
    SoModuleTool::initModule("image_formats");
  }
  static void TearDownTestSuite() {
    SoModuleTool::finishModule("image_formats");
    SoModuleTool::finishModule("foreign_formats");
  }
};

/// A model of the test data that must be read without a complaint.
inline SoRef<SoNode> readModel(std::string const& name) {
  ReadErrors errors;
  SoRef<SoNode> root = io_test::readFile(MODELS + name);
  EXPECT_TRUE(root) << name;
  for (auto const& text : errors.texts) ADD_FAILURE() << text;
  return root;
}

/// All paths to nodes of a class, hidden ones included.
template <class T> std::vector<SoRef<SoPath>> pathsTo(SoNode* root, SbName const& name = SbName()) {
  SoSearchAction search;
  search.setType(T::getClassTypeId());
  search.setName(name);
  search.setInterest(SoSearchAction::ALL);
  search.setSearchingAll(true);
  search.apply(root);
  return search.getPaths();
}

/// The different nodes of a class, in order of appearance.
template <class T> std::vector<T*> nodesOf(SoNode* root, SbName const& name = SbName()) {
  std::vector<T*> nodes;
  for (auto const& path : pathsTo<T>(root, name)) {
    auto* const node = static_cast<T*>(path->getTail());
    if (std::find(nodes.begin(), nodes.end(), node) == nodes.end()) nodes.push_back(node);
  }
  return nodes;
}

inline SbMatrix matrixAt(SoPath* path) {
  SoGetMatrixAction action{SbViewportRegion(100, 100)};
  action.apply(path);
  return action.getMatrix();
}

inline ::testing::AssertionResult isNear(SbVec3f const& a, SbVec3f const& b, float tolerance = 1e-4f) {
  if ((a - b).length() <= tolerance) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << a[0] << " " << a[1] << " " << a[2] << " is not " << b[0] << " " << b[1] << " " << b[2];
}

inline ::testing::AssertionResult hasBounds(SoNode* root, SbVec3f const& min, SbVec3f const& max) {
  SoGetBoundingBoxAction action{SbViewportRegion(100, 100)};
  action.apply(root);
  auto const low = isNear(action.getBoundingBox().getMin(), min);
  return low ? isNear(action.getBoundingBox().getMax(), max) : low;
}

} // namespace model_test
