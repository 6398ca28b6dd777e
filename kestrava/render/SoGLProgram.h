#pragma once

#include <array>
#include <string>
#include <unordered_map>

/// The shader programs of the renderer: one for each set of features that was asked for so far.
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
  };
  /// LIT comes with a number of lights: loops over a number that is known are several times as fast.
  static constexpr unsigned withLights(int count) { return static_cast<unsigned>(count) << 16; }
  enum Attribute : unsigned { POSITION, NORMAL, COLOR, MATERIAL, TEX_COORD, MATRIX /* and the next two */ };
  enum Uniform { TEXTURE_MODEL, BLEND_COLOR, LINE_WIDTH, LINE_PATTERN, POINT_SIZE, NUM_UNIFORMS };
  enum Unit : int { IMAGE_UNIT, MATERIAL_UNIT };
  enum Block : unsigned { VIEW_BLOCK, SURROUNDINGS_BLOCK };

  static constexpr int MAX_LIGHTS = 8;
  static constexpr int MAX_CLIP_PLANES = 6;

  /// Number of the program; 0 when it does not compile, which is posted once as a debug error.
  unsigned getName() const { return m_name; }
  int getUniform(Uniform uniform) const { return m_uniforms[uniform]; }

  /// Compiles sources (an empty one is left out) and links them; 0 and a debug error when that fails.
  static unsigned build(char const* what, std::string const& vertex, std::string const& geometry,
                        std::string const& fragment);
  /// With the context current.
  static SoGLProgram make(unsigned features);

 private:
  unsigned m_name = 0;
  std::array<int, NUM_UNIFORMS> m_uniforms{};
};
