#include "kestrava/render/SoGLProgram.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "kestrava/base/SoError.h"
#include "kestrava/render/SoGLShaderText.h"

namespace {

std::string defines(unsigned features, bool own) {
  static std::pair<unsigned, char const*> const names[] = {{SoGLProgram::LIT, "LIT"},
                                                           {SoGLProgram::BOTH_SIDES, "BOTH_SIDES"},
                                                           {SoGLProgram::FACING, "FACING"},
                                                           {SoGLProgram::TEXTURE, "TEXTURE"},
                                                           {SoGLProgram::CLIP, "CLIP"},
                                                           {SoGLProgram::ENVIRONMENT_MAP, "ENVIRONMENT_MAP"},
                                                           {SoGLProgram::FOG, "FOG"},
                                                           {SoGLProgram::WIDE_LINES, "WIDE_LINES"},
                                                           {SoGLProgram::CUT_OUT, "CUT_OUT"},
                                                           {SoGLProgram::INSTANCED, "INSTANCED"},
                                                           {SoGLProgram::SPECULAR, "SPECULAR"},
                                                           {SoGLProgram::POSITIONAL, "POSITIONAL"},
                                                           {SoGLProgram::SOLID_TEXTURE, "SOLID_TEXTURE"},
                                                           {SoGLProgram::PLACED, "PLACED"},
                                                           {SoGLProgram::SCREEN_DOOR, "SCREEN_DOOR"},
                                                           {SoGLProgram::FULL_ALPHA, "FULL_ALPHA"}};
  std::string text;
  if (features & SoGLProgram::CLIP) {
    // A vertex stage of the scene's own need not know about clipping planes.
    if (own) {
      features &= ~unsigned{SoGLProgram::CLIP};
      text += "#define CUT_BY_PIXEL 0\n";
    } else if (features & SoGLProgram::MANY_PLANES) {
      text += "#define CUT_BY_PIXEL " + std::to_string(SoGLProgram::MAX_CLIP_DISTANCES) + "\n";
    }
  }
  for (auto const& [feature, name] : names) {
    if (features & feature) text += std::string("#define ") + name + "\n";
  }
  if (features & (SoGLProgram::PLACED | SoGLProgram::SOLID_TEXTURE)) text += "#define DEEP_COORDS\n";
  text += "#define NUM_LIGHTS " + std::to_string(features >> 16 & 0xff) + "\n";
  return text;
}

/// A text of the scene's own, made ready to stand behind declarations.
struct OwnText {
  std::string version = "330 core", extensions, body;
};

OwnText split(std::string const& source) {
  OwnText text;
  for (size_t start = 0; start < source.size();) {
    size_t const end = std::min(source.find('\n', start), source.size());
    std::string const line = source.substr(start, end - start);
    start = end + 1;
    size_t const word = line.find_first_not_of(" \t");
    // Both must stand before everything else; an empty line stays where they were.
    if (word != std::string::npos && line.compare(word, 8, "#version") == 0) {
      text.version = line.substr(word + 8);
    } else if (word != std::string::npos && line.compare(word, 10, "#extension") == 0) {
      text.extensions += line + "\n";
    } else {
      text.body += line;
    }
    text.body += "\n";
  }
  return text;
}

char const* const STAGE_NAMES[] = {"vertex", "geometry", "fragment"};

unsigned compile(unsigned kind, SoGLProgram::Source const& source, char const* stage, std::string& fault) {
  unsigned const shader = glCreateShader(kind);
  char const* const text = source.text.c_str();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  int compiled = 0;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
  if (compiled) return shader;
  char log[2000] = "";
  glGetShaderInfoLog(shader, sizeof log, nullptr, log);
  glDeleteShader(shader);
  if (!fault.empty()) fault += "\n";
  fault += std::string("the ") + stage + " shader " + (source.name.empty() ? "" : "'" + source.name + "' ") +
           "does not compile: " + log;
  return 0;
}

}  // namespace

unsigned SoGLProgram::build(std::array<Source, 3> const& stages, std::vector<SoDrawInput> const& inputs,
                            std::string& fault) {
  static unsigned const kinds[] = {GL_VERTEX_SHADER, GL_GEOMETRY_SHADER, GL_FRAGMENT_SHADER};
  unsigned const program = glCreateProgram();
  std::vector<unsigned> shaders;
  bool good = true;
  for (size_t i = 0; i < stages.size(); ++i) {
    if (stages[i].text.empty()) continue;
    unsigned const shader = compile(kinds[i], stages[i], STAGE_NAMES[i], fault);
    if (!shader) good = false;
    if (shader) glAttachShader(program, shader);
    shaders.push_back(shader);
  }
  int linked = 0;
  if (good) {
    for (size_t i = 0; i < inputs.size(); ++i) {
      glBindAttribLocation(program, FIRST_INPUT + static_cast<unsigned>(i), inputs[i].name.c_str());
    }
    glLinkProgram(program);
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (!linked) {
      char log[2000] = "";
      glGetProgramInfoLog(program, sizeof log, nullptr, log);
      fault += std::string("the stages do not fit together: ") + log;
    }
  }
  for (unsigned shader : shaders) glDeleteShader(shader);
  if (linked) return program;
  glDeleteProgram(program);
  return 0;
}

unsigned SoGLProgram::build(char const* what, std::string const& vertex, std::string const& fragment) {
  std::string fault;
  unsigned const program = build({Source{vertex, what}, Source{}, Source{fragment, what}}, {}, fault);
  if (!program) SoDebugError::post("SoGLProgram", "%s", fault.c_str());
  return program;
}

SoGLProgram SoGLProgram::make(unsigned features, SoDrawShader const* own, std::vector<SoDrawInput> const& inputs,
                              std::string& fault) {
  using namespace SoGLShaderText;
  std::string const settings = defines(features, own) + BLOCKS, surface = SURFACE;
  std::array<Source, 3> stages{Source{"", "scene"}, Source{"", "scene"}, Source{"", "scene"}};
  std::array<std::string, 3> const declarations = {"out" + surface + " s;\n" + VERTEX,
                                                   "in" + surface + " g[];\nout" + surface + " s;\n" + GEOMETRY,
                                                   "in" + surface + " s;\n"};
  char const* const calls[] = {VERTEX_CALL, "#undef main\nvoid main() { ksRawMain(); }\n", FRAGMENT_CALL};
  for (int i = 0; i < SoDrawShader::NUM_STAGES; ++i) {
    if (own && !own->sources[i].empty()) {
      OwnText const text = split(own->sources[i]);
      bool const isFragment = i == SoDrawShader::FRAGMENT;
      std::string before = isFragment ? std::string("#define OWN_FRAGMENT\n") : std::string();
      before += settings + declarations[i] + (isFragment ? FRAGMENT : "");
      if (isFragment && text.body.find("ksFragColor") != std::string::npos) before += "out vec4 ksFragColor;\n";
      stages[i] = {"#version " + text.version + "\n" + text.extensions + before + "#define main ksRawMain\n#line 1\n" +
                       text.body + calls[i],
                   own->sourceNames[i]};
    } else if (i == SoDrawShader::VERTEX) {
      stages[i].text = "#version 330 core\n" + settings + declarations[i] + VERTEX_MAIN;
    } else if (i == SoDrawShader::FRAGMENT) {
      stages[i].text = "#version 330 core\n" + settings + declarations[i] + FRAGMENT + FRAGMENT_MAIN;
    } else if (features & WIDE_LINES) {
      stages[i].text =
          "#version 330 core\n" + settings + "in" + surface + " g[2];\nout" + surface + " s;\n" + WIDEN_LINES;
    }
  }
  SoGLProgram program;
  program.m_own = own;
  program.m_name = build(stages, own ? inputs : std::vector<SoDrawInput>(), fault);
  if (!program.m_name) {
    if (!own) SoDebugError::post("SoGLProgram", "%s", fault.c_str());
    return program;
  }
  unsigned const name = program.m_name;
  static char const* const uniforms[NUM_UNIFORMS] = {"ksRawTextureModel", "ksRawBlendColor", "ksRawLineWidth",
                                                     "ksRawLinePattern", "ksPointSize"};
  for (int i = 0; i < NUM_UNIFORMS; ++i) program.m_uniforms[i] = glGetUniformLocation(name, uniforms[i]);
  std::pair<char const*, unsigned> const blocks[] = {{"KsView", VIEW_BLOCK}, {"KsSurroundings", SURROUNDINGS_BLOCK}};
  for (auto const& [block, binding] : blocks) {
    unsigned const index = glGetUniformBlockIndex(name, block);
    if (index != GL_INVALID_INDEX) glUniformBlockBinding(name, index, binding);
  }
  int before = 0;
  glGetIntegerv(GL_CURRENT_PROGRAM, &before);
  glUseProgram(name);
  glUniform1i(glGetUniformLocation(name, "ksTexture"), IMAGE_UNIT);
  glUniform1i(glGetUniformLocation(name, "ksRawMaterials"), MATERIAL_UNIT);
  glUniform1i(glGetUniformLocation(name, "ksRawPlaces"), PLACES_UNIT);
  if (own) {
    if (!own->sources[SoDrawShader::GEOMETRY].empty()) {
      int input = 0;
      glGetProgramiv(name, GL_GEOMETRY_INPUT_TYPE, &input);
      program.m_geometryInput = static_cast<unsigned>(input);
    }
    program.findVariables();
  }
  glUseProgram(static_cast<unsigned>(before));
  return program;
}

namespace {

bool isSampler(unsigned type) {
  if (type >= GL_UNSIGNED_INT_VEC2 && type <= GL_UNSIGNED_INT_VEC4) return false;
  return (type >= GL_SAMPLER_1D && type <= GL_SAMPLER_2D_RECT_SHADOW) ||
         (type >= GL_SAMPLER_1D_ARRAY && type <= GL_UNSIGNED_INT_SAMPLER_BUFFER);
}

/// Kind and components of what a variable takes, without values.
SoUniformValue emptyValue(unsigned type) {
  using V = SoUniformValue;
  auto const of = [](V::Kind kind, int components) {
    V value;
    value.kind = kind;
    value.components = components;
    return value;
  };
  switch (type) {
    case GL_FLOAT: return of(V::FLOATS, 1);
    case GL_FLOAT_VEC2: return of(V::FLOATS, 2);
    case GL_FLOAT_VEC3: return of(V::FLOATS, 3);
    case GL_FLOAT_VEC4: return of(V::FLOATS, 4);
    case GL_INT:
    case GL_BOOL:
    case GL_UNSIGNED_INT: return of(V::INTEGERS, 1);
    case GL_INT_VEC2:
    case GL_BOOL_VEC2: return of(V::INTEGERS, 2);
    case GL_INT_VEC3:
    case GL_BOOL_VEC3: return of(V::INTEGERS, 3);
    case GL_INT_VEC4:
    case GL_BOOL_VEC4: return of(V::INTEGERS, 4);
    case GL_FLOAT_MAT3:
    case GL_FLOAT_MAT4: return of(V::MATRICES, 16);
    case GL_SAMPLER_2D:
    case GL_SAMPLER_3D: return of(V::IMAGE, 1);
    default: return of(V::NONE, 0);
  }
}

/// What the elements of a variable hold.
SoUniformValue valueOf(unsigned program, SoGLProgram::Variable const& variable) {
  SoUniformValue value = emptyValue(variable.type);
  for (int const location : variable.locations) {
    float floats[16] = {};
    int integers[4] = {};
    switch (value.kind) {
      case SoUniformValue::MATRICES:
      case SoUniformValue::FLOATS:
        if (location >= 0) glGetUniformfv(program, location, floats);
        // Matrices are kept whole.
        for (int column = 2; variable.type == GL_FLOAT_MAT3 && column >= 0; --column) {
          for (int row = 3; row >= 0; --row) floats[4 * column + row] = row < 3 ? floats[3 * column + row] : 0;
        }
        value.floats.insert(value.floats.end(), floats, floats + value.components);
        break;
      case SoUniformValue::INTEGERS:
        if (location >= 0) glGetUniformiv(program, location, integers);
        value.integers.insert(value.integers.end(), integers, integers + value.components);
        break;
      default: break;
    }
  }
  return value;
}

}  // namespace

/// With the program in use: enters the variables and gives each sampler a unit of its own, as samplers of two
/// kinds must not share one.
void SoGLProgram::findVariables() {
  int count = 0, unit = FIRST_OWN_UNIT, longest = 0;
  glGetProgramiv(m_name, GL_ACTIVE_UNIFORMS, &count);
  glGetProgramiv(m_name, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
  std::string text(static_cast<size_t>(std::max(longest, 1)), '\0');
  for (int i = 0; i < count; ++i) {
    Variable variable{};
    int size = 0;
    glGetActiveUniform(m_name, static_cast<unsigned>(i), longest, nullptr, &size, &variable.type, text.data());
    std::string name = text.c_str();
    int const location = glGetUniformLocation(m_name, name.c_str());
    bool const isOurs = name.starts_with("ksRaw") || name == "ksTexture" || name == "ksPointSize";
    if (location < 0 || isOurs) continue;
    if (name.ends_with("[0]")) name.resize(name.size() - 3);
    variable.locations.push_back(location);
    for (int k = 1; k < size; ++k) {
      variable.locations.push_back(glGetUniformLocation(m_name, (name + "[" + std::to_string(k) + "]").c_str()));
    }
    if (isSampler(variable.type) && unit + size <= FIRST_OWN_UNIT + MAX_OWN_UNITS) {
      variable.unit = unit;
      for (int const element : variable.locations) glUniform1i(element, unit++);
    }
    variable.initial = valueOf(m_name, variable);
    m_variables[name] = std::move(variable);
  }
}

SoGLProgram::Place SoGLProgram::find(std::string const& name) const {
  auto const known = m_variables.find(name);
  if (known != m_variables.end()) return {&known->second, 0};
  size_t const bracket = name.rfind('[');
  if (bracket == std::string::npos || !name.ends_with(']')) return {nullptr, 0};
  int element = -1;
  char const *const first = name.data() + bracket + 1, *const last = name.data() + name.size() - 1;
  auto const array = m_variables.find(name.substr(0, bracket));
  auto const [end, error] = std::from_chars(first, last, element);
  bool const isNumber = error == std::errc() && end == last && element >= 0;
  if (array == m_variables.end() || !isNumber || element >= std::ssize(array->second.locations)) return {nullptr, 0};
  return {&array->second, element};
}

SoGLProgram::Place SoGLProgram::find(int location) const {
  for (auto const& [name, variable] : m_variables) {
    auto const element = std::find(variable.locations.begin(), variable.locations.end(), location);
    if (element != variable.locations.end()) return {&variable, static_cast<int>(element - variable.locations.begin())};
  }
  return {nullptr, 0};
}
