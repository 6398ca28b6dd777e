#pragma once

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "kestrava/render/SoDrawContents.h"

/// The shader programs of the renderer: one for each set of features that was asked for so far. A program may
/// have stages that the scene brings along.
class SoGLProgram {
 public:
  enum Feature : unsigned {
    LIT = 1,
    BOTH_SIDES = 2,      ///< back sides are lit as well; which side is seen follows from the normal
    FACING = 4,          ///< with BOTH_SIDES: it follows from the order of the corners
    TEXTURE = 8,
    ENVIRONMENT_MAP = 16,
    CLIP = 32,
    FOG = 64,
    WIDE_LINES = 128,    ///< lines of any width with a pattern; takes lines
    INSTANCED = 256,
    CUT_OUT = 512,       ///< pixels below half opacity are not drawn
    SPECULAR = 1024,     ///< some material has highlights
    POSITIONAL = 2048,   ///< some light is not directional
    SOLID_TEXTURE = 4096,  ///< with TEXTURE: the image has a depth
    PLACED = 8192,       ///< vertices are in the coordinates of their shapes and say which matrix is theirs
    MANY_PLANES = 16384,   ///< with CLIP: more planes than there are clip distances
    SCREEN_DOOR = 32768,   ///< transparency by leaving out pixels
    FULL_ALPHA = 1u << 24,  ///< what is drawn is opaque
  };
  /// LIT comes with a number of lights: loops over a number that is known are several times as fast.
  static constexpr unsigned withLights(int count) { return static_cast<unsigned>(count) << 16; }
  enum Attribute : unsigned { POSITION, NORMAL, COLOR, MATERIAL, TEX_COORD, MATRIX /* and the next two */ };
  static constexpr unsigned PLACE = MATRIX;   ///< with PLACED
  static constexpr unsigned FIRST_INPUT = 8;  ///< of those that each copy has of its own
  enum Uniform { TEXTURE_MODEL, BLEND_COLOR, LINE_WIDTH, LINE_PATTERN, POINT_SIZE, NUM_UNIFORMS };
  enum Unit : int { IMAGE_UNIT, MATERIAL_UNIT, PLACES_UNIT, FIRST_OWN_UNIT };
  enum Block : unsigned { VIEW_BLOCK, SURROUNDINGS_BLOCK };

  static constexpr int MAX_LIGHTS = 32;
  static constexpr int MAX_CLIP_PLANES = 16;
  static constexpr int MAX_CLIP_DISTANCES = 8;  ///< further planes cut pixel by pixel
  static constexpr int MAX_INPUTS = 8;
  static constexpr int MAX_OWN_UNITS = 8;  ///< samplers of a scene's program beside those that are there

  /// A uniform variable of a program with stages of the scene's own.
  struct Variable {
    unsigned type;               // as OpenGL names it
    SoUniformValue initial;      // as the program sets it; kind NONE for types that parameters do not serve
    std::vector<int> locations;  // one an element of an array
    int unit;                    // of a sampler, or of the first of an array of them; 0: there was none left
  };
  struct Place {
    Variable const* variable;
    int element;
  };

  /// Number of the program; 0 when it does not compile.
  unsigned getName() const { return m_name; }
  int getUniform(Uniform uniform) const { return m_uniforms[uniform]; }
  /// True when some stage is the scene's.
  bool isOwn() const { return m_own; }
  std::unordered_map<std::string, Variable> const& getVariables() const { return m_variables; }
  /// A variable, or an element of an array (`name[2]`); null when the program does not use it.
  Place find(std::string const& name) const;
  Place find(int location) const;
  /// What a geometry stage of the scene's own takes: GL_TRIANGLES, GL_LINES, GL_POINTS; 0 when there is none.
  unsigned getGeometryInput() const { return m_geometryInput; }

  /// A stage: its text, and how it is called in messages.
  struct Source {
    std::string text, name;
  };
  /// Compiles a vertex, a geometry and a fragment stage (an empty one is left out) and links them; 0 and the
  /// reason in `fault` when that fails.
  static unsigned build(std::array<Source, 3> const& stages, std::vector<SoDrawInput> const& inputs, std::string& fault);
  /// The same for a program of the toolkit's own; a fault is posted as a debug error.
  static unsigned build(char const* what, std::string const& vertex, std::string const& fragment);
  /// With the context current. `own`: the stages that the scene brings along; needs PLACED. Without it a fault is
  /// posted as a debug error; with it it is only told.
  static SoGLProgram make(unsigned features, SoDrawShader const* own, std::vector<SoDrawInput> const& inputs,
                          std::string& fault);

 private:
  void findVariables();

  unsigned m_name = 0;
  unsigned m_geometryInput = 0;
  bool m_own = false;
  std::array<int, NUM_UNIFORMS> m_uniforms{};
  std::unordered_map<std::string, Variable> m_variables;
};
