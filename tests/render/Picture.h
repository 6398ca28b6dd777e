#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "kestrava/base/SbImage.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/render/SoOffscreenRenderArea.h"

/// A scene from text, without header; the test fails when it can not be read.
SoRef<SoNode> readScene(std::string const& text);

/// A picture of a scene, of 100 x 100 pixels, on black ground. The camera looks along -z and shows -2 to 2 in x
/// and y, so that a unit is 25 pixels.
class Picture {
 public:
  explicit Picture(std::string const& scene) : Picture(readScene(scene)) {}
  explicit Picture(SoNode* root) : Picture(root, nullptr) {}
  /// `prepare` may change the area before it draws.
  Picture(SoNode* root, std::function<void(SoOffscreenRenderArea&)> const& prepare,
          SoOffscreenRenderArea::OutputFormat format = SoOffscreenRenderArea::RGB);
  explicit Picture(SoRef<SoNode> const& root) : Picture(root.get()) {}
  explicit Picture(SbImage const& image) : m_image(image) {}

  /// True when the pixel at a point of the scene's x and y has that colour, give or take.
  ::testing::AssertionResult shows(float x, float y, int red, int green, int blue, int tolerance = 6) const;
  /// Sum of the three components, 0 to 765.
  int brightness(float x, float y) const;
  SbImage const& image() const { return m_image; }

 private:
  unsigned char const* pixel(float x, float y) const;
  SbImage m_image;
};

/// Scene text: lights, cameras and colours have no effect but those asked for.
inline std::string const UNLIT = "LightModel { model BASE_COLOR } ";
/// A square with corners at -a and a, facing +z.
std::string square(float a, float z = 0);
