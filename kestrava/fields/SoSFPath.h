#pragma once

#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoSField.h"

/// A path or none. As text NULL, or "Path { head [ indices ] }": the graph below the head, then the child index
/// of each step. A path that is read has a graph of its own.
class SoSFPath : public SoSField {
  SO_FIELD(SoSFPath, SoSField)
  using ValueType = SoPath*;
  SoSFPath() = default;
  SoSFPath(SoFieldContainer* container, char const* name, SoPath* value = nullptr, FieldType type = NORMAL)
      : SoSField(container, name, type), m_value(value) {}

  /// May be null.
  SoPath* getValue() const {
    evaluate();
    return m_value;
  }
  void setValue(SoPath* path) {
    m_value = SoRef<SoPath>(path);
    valueChanged();
  }

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  bool hasValueOf(SoField const& other) const override;
  void takeValueOf(SoField const& other) override { m_value = static_cast<SoSFPath const&>(other).m_value; }
  void takeCopyOf(SoField const& other, SoCopier& copier) override;

 private:
  SoRef<SoPath> m_value;
};

/// Text of a path that may be null.
bool SoReadPath(SoInput& in, SoRef<SoPath>& path);
void SoWritePath(SoOutput& out, SoPath const* path);
/// True for two null paths, and for two that run through the same nodes.
bool SoSamePath(SoPath const* a, SoPath const* b);
