#include "kestrava/render/SoGLShaders.h"

#include <epoxy/gl.h>

#include <algorithm>

#include "kestrava/base/SoError.h"

namespace {

/// What a variable takes: kind, and components of one value. NONE for types that parameters do not serve.
struct Shape {
  SoUniformValue::Kind kind;
  int components;
};

Shape shapeOf(unsigned type) {
  switch (type) {
    case GL_FLOAT:
      return {SoUniformValue::FLOATS, 1};
    case GL_FLOAT_VEC2:
      return {SoUniformValue::FLOATS, 2};
    case GL_FLOAT_VEC3:
      return {SoUniformValue::FLOATS, 3};
    case GL_FLOAT_VEC4:
      return {SoUniformValue::FLOATS, 4};
    case GL_INT:
    case GL_BOOL:
    case GL_UNSIGNED_INT:
      return {SoUniformValue::INTEGERS, 1};
    case GL_INT_VEC2:
    case GL_BOOL_VEC2:
      return {SoUniformValue::INTEGERS, 2};
    case GL_INT_VEC3:
    case GL_BOOL_VEC3:
      return {SoUniformValue::INTEGERS, 3};
    case GL_INT_VEC4:
    case GL_BOOL_VEC4:
      return {SoUniformValue::INTEGERS, 4};
    case GL_FLOAT_MAT3:
    case GL_FLOAT_MAT4:
      return {SoUniformValue::MATRICES, 16};
    case GL_SAMPLER_2D:
    case GL_SAMPLER_3D:
      return {SoUniformValue::IMAGE, 1};
    default:
      return {SoUniformValue::NONE, 0};
  }
}

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

std::string SoGLShaders::setVariable(SoGLProgram::Variable const& variable, SoUniformValue const& value,
                                     SoDrawTexture const* sceneTexture, SoGLTextures& textures) {
  auto const [kind, components] = shapeOf(variable.type);
  bool const fits = kind == value.kind && (kind == SoUniformValue::IMAGE || components == value.components);
  if (!fits) {
    return "is a " + describe(kind, components) + ", its parameter gives a " +
           describe(value.kind, value.components);
  }
  size_t const given = value.kind == SoUniformValue::INTEGERS ? value.integers.size() : value.floats.size();
  int const count = std::min(variable.size, static_cast<int>(given) / components);
  switch (kind) {
    case SoUniformValue::FLOATS:
      if (count > 0) setFloats(variable.location, components, count, value.floats.data());
      break;
    case SoUniformValue::INTEGERS:
      if (count > 0) setIntegers(variable.location, variable.type, components, count, value.integers.data());
      break;
    case SoUniformValue::MATRICES:
      if (count > 0) setMatrices(variable.location, variable.type, count, value.floats.data());
      break;
    case SoUniformValue::IMAGE: {
      if (variable.unit == 0) return "is one sampler too many";
      SoGLTextures::Repeat repeat{value.repeat[0], value.repeat[1], value.repeat[2]};
      SbImage const* image = &value.image;
      if (image->isEmpty() && sceneTexture) {
        image = &sceneTexture->element.image;
        repeat = {sceneTexture->element.repeatS, sceneTexture->element.repeatT,
                  sceneTexture->element.repeatR};
      }
      if (image->isEmpty()) {
        glActiveTexture(GL_TEXTURE0 + static_cast<unsigned>(variable.unit));
        glBindTexture(variable.type == GL_SAMPLER_3D ? GL_TEXTURE_3D : GL_TEXTURE_2D, 0);
        break;
      }
      if ((image->getDepth() > 0) != (variable.type == GL_SAMPLER_3D)) {
        return image->getDepth() > 0 ? "is a sampler2D, its image has a depth"
                                     : "is a sampler3D, its image has no depth";
      }
      textures.bind(variable.unit, *image, repeat);
      break;
    }
    default:
      break;
  }
  return std::string();
}

void SoGLShaders::setVariables(SoGLProgram const& program, SoDrawShader const& shader,
                               SoDrawTexture const* sceneTexture, SoGLTextures& textures) {
  for (SoDrawShader::Uniform const& uniform : shader.uniforms) {
    SoGLProgram::Variable const* const variable =
        uniform.name.empty() ? program.getVariable(uniform.identifier) : program.getVariable(uniform.name);
    if (!variable) continue; // a compiler leaves out what a program does not need
    std::string const fault = setVariable(*variable, uniform.value, sceneTexture, textures);
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
