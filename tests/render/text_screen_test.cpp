#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoDrawList.h"
#include "tests/render/Picture.h"

namespace {

std::string const CAMERA = "OrthographicCamera { position 0 0 10 height 4 nearDistance 1 farDistance 20 } ";

/// The pixels of a picture of the scene that are not black.
SbBox2f drawnBox(Picture const& picture) {
  SbBox2f box;
  SbImage const& image = picture.image();
  for (int y = 0; y < image.getHeight(); ++y) {
    for (int x = 0; x < image.getWidth(); ++x) {
      unsigned char const* const p = image.getPixel(x, y);
      if (p[0] + p[1] + p[2] > 60) box.extendBy(SbVec2f(static_cast<float>(x), static_cast<float>(y)));
    }
  }
  return box;
}

SbVec2f sizeOf(std::string const& scene) {
  return drawnBox(Picture("Separator { " + scene + " }")).getSize();
}

TEST(TextScreen, StandsInPixelsAroundItsPoint) {
  std::string const white = "BaseColor { rgb 1 1 1 } Font { size 20 } ";
  SbBox2f const left = drawnBox(Picture("Separator { " + white + "Text2 { string \"HHH\" } }"));
  ASSERT_FALSE(left.isEmpty()) << "there is no font";
  EXPECT_NEAR(left.getMin()[0], 52, 3);
  EXPECT_NEAR(left.getMin()[1], 50, 1) << "the point lies on the baseline";
  EXPECT_NEAR(left.getSize()[1], 14, 2) << "capitals are about 0.73 high";
  SbBox2f const right =
      drawnBox(Picture("Separator { " + white + "Text2 { string \"HHH\" justification RIGHT } }"));
  EXPECT_NEAR(right.getMax()[0], 48, 3);
  SbBox2f const center =
      drawnBox(Picture("Separator { " + white + "Text2 { string \"HHH\" justification CENTER } }"));
  EXPECT_NEAR(center.getCenter()[0], 50, 1.5f);
  SbBox2f const lines =
      drawnBox(Picture("Separator { " + white + "Text2 { string [ \"H\", \"H\" ] spacing 1.5 } }"));
  EXPECT_NEAR(lines.getMin()[1], 20, 1) << "one and a half sizes lower";

  // Neither a turn nor a scale nor the distance changes it.
  SbVec2f const plain = sizeOf(white + "Text2 { string \"Ha\" }");
  EXPECT_EQ(sizeOf(white + "Transform { scaleFactor 7 0.1 3 rotation 1 1 0 2 } Text2 { string \"Ha\" }"),
            plain);
  EXPECT_EQ(sizeOf(white + "Translation { translation 0.013 -0.017 -3 } Text2 { string \"Ha\" }"), plain)
      << "whole pixels: no blur";
  // UTF-8, and nothing that does harm.
  EXPECT_GT(sizeOf(white + "Text2 { string \"\xc3\x84\" }")[1], plain[1]);
  EXPECT_EQ(sizeOf(white + "Text2 { string \"\" } Font { size -3 } Text2 { string \"a\" } Font { size nan } "
                           "Text2 { string \"a\" } "
                           "Translation { translation nan 0 0 } Font { size 9 } Text2 { string \"a\" }"),
            SbVec2f());
}

TEST(TextScreen, HugeTextsEndBeyondTheScreen) {
  std::vector<SbString> lines(200000, SbString("H"));
  std::string marks = "\xff\xc3(H";  // no UTF-8
  for (int i = 0; i < 100000; ++i) marks += "\xcc\x81";  // accents have no width
  lines[0] = SbString(marks);
  lines[1] = SbString(std::string(1000000, 'H'));
  SbString error;
  auto const text = SoTextBitmap::layOut(lines, {}, error);
  ASSERT_TRUE(text);
  EXPECT_LT(text->glyphs.size(), 70000u);
  EXPECT_LT(text->box.getSize()[0], 31000);
  EXPECT_LT(text->box.getSize()[1], 31000);
}

TEST(TextScreen, IsHiddenByWhatStandsBeforeItsPoint) {
  auto const shows = [](std::string const& scene) {
    SbImage const image = Picture("Separator { Font { size 40 } " + scene + " }").image();
    for (int i = 0; i < image.getWidth() * image.getHeight(); ++i) {
      unsigned char const* const p = image.getPixel(i % image.getWidth(), i / image.getWidth());
      if (p[0] > 200 && p[1] < 60 && p[2] < 60) return true;
    }
    return false;
  };
  std::string const text =
      "Separator { BaseColor { rgb 1 0 0 } Text2 { string \"HM\" justification CENTER } } ";
  std::string const wall = "Separator { " + UNLIT + "BaseColor { rgb 0 1 0 } " + square(2) + "} ";
  std::string const glass =
      "Separator { " + UNLIT + "Material { diffuseColor 0 0 1 transparency 0.01 } " + square(2) + "} ";
  std::string const back = "Translation { translation 0 0 -1 } ",
                    front = "Translation { translation 0 0 1 } ";
  EXPECT_TRUE(shows(text));
  EXPECT_FALSE(shows(wall + back + text));
  EXPECT_TRUE(shows(wall + front + text));
  EXPECT_TRUE(shows(text + back + glass)) << "what is drawn later does not cover it";
  EXPECT_FALSE(shows(back + text + front + glass));
  EXPECT_TRUE(shows(wall + back + "Annotation { " + text + "}"));
  EXPECT_FALSE(shows("ClipPlane { plane 0 0 1 0.5 } " + text));
  EXPECT_FALSE(shows("DrawStyle { style INVISIBLE } " + text));
}

TEST(TextScreen, IsPickedByItsBoxAndBoundedByTheView) {
  SoRef<SoNode> const root = readScene("Separator { " + CAMERA +
                                       "Font { size 20 } Separator { Translation { translation 1 0 0 } "
                                       "Text2 { string [ \"l l\", \"l\" ] justification RIGHT } } "
                                       "Translation { translation 0 0 -3 } Cube {} }");
  SoRayPickAction pick(SbViewportRegion(100, 100));
  auto const kindAt = [&](short x, short y) {
    pick.setPoint(SbVec2s(x, y));
    pick.apply(root);
    return pick.getPickedPoint() ? pick.getPickedPoint()->getDetail().kind : SoPickDetail::POINT;
  };
  EXPECT_EQ(kindAt(68, 56), SoPickDetail::TEXT) << "between the letters";
  EXPECT_EQ(pick.getPickedPoint()->getPath()->getLength(), 3);
  EXPECT_NEAR(pick.getPickedPoint()->getPoint()[2], 0, 1e-4f) << "at the depth of the point";
  EXPECT_EQ(kindAt(80, 56), SoPickDetail::POINT) << "nothing";
  EXPECT_EQ(kindAt(68, 72), SoPickDetail::FACE) << "the cube above the text";

  SbBox3f boxes[2];
  for (int i = 0; i < 2; ++i) {
    SoGetBoundingBoxAction bounds(i ? SbViewportRegion(400, 400) : SbViewportRegion(100, 100));
    bounds.apply((*root->getChildren())[2]);
    EXPECT_LT(bounds.getBoundingBox().getSize().length(), 1e-6f) << "without a camera a point";
    SoRef<SoNode> const seen = readScene("Separator { " + CAMERA +
                                         "Font { size 20 } Translation { translation 1 0 0 } Text2 { string \"lll\" } }");
    bounds.apply(seen);
    boxes[i] = bounds.getBoundingBox();
  }
  EXPECT_NEAR(boxes[0].getMin()[0], 1, 1e-4f);
  EXPECT_GT(boxes[0].getMax()[0], 1.5f);
  EXPECT_NEAR(boxes[1].getSize()[0], boxes[0].getSize()[0] / 4, 1e-3f) << "four times the pixels";
}

TEST(TextScreen, OutlinesLieWhereItIsDrawn) {
  SoRef<SoNode> const root =
      readScene("Separator { " + CAMERA +
                "Rotation { rotation 0 0 1 1.5707963 } Font { size 20 } Text2 { string \"HH\" } }");
  SbBox3f box;
  SoCallbackAction action(SbViewportRegion(100, 100));
  action.addTriangleCallback(
      SoShape::getClassTypeId(),
      [](void* data, SoCallbackAction* a, SoPrimitiveVertex const& p, SoPrimitiveVertex const&,
         SoPrimitiveVertex const&) {
        SoPrimitiveVertex const world = p.transformed(a->getModelMatrix());
        static_cast<SbBox3f*>(data)->extendBy(world.point);
        EXPECT_NEAR(world.normal[2], 1, 1e-5f);
      },
      &box);
  action.apply(root);
  ASSERT_FALSE(box.isEmpty());
  SbBox2f const drawn = drawnBox(Picture(root));
  for (int i = 0; i < 2; ++i) {
    EXPECT_NEAR((box.getMin()[i] + 2) * 25, drawn.getMin()[i], 2);
    EXPECT_NEAR((box.getMax()[i] + 2) * 25, drawn.getMax()[i] + 1, 2);
  }
}

TEST(TextScreen, AMovingCameraWalksNoGraph) {
  SoRef<SoNode> const root = readScene("Separator { Text2 { string \"a\" } }");
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  SoDrawList list;
  for (int i = 0; i < 5; ++i) {
    camera->position = SbVec3f(0, 0, 3.0f + static_cast<float>(i));
    list.update(root, {SbViewportRegion(100, 100), camera, camera->getViewVolume(1)});
  }
  EXPECT_EQ(list.getNumRebuilds(), 1);
  EXPECT_EQ(list.getScreenTexts().size(), 1u);
}

TEST(TextScreen, AMissingFontIsToldOnceAndReplaced) {
  static int told;
  told = 0;
  SoErrorCB* const before = SoDebugError::getHandlerCallback();
  void* const data = SoDebugError::getHandlerData();
  SoDebugError::setHandlerCallback(
      [](SoError const* error, void*) {
        if (std::string(error->getDebugString().c_str()).find("NoFontOfThisName") != std::string::npos)
          ++told;
      },
      nullptr);
  EXPECT_GT(sizeOf("Font { name \"NoFontOfThisName\" size 20 } Text2 { string \"a\" } Text2 { string \"b\" } "
                   "AsciiText { string \"c\" }")[0],
            0);
  EXPECT_EQ(told, 1);
  EXPECT_GT(sizeOf("Font { name \"monospace\" size 20 } Text2 { string \"a\" }")[0], 0);
  SoDebugError::setHandlerCallback(before, data);
}

} // namespace
