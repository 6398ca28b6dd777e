#include "Picture.h"
#include "kestrava/draggers/SoDragger.h"

namespace {

TEST(DraggersLook, HandlesAreSeenAndShowThatTheyAreDragged) {
  // Dark, textured, wire frames only: a handle looks as always.
  std::string const above = "Material { diffuseColor 0 0 0 } DrawStyle { style LINES } ";
  SoRef<SoNode> const root = readScene("Separator { " + above + "DEF look Scale1Dragger { } }");
  auto* const dragger = static_cast<SoDragger*>(SoNode::getByName("look"));
  auto* const handle = static_cast<SoDraggerHandle*>(dragger->getPart("scaler", false));
  Picture const normal(root);
  handle->setLook(SoDraggerHandle::POINTED_AT);
  Picture const pointedAt(root);
  handle->setLook(SoDraggerHandle::ACTIVE);
  Picture const active(root);
  // From bluish to yellow.
  auto const warmth = [](Picture const& picture) {
    SbImage const& image = picture.image();
    unsigned char const* const pixel = image.getBytes() + (50 * 100 + 75) * image.getNumComponents();
    return pixel[0] - pixel[2];
  };
  EXPECT_GT(normal.brightness(1, 0), 100);
  EXPECT_LT(warmth(normal), -50);
  EXPECT_GT(warmth(pointedAt), warmth(normal) + 50);
  EXPECT_GT(warmth(active), warmth(pointedAt) + 50);
  EXPECT_EQ(active.brightness(1, 0.3f), 0);
}

TEST(DraggersLook, KnobsKeepTheirShapeOnALongBox) {
  // Twice as wide as high: a knob at a corner is as wide as high all the same.
  Picture const picture("Separator { HandleBoxManip { } " + UNLIT +
                        "BaseColor { rgb 0 0 0 } Cube { width 3.6 height 0.9 depth 0.9 } }");
  auto const reach = [&](float dx, float dy) {
    float distance = 0;
    while (distance < 0.5f && picture.brightness(1.84f + dx * distance, 0.46f + dy * distance) > 60)
      distance += 0.04f;
    return distance;
  };
  EXPECT_GT(reach(-1, 0), 0.04f);
  EXPECT_NEAR(reach(1, 0), reach(0, 1), 0.05f);
}

} // namespace
