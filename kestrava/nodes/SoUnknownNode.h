#pragma once

#include <memory>
#include <vector>

#include "kestrava/nodes/SoGroup.h"

/// A node of a type that this program does not know, kept with its fields and children so that it can be
/// written back. Each type of a file gets a type of its own here, named "Unknown" and the type's name.
class SoUnknownNode : public SoGroup {
 public:
  explicit SoUnknownNode(SbName const& fileTypeName);

  static SoType getClassTypeId();
  SoType getTypeId() const override { return m_type; }
  SoFieldData const* getFieldData() const override { return &m_data; }

  /// The name that the type has in files.
  SbName const& getFileTypeName() const { return m_fileTypeName; }
  /// Adds a field of a type; false when there is one of that name or when the type is not one of fields.
  bool declareField(SoType fieldType, SbName const& name);

 protected:
  SoFieldContainer* makeEmpty() const override;
  ~SoUnknownNode() override = default;
  SoFieldData& getClassFieldData() const override { return m_data; }
  std::vector<SoEnumSymbol>* getOpenSymbols(int index) override;

 private:
  SbName m_fileTypeName;
  SoType m_type;
  mutable SoFieldData m_data;
  std::vector<std::unique_ptr<SoField>> m_fields;
  inline static bool const s_registered = !getClassTypeId().isBad();
};
