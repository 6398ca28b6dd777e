#pragma once

#include <algorithm>
#include <string>

#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/io/SoNumberText.h"
#include "kestrava/nodes/SoUnknownNode.h"

// What both halves of the reader say and look up.

namespace SoReadText {

inline std::string quoted(SbString const& text) { return "'" + text.str() + "'"; }

inline std::string typeText(SoFieldContainer const* container) {
  auto const* unknown = dynamic_cast<SoUnknownNode const*>(container);
  return unknown ? unknown->getFileTypeName().str() : container->getTypeId().getName().str();
}

/// True for what can stand as the name of a type or a field in a text.
inline bool isWord(std::string_view text) {
  using namespace SoNumberText;
  if (text.empty() || is(text[0], END_NUMBER) || text == "USE" || text == "DEF" || text == "NULL")
    return false;
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return is(c, END_WORD) || c == '=' || c == '~' || c == '.'; });
}

/// A file's own field names are few: comparing texts is cheaper than entering each word among the names.
inline SoField* findField(SoFieldContainer const* container, std::string_view name) {
  SoFieldData const& data = *container->getFieldData();
  for (int i = 0; i < data.getNumFields(); ++i) {
    if (data.getFieldName(i).str() == name) return data.getField(container, i);
  }
  return nullptr;
}

/// True for what may be the source of a connection and is no node.
inline bool isEngineType(SoType type) {
  return type.isDerivedFrom(SoFieldContainer::getClassTypeId()) &&
         (type.isDerivedFrom(SoType::fromName("Engine")) ||
          type.isDerivedFrom(SoType::fromName("GlobalField")));
}

/// A new container of a type that isEngineType() or a node type; null when it is abstract.
inline SoRef<SoFieldContainer> makeContainer(SoType type) {
  return SoRef<SoFieldContainer>(static_cast<SoFieldContainer*>(type.createInstance()));
}

} // namespace SoReadText
