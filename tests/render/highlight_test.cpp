#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/render/SoHighlightRenderAction.h"
#include "kestrava/render/SoSceneManager.h"
#include "tests/render/Picture.h"

namespace {

/// A selection above two squares, the left one of which may be selected; seen as by Picture.
class Highlight : public ::testing::Test {
 protected:
  Highlight() {
    m_selection->addChild(readScene(UNLIT + "BaseColor { rgb 0 0 1 } Separator { Translation { translation -1 0 0 } " +
                                    square(0.5f) + "} Separator { Translation { translation 1 0 0 } " + square(0.5f) +
                                    "}"));
    SoRef<SoOrthographicCamera> camera(new SoOrthographicCamera);
    camera->position = SbVec3f(0, 0, 10);
    camera->farDistance = 20;
    camera->height = 4;
    m_manager->setSceneGraph(m_selection);
    m_manager->setCamera(camera);
    m_manager->setBackgroundColorRGBA(SbColorRGBA(0, 0, 0));
    m_area->setSize(SbVec2i32(100, 100));
  }
  void select() {
    SoRef<SoPath> const path(new SoPath(m_selection));
    for (int index : {0, 2}) path->append(index);
    ASSERT_EQ(path->getLength(), 3);
    m_selection->select(path);
  }
  Picture draw(SoGLRenderAction& action) {
    m_manager->setGLRenderAction(&action);
    m_area->setSceneManager(m_manager);
    SbImage image;
    EXPECT_TRUE(m_area->renderToImage(image));
    return Picture(image);
  }
  /// Pixels in the colour of the mark, inside a part of the picture.
  static int countMarked(Picture const& picture, float x0, float x1) {
    int count = 0;
    for (float x = x0; x < x1; x += 0.04f) {
      for (float y = -2; y < 2; y += 0.04f) count += bool(picture.shows(x, y, 255, 140, 0, 12));
    }
    return count;
  }
  /// Gives back what the actions hold of the context.
  void finish() { m_area->setSceneManager(nullptr); }

  SoRef<SoSelection> m_selection{new SoSelection};
  SoRef<SoSceneManager> m_manager{new SoSceneManager};
  SoRef<SoOffscreenRenderArea> m_area{new SoOffscreenRenderArea};
};

TEST_F(Highlight, MarksWhatIsSelectedAndNothingElse) {
  SoLineHighlightRenderAction lines;
  SoBoxHighlightRenderAction box;
  SoHaloHighlightRenderAction halo;
  struct {
    char const* name;
    SoHighlightRenderAction* action;
    float x, y;  // is marked
  } const cases[] = {{"lines", &lines, -1.5f, 0}, {"box", &box, -1.5f, 0}, {"halo", &halo, -1.56f, 0}};
  for (auto const& c : cases) {
    EXPECT_EQ(countMarked(draw(*c.action), -2, 2), 0) << c.name << ", nothing selected";
    select();
    Picture const marked = draw(*c.action);
    bool const isMarked = marked.shows(c.x, c.y, 255, 140, 0, 12) || marked.shows(c.x - 0.04f, c.y, 255, 140, 0, 12);
    EXPECT_TRUE(isMarked) << c.name;
    EXPECT_TRUE(marked.shows(-1.2f, 0, 0, 0, 255)) << c.name << " covers the shape";
    EXPECT_EQ(countMarked(marked, 0.2f, 2), 0) << c.name << " marks the other square";
    c.action->setVisible(false);
    EXPECT_EQ(countMarked(draw(*c.action), -2, 2), 0) << c.name << ", invisible";
    c.action->setVisible(true);
    m_selection->deselectAll();
    EXPECT_EQ(countMarked(draw(*c.action), -2, 2), 0) << c.name << ", deselected";
    finish();
  }
  m_manager->setGLRenderAction(nullptr);
}

TEST_F(Highlight, ASelectionBelowTheRootIsFound) {
  SoRef<SoGroup> const root(new SoGroup);
  root->addChild(m_selection);
  m_manager->setSceneGraph(root);
  select();
  SoLineHighlightRenderAction lines;
  EXPECT_GT(countMarked(draw(lines), -2, 0), 20);
  root->removeChild(m_selection);
  EXPECT_EQ(countMarked(draw(lines), -2, 2), 0);
  finish();
  m_manager->setGLRenderAction(nullptr);
}

TEST_F(Highlight, AHaloShowsThroughWhatIsInFrontOnlyWhenAsked) {
  m_selection->addChild(readScene(UNLIT + "BaseColor { rgb 0 1 0 } " + square(1.9f, 1)));
  select();
  SoHaloHighlightRenderAction halo;
  EXPECT_EQ(countMarked(draw(halo), -2, 2), 0);
  halo.setHaloAlwaysVisible(true);
  EXPECT_GT(countMarked(draw(halo), -2, 0), 20);
  finish();
  m_manager->setGLRenderAction(nullptr);
}

TEST_F(Highlight, SelectingTakesNoReferenceAndWalksNoGraph) {
  SoLineHighlightRenderAction lines;
  draw(lines);
  int const walks = lines.getDrawList().getNumRebuilds();
  SoNode* const square = static_cast<SoGroup*>(m_selection->getChild(0))->getChild(2);
  int const count = square->getRefCount();
  select();
  EXPECT_GT(countMarked(draw(lines), -2, 0), 20);
  EXPECT_EQ(lines.getDrawList().getNumRebuilds(), walks);
  EXPECT_EQ(square->getRefCount(), count);

  // A selected node that leaves the graph goes, and with it its mark.
  static_cast<SoGroup*>(m_selection->getChild(0))->removeChild(square);
  ASSERT_EQ(m_selection->getNumSelected(), 1);
  bool isWhole = true;
  EXPECT_EQ(m_selection->getPath(0, &isWhole)->getLength(), 2);
  EXPECT_FALSE(isWhole);
  EXPECT_EQ(countMarked(draw(lines), -2, 2), 0) << "what held the node is not selected";
  finish();
  m_manager->setGLRenderAction(nullptr);
}

}  // namespace
