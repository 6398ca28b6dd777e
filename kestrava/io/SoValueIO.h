#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <vector>

#include "kestrava/base/SbBox.h"
#include "kestrava/base/SbColor.h"
#include "kestrava/base/SbColorRGBA.h"
#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbPlane.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbTime.h"
#include "kestrava/base/SbVec.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoOutput.h"

// How a value of each type stands in a scene file. Reading answers false when the stream has failed; the
// value may then be half read. One pair of functions serves the ASCII and the binary form.

template <class T>
concept SoPlainValue = requires(SoInput& in, T& value) {
  { in.read(value) } -> std::same_as<bool>;
};

template <SoPlainValue T>
bool SoReadValue(SoInput& in, T& value) {
  return in.read(value);
}
template <SoPlainValue T>
void SoWriteValue(SoOutput& out, T const& value) {
  out.write(value);
}

/// `count` components, in ASCII separated by one space.
template <class T>
bool SoReadComponents(SoInput& in, T* values, int count) {
  for (int i = 0; i < count; ++i) {
    if (!in.read(values[i])) return false;
  }
  return true;
}
template <class T>
void SoWriteComponents(SoOutput& out, T const* values, int count) {
  for (int i = 0; i < count; ++i) {
    if (i > 0 && !out.isBinary()) out.put(" ");
    out.write(values[i]);
  }
}

template <class T, int N>
bool SoReadValue(SoInput& in, SbVec<T, N>& value) {
  return SoReadComponents(in, &value[0], N);
}
template <class T, int N>
void SoWriteValue(SoOutput& out, SbVec<T, N> const& value) {
  SoWriteComponents(out, &value[0], N);
}

bool SoReadValue(SoInput& in, bool& value);
void SoWriteValue(SoOutput& out, bool const& value);
bool SoReadValue(SoInput& in, SbColor& value);
void SoWriteValue(SoOutput& out, SbColor const& value);
bool SoReadValue(SoInput& in, SbColorRGBA& value);
void SoWriteValue(SoOutput& out, SbColorRGBA const& value);
bool SoReadValue(SoInput& in, SbRotation& value);
void SoWriteValue(SoOutput& out, SbRotation const& value);
bool SoReadValue(SoInput& in, SbMatrix& value);
void SoWriteValue(SoOutput& out, SbMatrix const& value);
bool SoReadValue(SoInput& in, SbPlane& value);
void SoWriteValue(SoOutput& out, SbPlane const& value);
bool SoReadValue(SoInput& in, SbTime& value);
void SoWriteValue(SoOutput& out, SbTime const& value);
bool SoReadValue(SoInput& in, SbImage& value);
void SoWriteValue(SoOutput& out, SbImage const& value);

template <class T, int N>
bool SoReadValue(SoInput& in, SbBox<T, N>& value) {
  SbVec<T, N> low, high;
  if (!SoReadValue(in, low) || !SoReadValue(in, high)) return false;
  value = SbBox<T, N>(low, high);
  return true;
}
template <class T, int N>
void SoWriteValue(SoOutput& out, SbBox<T, N> const& value) {
  SoWriteValue(out, value.getMin());
  if (!out.isBinary()) out.put(" ");
  SoWriteValue(out, value.getMax());
}

static_assert(std::endian::native == std::endian::little, "the binary form is a copy of memory");

/// True for types whose binary form is their memory, so that arrays are copied in one piece.
template <class T>
inline constexpr bool SoIsBlock = std::is_arithmetic_v<T> && !std::is_same_v<T, bool>;
template <class T, int N>
inline constexpr bool SoIsBlock<SbVec<T, N>> = sizeof(SbVec<T, N>) == N * sizeof(T);
template <>
inline constexpr bool SoIsBlock<SbColor> = sizeof(SbColor) == 3 * sizeof(float);
template <>
inline constexpr bool SoIsBlock<SbTime> = sizeof(SbTime) == sizeof(double);
template <>
inline constexpr bool SoIsBlock<SbMatrix> = sizeof(SbMatrix) == 16 * sizeof(float);

/// Binary: `count` values that are padded to their size and copied in one piece.
template <class T>
bool SoReadBlock(SoInput& in, std::vector<T>& values, std::size_t count) {
  constexpr std::size_t STEP = (std::size_t{1} << 20) / sizeof(T);  // memory grows no faster than bytes arrive
  values.clear();
  if (!in.align(alignof(T))) return false;
  for (std::size_t done = 0; done < count;) {
    std::size_t const part = std::min(count - done, std::max(STEP, done));
    values.resize(done + part);
    if (!in.readBytes(values.data() + done, part * sizeof(T))) return false;
    done += part;
  }
  return true;
}
template <class T>
void SoWriteBlock(SoOutput& out, T const* values, std::size_t count) {
  out.align(alignof(T));
  out.writeBytes(values, count * sizeof(T));
}

/// One bare value, or values in brackets, each read by `readOne(in, value)`. Binary: a count, then the values.
template <class T, class ReadOne>
bool SoReadList(SoInput& in, std::vector<T>& values, ReadOne readOne) {
  values.clear();
  auto readNext = [&] {
    T value{};
    if (!readOne(in, value)) return false;
    values.push_back(std::move(value));
    return true;
  };
  if (in.isBinary()) {
    std::uint32_t count = 0;
    if (!in.readCount(count, 1)) return false;
    while (values.size() < count) {
      if (!readNext()) return false;
    }
    return true;
  }
  if (!in.skip('[')) return readNext();
  while (!in.skip(']')) {
    if (!readNext()) return false;
  }
  return true;
}

/// The same for plain values; in binary form arrays of blocks are padded and copied in one piece.
template <class T>
bool SoReadValues(SoInput& in, std::vector<T>& values) {
  if constexpr (SoIsBlock<T>) {
    if (in.isBinary()) {
      std::uint32_t count = 0;
      return in.readCount(count, sizeof(T)) && SoReadBlock(in, values, count);
    }
  }
  return SoReadList(in, values, [](SoInput& from, T& value) { return SoReadValue(from, value); });
}

/// Bytes as hexadecimal numbers of `group` (1 to 4) bytes each, the first byte in front; the last number
/// may be shorter. Binary: the bytes. Their count stands elsewhere.
bool SoReadHexBytes(SoInput& in, std::vector<unsigned char>& bytes, std::size_t count, int group);
void SoWriteHexBytes(SoOutput& out, unsigned char const* bytes, std::size_t count, int group);

/// The values that `write(i)` writes, in brackets; up to `few` of them go in one line. More are wrapped; where
/// `few` is 0 the values are long, and each has a line of its own. ASCII only.
template <class Write>
void SoWriteList(SoOutput& out, std::uint32_t count, Write write, std::uint32_t few) {
  if (count <= few) {
    out.put("[");
    for (std::uint32_t i = 0; i < count; ++i) {
      out.put(i == 0 ? " " : ", ");
      write(i);
    }
    out.put(" ]");
    return;
  }
  out.put("[");
  out.indent(1);
  out.newLine();
  for (std::uint32_t i = 0; i < count; ++i) {
    if (i > 0) {
      constexpr int USUAL_LINE = 90;
      out.put(",");
      if (few > 0 && out.getColumn() < USUAL_LINE) {
        out.put(" ");
      } else {
        out.newLine();
      }
    }
    write(i);
  }
  out.indent(-1);
  out.newLine();
  out.put("]");
}

/// A single value stands bare; others in brackets, as many in a line as have room where they are short.
/// Binary: a count, then the values.
template <class Write>
void SoWriteCounted(SoOutput& out, std::uint32_t count, Write write, std::uint32_t few) {
  if (out.isBinary()) {
    out.writeCount(count);
    for (std::uint32_t i = 0; i < count; ++i) write(i);
  } else if (count == 1) {
    write(0);
  } else {
    SoWriteList(out, count, write, few);
  }
}

template <class T>
void SoWriteValues(SoOutput& out, std::vector<T> const& values) {
  auto const count = static_cast<std::uint32_t>(values.size());
  if constexpr (SoIsBlock<T>) {
    if (out.isBinary()) {
      out.writeCount(count);
      return SoWriteBlock(out, values.data(), count);
    }
  }
  SoWriteCounted(out, count, [&](std::uint32_t i) { SoWriteValue(out, values[i]); },
                 sizeof(T) <= 4 ? 12 : sizeof(T) <= 16 ? 4 : 0);
}

template <class T>
SbString SoValueToText(T const& value) {
  SoOutput out;
  out.setBuffer();
  SoWriteValue(out, value);
  return SbString(out.takeBuffer());
}

template <class T>
bool SoValueFromText(char const* text, T& value) {
  SoInput in;
  in.setBuffer(text);
  return SoReadValue(in, value) && in.atEnd();
}
