#pragma once

#include <cstdint>
#include <vector>

#include "kestrava/base/SbColor.h"
#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbName.h"
#include "kestrava/base/SbPlane.h"
#include "kestrava/base/SbVec2f.h"
#include "kestrava/base/SbVec3f.h"
#include "kestrava/base/SbVec4f.h"
#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"

class SoNode;

// The elements of the traversal state that the toolkit's own nodes set. Pointers lead into fields of nodes
// that the traversal has met; they hold until it goes on to change those nodes. `id` is the node id of
// what set the element (0: default), so that two equal ids mean equal contents.

/// From the coordinates of the visited node to those of the root, or to those of SoOuterMatrixElement; row vectors.
struct SoModelMatrixElement {
  SbMatrix matrix = SbMatrix::identity();
};

/// Where an action works in the coordinates of a node below the root: from there to those of the root.
struct SoOuterMatrixElement {
  SbMatrix matrix = SbMatrix::identity();
};

struct SoCoordinateElement {
  SbVec3f const* points = nullptr;
  SbVec4f const* points4 = nullptr;  // homogeneous; set instead of `points`
  int count = 0;
  std::uint64_t id = 0;
};

struct SoNormalElement {
  SbVec3f const* normals = nullptr;
  int count = 0;
  std::uint64_t id = 0;
};

enum class SoBinding { OVERALL, PER_PART, PER_PART_INDEXED, PER_FACE, PER_FACE_INDEXED, PER_VERTEX, PER_VERTEX_INDEXED };

struct SoNormalBindingElement {
  SoBinding value = SoBinding::PER_VERTEX_INDEXED;
};
struct SoMaterialBindingElement {
  SoBinding value = SoBinding::OVERALL;
};
struct SoTextureCoordinateBindingElement {
  SoBinding value = SoBinding::PER_VERTEX_INDEXED;
};

struct SoTextureCoordinateElement {
  enum Source { SHAPE_DEFAULT, EXPLICIT, PLANE, ENVIRONMENT } source = SHAPE_DEFAULT;
  SbVec2f const* coords2 = nullptr;
  SbVec3f const* coords3 = nullptr;  // set instead of `coords2`
  int count = 0;
  SbVec3f directionS{1, 0, 0}, directionT{0, 1, 0};  // of PLANE
  std::uint64_t id = 0;
};

/// A material property with any number of values; never empty.
template <class T>
struct SoMaterialValues {
  T first{};                  // the value at index 0
  T const* values = nullptr;  // all of them, where there are more
  int count = 1;
  T const& operator[](int i) const { return count > 1 ? values[i < count ? i : count - 1] : first; }
};

struct SoMaterialElement {
  SoMaterialValues<SbColor> ambient{SbColor(0.2f, 0.2f, 0.2f)}, diffuse{SbColor(0.8f, 0.8f, 0.8f)},
      specular{SbColor(0, 0, 0)}, emissive{SbColor(0, 0, 0)};
  SoMaterialValues<float> shininess{0.2f}, transparency{0.0f};
  std::uint32_t const* packed = nullptr;  // 0xRRGGBBAA; replaces diffuse and transparency where set
  int packedCount = 0;
  std::uint64_t id = 0;
};

struct SoLightModelElement {
  bool lit = true;
};

struct SoDrawStyleElement {
  enum Style { FILLED, LINES, POINTS, INVISIBLE } style = FILLED;
  float pointSize = 1, lineWidth = 1;  // pixels
  unsigned linePattern = 0xffff;       // 16 bits, the lowest first along the line
};

struct SoShapeHintsElement {
  enum Ordering { UNKNOWN_ORDERING, CLOCKWISE, COUNTERCLOCKWISE } ordering = UNKNOWN_ORDERING;
  bool solid = false;    // with a known ordering: back faces are not drawn
  bool convex = true;    // faces need no tessellation
  float creaseAngle = 0;  // radians; computed normals are smooth across smaller angles
};

struct SoComplexityElement {
  enum Type { OBJECT_SPACE, SCREEN_SPACE, BOUNDING_BOX } type = OBJECT_SPACE;
  float value = 0.5f;  // 0 coarse to 1 fine
};

struct SoPickStyleElement {
  bool pickable = true;
  bool boundingBox = false;
};

struct SoFontElement {
  SbName name = "defaultFont";
  float size = 10;  // points for text in the plane of the screen, scene units for text in the scene
  std::uint64_t id = 0;
};

struct SoTextureImageElement {
  enum Model { MODULATE, DECAL, BLEND } model = MODULATE;
  SbImage image;  // empty: no texture; with a depth: a solid one
  bool repeatS = true, repeatT = true, repeatR = true;
  SbColor blendColor{0, 0, 0};
  std::uint64_t id = 0;
};

struct SoTextureMatrixElement {
  SbMatrix matrix = SbMatrix::identity();
};

struct SoUnitsElement {
  float metres = 1;  // length of the present unit
};

struct SoEnvironmentElement {
  enum Fog { NONE, HAZE, FOG, SMOKE } fog = NONE;
  float ambientIntensity = 0.2f;
  SbColor ambientColor{1, 1, 1}, fogColor{1, 1, 1};
  float fogVisibility = 0;
  SbVec3f attenuation{0, 0, 1};
};

/// The lights that shine on what follows, in world coordinates.
struct SoLightElement {
  struct Light {
    enum Kind { DIRECTIONAL, POINT, SPOT } kind = DIRECTIONAL;
    SbColor color{1, 1, 1};  // multiplied by the intensity
    SbVec3f position{0, 0, 0}, direction{0, 0, -1};
    float dropOffRate = 0, cutOffAngle = 0.785398f;
    SbVec3f attenuation{0, 0, 1};  // quadratic, linear, constant
  };
  std::vector<Light> lights;
};

/// Half spaces that are drawn, in world coordinates.
struct SoClipPlaneElement {
  std::vector<SbPlane> planes;
};

/// The camera met last. `set` is false before the first one.
struct SoCameraElement {
  bool set = false;
  SbViewVolume volume;
  SoNode* camera = nullptr;
};

struct SoViewportElement {
  SbViewportRegion region;
};

/// What a switch with "inherit" shows.
struct SoSwitchElement {
  int whichChild = -1;
};

/// What the groups around say about the copy of their contents that is visited; outer groups first.
struct SoInstanceElement {
  struct Value {
    SoNode const* parameter;  // an SoInstanceParameter
    int index;
  };
  std::vector<Value> values;
};

/// Kinds of properties that an overriding node has fixed for everything below.
struct SoOverrideElement {
  enum Kind : unsigned {
    MATERIAL = 1, DRAW_STYLE = 2, LIGHT_MODEL = 4, SHAPE_HINTS = 8, COMPLEXITY = 16, PICK_STYLE = 32, FONT = 64,
    MATERIAL_BINDING = 128, NORMAL_BINDING = 256, TEXTURE = 512, COLOR = 1024, TRANSPARENCY = 2048, ENVIRONMENT = 4096
  };
  unsigned fixed = 0;
};
