#include "tests/render/Picture.h"

#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoOrthographicCamera.h"

SoRef<SoNode> readScene(std::string const& text) {
  SoInput in;
  in.setBuffer(text);
  SoRef<SoNode> root(SoDB::readAll(&in));
  EXPECT_TRUE(root) << "can not read the scene of the test: " << in.getErrorText().str();
  return root;
}

Picture::Picture(SoNode* root, std::function<void(SoOffscreenRenderArea&)> const& prepare,
                 SoOffscreenRenderArea::OutputFormat format) {
  SoRef<SoOrthographicCamera> camera(new SoOrthographicCamera);
  camera->position = SbVec3f(0, 0, 10);
  camera->farDistance = 20;
  camera->height = 4;
  SoRef<SoOffscreenRenderArea> area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(100, 100));
  area->setBackgroundColor(SbColorRGBA(0, 0, 0));
  area->setCamera(camera);
  area->setSceneGraph(root);
  if (prepare) prepare(*area);
  EXPECT_TRUE(area->renderToImage(m_image, format));
}

unsigned char const* Picture::pixel(float x, float y) const {
  auto at = [](float p, int size) { return std::clamp(static_cast<int>((p + 2) / 4 * size), 0, size - 1); };
  return m_image.getPixel(at(x, m_image.getWidth()), at(y, m_image.getHeight()));
}

::testing::AssertionResult Picture::shows(float x, float y, int red, int green, int blue, int tolerance) const {
  unsigned char const* const p = pixel(x, y);
  if (std::abs(p[0] - red) <= tolerance && std::abs(p[1] - green) <= tolerance && std::abs(p[2] - blue) <= tolerance) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "at (" << x << ", " << y << ") is " << int(p[0]) << " " << int(p[1]) << " "
                                       << int(p[2]) << ", not " << red << " " << green << " " << blue;
}

int Picture::brightness(float x, float y) const {
  unsigned char const* const p = pixel(x, y);
  return p[0] + p[1] + p[2];
}

std::string square(float a, float z) {
  std::string const l = std::to_string(-a), h = std::to_string(a), d = std::to_string(z);
  return "Coordinate3 { point [" + l + " " + l + " " + d + ", " + h + " " + l + " " + d + ", " + h + " " + h + " " + d +
         ", " + l + " " + h + " " + d + "] } FaceSet { numVertices 4 } ";
}
