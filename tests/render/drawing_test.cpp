// What is drawn, where, and in which style.

#include "tests/render/Picture.h"

TEST(Drawing, StylesOfSurfaces) {
  std::string const style = "Material { diffuseColor 1 1 1 } DrawStyle { style ";
  Picture const lines("Separator { " + UNLIT + style + "LINES lineWidth 3 } " + square(1) + "}");
  EXPECT_TRUE(lines.shows(-1, 0.3f, 255, 255, 255));
  EXPECT_TRUE(lines.shows(0.3f, 1, 255, 255, 255));
  EXPECT_TRUE(lines.shows(0.3f, 0, 0, 0, 0));
  // The face is no two triangles to a user.
  EXPECT_TRUE(lines.shows(0, 0, 0, 0, 0));
  EXPECT_TRUE(lines.shows(0.5f, 0.5f, 0, 0, 0));
  EXPECT_TRUE(lines.shows(-0.5f, 0.5f, 0, 0, 0));

  Picture const points("Separator { " + UNLIT + style + "POINTS pointSize 6 } " + square(1) + "}");
  EXPECT_TRUE(points.shows(-1, -1, 255, 255, 255));
  EXPECT_TRUE(points.shows(1, 1, 255, 255, 255));
  EXPECT_TRUE(points.shows(0, -1, 0, 0, 0));
  EXPECT_TRUE(points.shows(0, 0, 0, 0, 0));

  Picture const none("Separator { " + UNLIT + style + "INVISIBLE } " + square(1) + "}");
  EXPECT_TRUE(none.shows(0, 0, 0, 0, 0));
}

TEST(Drawing, LinesHaveWidthAndPattern) {
  std::string const line = "Material { diffuseColor 1 1 1 } Coordinate3 { point [-1.6 0 0, 1.6 0 0] } LineSet { numVertices 2 } }";
  auto lit = [](Picture const& picture) {
    std::string row;
    for (int x = 10; x < 90; ++x) row += picture.image().getPixel(x, 50)[0] > 128 ? '1' : '0';
    return row;
  };
  auto thickness = [](Picture const& picture) {
    int count = 0;
    for (int y = 0; y < 100; ++y) count += picture.image().getPixel(50, y)[0] > 100;
    return count;
  };
  EXPECT_NEAR(thickness(Picture("Separator { " + line)), 1, 1);
  Picture const wide("Separator { DrawStyle { lineWidth 8 } " + line);
  EXPECT_NEAR(thickness(wide), 8, 1);
  EXPECT_EQ(lit(wide), std::string(80, '1'));
  // Sixteen pixels a period, the lowest bits first.
  Picture const dashed("Separator { DrawStyle { lineWidth 4 linePattern 0x00ff } " + line);
  std::string const row = lit(dashed);
  EXPECT_NEAR(static_cast<double>(std::count(row.begin(), row.end(), '1')), 40, 5) << row;
  EXPECT_EQ(row.substr(2, 4), "1111");
  EXPECT_EQ(row.substr(10, 4), "0000");
  EXPECT_EQ(row.substr(18, 4), "1111");
}

TEST(Drawing, GroupsPlaceAndChoose) {
  std::string const shapes = "Separator { Translation { translation -1 0 0 } Cube { width 1 height 1 depth 1 } } "
                             "Separator { Transform { translation 1 0 0 scaleFactor 0.5 0.5 0.5 } Cube {} } ";
  std::string const start = "Separator { " + UNLIT + "Material { diffuseColor 1 1 1 } ";
  struct {
    char const* group;
    bool left, right;
  } const cases[] = {{"Switch { whichChild 0 ", true, false},
                     {"Switch { whichChild 1 ", false, true},
                     {"Switch { whichChild -3 ", true, true},
                     {"Switch { ", false, false},
                     {"Group { ", true, true}};
  for (auto const& c : cases) {
    SCOPED_TRACE(c.group);
    Picture const picture(start + c.group + shapes + "} }");
    EXPECT_EQ(picture.brightness(-1, 0) > 0, c.left);
    EXPECT_EQ(picture.brightness(1, 0) > 0, c.right);
    EXPECT_EQ(picture.brightness(0, 0), 0);
  }
  Picture const array(start + "Array { numElements1 3 separation1 1 0 0 origin CENTER Cube { width 0.4 height 0.4 depth 0.4 } } }");
  for (float x : {-1.0f, 0.0f, 1.0f}) {
    EXPECT_GT(array.brightness(x, 0), 0);
    EXPECT_EQ(array.brightness(x + 0.5f, 0), 0);
  }
}

TEST(Drawing, ClipPlanesAnnotationsAndFog) {
  std::string const white = UNLIT + "Material { diffuseColor 1 1 1 } ";
  Picture const clipped("Separator { " + white + "ClipPlane { plane 1 0 0 0.5 } " + square(1.5f) + "}");
  EXPECT_TRUE(clipped.shows(0.7f, 0, 255, 255, 255));
  EXPECT_TRUE(clipped.shows(0.3f, 0, 0, 0, 0));

  Picture const line("Separator { " + white + "ClipPlane { plane 1 0 0 0.5 } DrawStyle { lineWidth 5 } "
                     "Coordinate3 { point [-1.6 0 0, 1.6 0 0] } LineSet { numVertices 2 } }");
  EXPECT_TRUE(line.shows(0.7f, 0, 255, 255, 255));
  EXPECT_TRUE(line.shows(0.3f, 0, 0, 0, 0));

  Picture const over("Separator { " + white + "Annotation { Material { diffuseColor 1 0 0 } " + square(0.5f, -3) + "} " +
                     square(1) + "}");
  EXPECT_TRUE(over.shows(0, 0, 255, 0, 0));
  EXPECT_TRUE(over.shows(0.8f, 0, 255, 255, 255));

  Picture const foggy("Separator { " + white + "Environment { fogType HAZE fogColor 0 0 1 fogVisibility 20 } " + square(1) + "}");
  EXPECT_TRUE(foggy.shows(0, 0, 128, 128, 255));
}

TEST(Drawing, Backgrounds) {
  Picture const gradient("Separator { GradientBackground { color0 1 0 0 color1 0 0 1 } }");
  EXPECT_TRUE(gradient.shows(0, -1.98f, 255, 0, 0));
  EXPECT_TRUE(gradient.shows(-1.9f, 1.98f, 0, 0, 255));
  EXPECT_TRUE(gradient.shows(0, 0, 128, 0, 128));
  Picture const swapped("Separator { GradientBackground { color0 1 0 0 color1 0 0 1 swapColors TRUE } }");
  EXPECT_TRUE(swapped.shows(0, -1.98f, 0, 0, 255));

  std::string const image = "image 2 1 3 0xff0000 0x00ff00 ";
  Picture const stretched("Separator { ImageBackground { style STRETCH " + image + "} }");
  EXPECT_TRUE(stretched.shows(-1, 0, 255, 0, 0));
  EXPECT_TRUE(stretched.shows(1, 1, 0, 255, 0));
  Picture const cornered("Separator { ImageBackground { style UPPER_RIGHT " + image + "} }");
  EXPECT_TRUE(cornered.shows(1.99f, 1.99f, 0, 255, 0));
  EXPECT_TRUE(cornered.shows(0, 0, 0, 0, 0));
}

TEST(Drawing, SharedAndOwnShapesLookAlike) {
  // Many places of one fine mesh are drawn as one; the same shapes of their own are merged.
  std::string shared = "Separator { DirectionalLight { direction -1 -1 -1 } Material { specularColor 0.5 0.5 0.5 } ";
  std::string own = shared;
  for (int i = 0; i < 25; ++i) {
    std::string const place = "Separator { Transform { translation " + std::to_string(i % 5 * 0.7 - 1.4) + " " +
                              std::to_string(i / 5 * 0.7 - 1.4) + " 0 rotation 1 0 0 " + std::to_string(i * 0.2) +
                              " scaleFactor 1 " + std::to_string(0.5 + i * 0.02) + " 0.7 } Material { diffuseColor " +
                              std::to_string(i / 25.0) + " 0.5 1 } ";
    shared += place + (i == 0 ? "DEF ball Sphere { radius 0.3 } }" : "USE ball }");
    // A different radius makes another mesh, but no other picture.
    own += place + "Sphere { radius " + std::to_string(0.3 + i * 1e-6) + " } }";
  }
  Picture const a(shared + "}"), b(own + "}");
  int different = 0;
  for (size_t i = 0; i < a.image().getNumBytes(); ++i) {
    different += std::abs(a.image().getBytes()[i] - b.image().getBytes()[i]) > 12;
  }
  EXPECT_LT(different, 30);
  EXPECT_GT(a.brightness(0, 0), 100);
}
