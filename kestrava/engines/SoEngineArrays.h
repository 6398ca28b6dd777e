#pragma once

#include <algorithm>
#include <initializer_list>

/// How engines combine inputs with several values.
namespace SoEngineArrays {

/// The number of values that come out: that of the longest input, none where an input has none.
template <class... Fields> int getLongest(Fields const&... fields) {
  auto const counts = {fields.getNumValues()...};
  return std::min(counts) == 0 ? 0 : std::max(counts);
}

/// A value; the last one counts for all that follow it.
template <class Field> typename Field::ValueType const& at(Field const& field, int i) {
  return field[std::min(i, field.getNumValues() - 1)];
}

} // namespace SoEngineArrays
