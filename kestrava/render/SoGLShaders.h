#pragma once

#include <map>
#include <set>
#include <tuple>

#include "kestrava/render/SoDrawList.h"
#include "kestrava/render/SoGLProgram.h"
#include "kestrava/render/SoGLTextures.h"

/// The programs that scenes bring along, as a renderer has them on the GPU: compiled once for each text and
/// set of features, whatever the values of their variables.
class SoGLShaders {
 public:
  /// Null when the program does not compile, which is posted once as a debug error.
  SoGLProgram const* get(SoDrawShader const& shader, unsigned features,
                         std::vector<SoDrawInput> const& inputs);
  /// Sets the variables; the program is in use.
  void setVariables(SoGLProgram const& program, SoDrawShader const& shader, SoDrawTexture const* sceneTexture,
                    SoGLTextures& textures);
  /// The program has a geometry stage that does not take what the shape consists of; posted once.
  void complainAboutGeometry(SoDrawShader const& shader);

  /// Gives up the programs that the list does not use, and forgets what was posted about them.
  void sweep(SoDrawList const& list);
  /// How often one was compiled, with success or not.
  int getNumCompiled() const { return m_numCompiled; }
  void release();
  void forget();

 private:
  using Texts = std::array<std::string, SoDrawShader::NUM_STAGES>;
  struct Variant {
    unsigned features;
    std::vector<SoDrawInput> inputs;
    SoGLProgram program;
  };
  struct Entry {
    std::vector<Variant> variants;
    bool failed = false;
    std::set<std::string> posted; // faults that were told
  };
  void post(SoDrawShader const& shader, Entry& entry, std::string const& fault);
  std::string setVariable(SoGLProgram::Place place, SoUniformValue const& value, SoDrawTexture const* sceneTexture,
                          SoGLTextures& textures);
  std::string setImage(SoGLProgram::Variable const& variable, int unit, SoUniformValue const& value,
                       SoDrawTexture const* sceneTexture, SoGLTextures& textures);

  std::map<Texts, Entry> m_entries;
  int m_numCompiled = 0;
};
