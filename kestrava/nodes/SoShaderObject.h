#pragma once

#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoNode.h"

/// Base of the stages of a shader program, written in GLSL.
class SoShaderObject : public SoNode {
  SO_ABSTRACT_NODE(SoShaderObject, SoNode)
  enum SourceType { FILENAME, GLSL_PROGRAM };
  static std::vector<SoEnumSymbol> const& sourceTypes() {
    static std::vector<SoEnumSymbol> const symbols{{"FILENAME", FILENAME}, {"GLSL_PROGRAM", GLSL_PROGRAM}};
    return symbols;
  }

  SoSFBool isActive{this, "isActive", true}; ///< false: as if the stage were not there
  SoSFEnum sourceType{this, "sourceType", FILENAME, sourceTypes()};
  SoSFString sourceProgram{this, "sourceProgram"}; ///< name of a file, or the text itself
  SoMFUniformShaderParameter parameter{this, "parameter"};

  /// The text of the stage, read when it is first needed, along the search path. Empty when the file can not
  /// be read, which is posted once as a read error.
  SbString getSource() const;
  /// Reads the file again, whether or not it has changed.
  void reload();

 protected:
  SoShaderObject() = default;
  ~SoShaderObject() override = default;
  void fieldChanged(SoField* field) override;

 private:
  mutable SbString m_source;
  mutable bool m_asked = false;
};
