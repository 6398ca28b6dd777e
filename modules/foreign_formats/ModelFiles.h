#pragma once

#include <assimp/IOSystem.hpp>
#include <memory>
#include <set>
#include <string>

#include "kestrava/io/SoImporter.h"

/// The file that a model names: beside the model, under its bare name there, or along the search path; names
/// of other systems and percent-encoded ones are understood. Empty when there is none.
SbString findModelFile(SbString const& model, std::string const& name);

/// Gives Assimp the files that it asks for, compressed and in-memory models included.
class ModelFiles : public Assimp::IOSystem {
 public:
  explicit ModelFiles(SoImporter::File const& model) : m_model(model) {}

  bool Exists(char const* name) const override;
  char getOsSeparator() const override { return '/'; }
  Assimp::IOStream* Open(char const* name, char const* mode) override;
  void Close(Assimp::IOStream* stream) override;

  /// Why the model itself could not be opened; empty when it could.
  SbString const& getFault() const { return m_fault; }
  /// Names that were asked for in vain.
  std::set<std::string> const& getMissing() const { return m_missing; }

 private:
  bool isModel(char const* name) const { return m_model.innerName == name; }
  std::shared_ptr<std::string const> loadModel();

  SoImporter::File const& m_model;
  std::shared_ptr<std::string const> m_text; // of the model, where it is no plain file
  SbString m_fault;
  std::set<std::string> m_missing;
};
