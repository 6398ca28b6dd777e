#include "kestrava/render/SoGLShaders.h"

#include <epoxy/gl.h>

#include <algorithm>

#include "kestrava/base/SoError.h"

namespace {

std::string describe(SoUniformValue::Kind kind, int components) {
  switch (kind) {
    case SoUniformValue::FLOATS:
      return components == 1 ? "float" : "vec" + std::to_string(components);
    case SoUniformValue::INTEGERS:
      return components == 1 ? "int" : "ivec" + std::to_string(components);
    case SoUniformValue::MATRICES:
      return "matrix";
    case SoUniformValue::IMAGE:
      return "sampler";
    default:
      return "type that has no parameters";
  }
}

void setFloats(int location, int components, int count, float const* values) {
  switch (components) {
    case 1:
      return glUniform1fv(location, count, values);
    case 2:
      return glUniform2fv(location, count, values);
    case 3:
      return glUniform3fv(location, count, values);
    default:
      return glUniform4fv(location, count, values);
  }
}

void setIntegers(int location, unsigned type, int components, int count, std::int32_t const* values) {
  if (type == GL_UNSIGNED_INT) return glUniform1uiv(location, count, reinterpret_cast<GLuint const*>(values));
  switch (components) {
    case 1:
      return glUniform1iv(location, count, values);
    case 2:
      return glUniform2iv(location, count, values);
    case 3:
      return glUniform3iv(location, count, values);
    default:
      return glUniform4iv(location, count, values);
  }
}

void setMatrices(int location, unsigned type, int count, float const* values) {
  if (type == GL_FLOAT_MAT4) return glUniformMatrix4fv(location, count, GL_FALSE, values);
  std::vector<float> upperLeft;
  for (int i = 0; i < count; ++i) {
    for (int row = 0; row < 3; ++row) {
      upperLeft.insert(upperLeft.end(), values + 16 * i + 4 * row, values + 16 * i + 4 * row + 3);
    }
  }
  glUniformMatrix3fv(location, count, GL_FALSE, upperLeft.data());
}

/// As many of the values as there are elements from that one on.
void setValues(SoGLProgram::Place place, SoUniformValue const& value) {
  SoGLProgram::Variable const& variable = *place.variable;
  int const location = variable.locations[static_cast<size_t>(place.element)];
  bool const isInteger = value.kind == SoUniformValue::INTEGERS;
  size_t const given = isInteger ? value.integers.size() : value.floats.size();
  int const count = std::min(static_cast<int>(variable.locations.size()) - place.element,
                             static_cast<int>(given) / std::max(1, value.components));
  if (count <= 0) return;
  if (isInteger) return setIntegers(location, variable.type, value.components, count, value.integers.data());
  if (value.kind == SoUniformValue::MATRICES) return setMatrices(location, variable.type, count, value.floats.data());
  setFloats(location, value.components, count, value.floats.data());
}

/// Gives a variable what it has before any parameter; a sampler, no image.
void reset(SoGLProgram::Variable const& variable) {
  if (variable.initial.kind == SoUniformValue::NONE) return;
  if (variable.initial.kind != SoUniformValue::IMAGE) return setValues({&variable, 0}, variable.initial);
  for (size_t i = 0; variable.unit && i < variable.locations.size(); ++i) {
    glActiveTexture(GL_TEXTURE0 + static_cast<unsigned>(variable.unit) + static_cast<unsigned>(i));
    glBindTexture(variable.type == GL_SAMPLER_3D ? GL_TEXTURE_3D : GL_TEXTURE_2D, 0);
  }
}

} // namespace

void SoGLShaders::post(SoDrawShader const& shader, Entry& entry, std::string const& fault) {
  if (entry.posted.insert(fault).second) {
    SoDebugError::post("SoShaderProgram", "'%s': %s", shader.name.c_str(), fault.c_str());
  }
}

SoGLProgram const* SoGLShaders::get(SoDrawShader const& shader, unsigned features,
                                    std::vector<SoDrawInput> const& inputs) {
  Entry& entry = m_entries[shader.sources];
  // What does not compile once is not tried again for other features.
  if (entry.failed) return nullptr;
  for (Variant const& variant : entry.variants) {
    if (variant.features == features && variant.inputs == inputs) return &variant.program;
  }
  std::string fault;
  ++m_numCompiled;
  SoGLProgram program = SoGLProgram::make(features, &shader, inputs, fault);
  if (!program.getName()) {
    entry.failed = true;
    post(shader, entry, fault);
    return nullptr;
  }
  entry.variants.push_back({features, inputs, std::move(program)});
  return &entry.variants.back().program;
}

void SoGLShaders::complainAboutGeometry(SoDrawShader const& shader) {
  post(shader, m_entries[shader.sources],
       "the geometry shader '" + shader.sourceNames[SoDrawShader::GEOMETRY] +
           "' takes another kind of primitive than some shapes have; these are drawn without the program");
}

std::string SoGLShaders::setVariable(SoGLProgram::Place place, SoUniformValue const& value,
                                     SoDrawTexture const* sceneTexture, SoGLTextures& textures) {
  SoGLProgram::Variable const& variable = *place.variable;
  auto const kind = variable.initial.kind;
  int const components = variable.initial.components;
  bool const fits = kind == value.kind && (kind == SoUniformValue::IMAGE || components == value.components);
  if (!fits) {
    return "is a " + describe(kind, components) + ", its parameter gives a " +
           describe(value.kind, value.components);
  }
  if (kind == SoUniformValue::IMAGE) {
    if (variable.unit == 0) return "is one sampler too many";
    return setImage(variable, variable.unit + place.element, value, sceneTexture, textures);
  }
  setValues(place, value);
  return std::string();
}

std::string SoGLShaders::setImage(SoGLProgram::Variable const& variable, int unit, SoUniformValue const& value,
                                  SoDrawTexture const* sceneTexture, SoGLTextures& textures) {
  SoGLTextures::Repeat repeat{value.repeat[0], value.repeat[1], value.repeat[2]};
  SbImage const* image = &value.image;
  if (image->isEmpty() && sceneTexture) {
    image = &sceneTexture->element.image;
    repeat = {sceneTexture->element.repeatS, sceneTexture->element.repeatT, sceneTexture->element.repeatR};
  }
  if (image->isEmpty()) return std::string();
  if ((image->getDepth() > 0) != (variable.type == GL_SAMPLER_3D)) {
    return image->getDepth() > 0 ? "is a sampler2D, its image has a depth"
                                 : "is a sampler3D, its image has no depth";
  }
  textures.bind(unit, *image, repeat);
  return std::string();
}

void SoGLShaders::setVariables(SoGLProgram const& program, SoDrawShader const& shader,
                               SoDrawTexture const* sceneTexture, SoGLTextures& textures) {
  // Nodes with the same text share a program: what another one has set must not be seen here.
  for (auto const& [name, variable] : program.getVariables()) reset(variable);
  for (SoDrawShader::Uniform const& uniform : shader.uniforms) {
    SoGLProgram::Place const place =
        uniform.name.empty() ? program.find(uniform.identifier) : program.find(uniform.name);
    if (!place.variable) continue; // a compiler leaves out what a program does not need
    std::string const fault = setVariable(place, uniform.value, sceneTexture, textures);
    if (!fault.empty()) {
      post(shader, m_entries[shader.sources],
           "the variable '" + (uniform.name.empty() ? std::to_string(uniform.identifier) : uniform.name) +
               "' " + fault);
    }
  }
}

void SoGLShaders::sweep(SoDrawList const& list) {
  std::erase_if(m_entries, [&](auto const& item) {
    auto const& shaders = list.getShaders();
    bool const used =
        std::any_of(shaders.begin(), shaders.end(), [&](auto const& s) { return s.sources == item.first; });
    if (used) return false;
    for (Variant const& variant : item.second.variants) glDeleteProgram(variant.program.getName());
    return true;
  });
}

void SoGLShaders::release() {
  for (auto const& [texts, entry] : m_entries) {
    for (Variant const& variant : entry.variants) glDeleteProgram(variant.program.getName());
  }
  forget();
}

void SoGLShaders::forget() { m_entries.clear(); }
