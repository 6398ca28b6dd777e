#include "kestrava/nodes/SoShaderObject.h"

#include <mutex>

#include "kestrava/base/SoError.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoSearchPath.h"

namespace {

/// Several rendering threads may ask for the text that a node keeps.
std::mutex mutex;

} // namespace

SbString SoShaderObject::getSource() const {
  SbString const text = sourceProgram.isIgnored() ? SbString() : sourceProgram.getValue();
  if (sourceType.getValue() == GLSL_PROGRAM || text.empty()) return text;
  SbString source;
  {
    std::lock_guard lock(mutex);
    if (m_asked) return m_source;
    m_asked = true;
    source = m_source = SoInput::readTextFile(text);
  }
  // Who is told may ask again.
  if (source.empty()) {
    bool const isThere = SoSearchPath::getInMemoryText(text) || !SoSearchPath::find(text).empty();
    SoReadError::post("the shader file '%s' of %s '%s' %s", text.c_str(), getTypeId().getName().c_str(),
                      getName().c_str(), isThere ? "is empty or can not be read" : "is not found");
  }
  return source;
}

void SoShaderObject::reload() {
  {
    std::lock_guard lock(mutex);
    m_asked = false;
  }
  touch();
}

void SoShaderObject::fieldChanged(SoField* field) {
  if (field != &sourceProgram && field != &sourceType) return;
  std::lock_guard lock(mutex);
  m_asked = false;
}
