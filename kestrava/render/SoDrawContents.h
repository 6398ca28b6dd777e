#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "kestrava/actions/SoElements.h"
#include "kestrava/base/SbBox3f.h"
#include "kestrava/nodes/SoUniformShaderParameter.h"
#include "kestrava/render/SoMeshIntersector.h"

// What an SoDrawList consists of: copies of the traversal state that stay when the traversal is over.

/// A mesh and what is computed once for all places where it stands.
struct SoDrawMesh {
  std::uint64_t key = 0;
  SoMesh mesh;
  SbBox3f bounds;
  mutable SoMeshPicking picking;
};

/// The colours of a surface.
struct SoDrawMaterial {
  /// What shines beside the diffuse colour.
  struct Gloss {
    SbColor ambient, specular, emissive;
    float shininess = 0;
  };
  std::uint64_t id = 0;
  std::vector<std::uint32_t> colors;  // 0xRRGGBBAA, one a material index; never empty
  std::vector<Gloss> gloss;           // likewise
  bool transparent = false;           // some colour is not opaque

  /// An index beyond the end means the last colour.
  std::uint32_t getColor(int index) const { return colors[clampIndex(index, colors.size())]; }
  bool isSpecular() const {
    return std::any_of(gloss.begin(), gloss.end(), [](Gloss const& g) { return !(g.specular == SbColor(0, 0, 0)); });
  }
  static int clampIndex(int index, size_t size) { return std::clamp(index, 0, static_cast<int>(size) - 1); }
};

struct SoDrawTexture {
  enum Alpha { SOLID, CUT_OUT, TRANSLUCENT };  // CUT_OUT: nearly every pixel is either opaque or not there
  SoTextureImageElement element;
  Alpha alpha = SOLID;
};

/// A program of shaders that the scene brings along, and what is set for its variables.
struct SoDrawShader {
  enum Stage { VERTEX, GEOMETRY, FRAGMENT, NUM_STAGES };
  struct Uniform {
    std::string name;
    int identifier;
    SoUniformValue value;
  };
  std::uint64_t id = 0;                           // node id of the program
  std::string name;                               // for messages
  std::array<std::string, NUM_STAGES> sources;    // empty: the fixed stage
  std::array<std::string, NUM_STAGES> sourceNames;
  std::vector<Uniform> uniforms;
};

/// Names of the values that each copy of a shape has of its own.
struct SoDrawInput {
  std::string name;
  int components;
  friend bool operator==(SoDrawInput const&, SoDrawInput const&) = default;
};

/// Lights, fog and clipping planes around a shape, in world coordinates.
struct SoDrawSurroundings {
  std::vector<SoLightElement::Light> lights;
  std::vector<SbPlane> clipPlanes;
  SoEnvironmentElement environment;
};

/// How a shape is drawn. Shapes with equal looks can be drawn together.
struct SoDrawLook {
  enum Layer { OPAQUE, TRANSPARENT, ANNOTATION };
  Layer layer = OPAQUE;
  SoDrawStyleElement::Style style = SoDrawStyleElement::FILLED;
  bool lit = true;
  bool ordered = false;         // the order of the corners tells which side is the front
  bool culled = false;          // back faces are not drawn; otherwise both sides are, and lit
  bool environmentMap = false;  // texture coordinates follow the reflection
  float pointSize = 1, lineWidth = 1;
  unsigned linePattern = 0xffff;
  int texture = -1;  // index into the list's textures
  int surroundings = 0;
  int shader = -1;          // index into the list's shaders
  int inputs = -1;          // index into the list's sets of inputs; with a shader
  bool fillsTexture = false;  // an image with depth fills the bounds of the shape
  friend bool operator==(SoDrawLook const&, SoDrawLook const&) = default;
};

/// What fills the window before the scene is drawn.
struct SoDrawBackground {
  enum Kind { NONE, GRADIENT, IMAGE } kind = NONE;
  SbColor bottom, top;
  SbImage image;
  int style = 0;  // SoImageBackground::Style
};
