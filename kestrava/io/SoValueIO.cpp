#include "kestrava/io/SoValueIO.h"

#include <algorithm>

bool SoReadValue(SoInput& in, bool& value) {
  if (in.isBinary()) {
    unsigned char byte = 0;
    if (!in.readBytes(&byte, 1)) return false;
    value = byte != 0;
    return true;
  }
  int const next = in.peek();
  if (next == '0' || next == '1') {
    std::int32_t number = 0;
    if (!in.read(number)) return false;
    value = number == 1;
    return number == 0 || number == 1 || in.failText("expected TRUE or FALSE, found " + std::to_string(number));
  }
  for (bool const candidate : {true, false}) {
    if (!in.skipWord(candidate ? "TRUE" : "FALSE")) continue;
    value = candidate;
    return true;
  }
  return in.fail("TRUE or FALSE");
}

void SoWriteValue(SoOutput& out, bool const& value) {
  if (out.isBinary()) {
    out.put({value ? "\1" : "\0", 1});
  } else {
    out.put(value ? "TRUE" : "FALSE");
  }
}

bool SoReadValue(SoInput& in, SbColor& value) { return SoReadComponents(in, &value[0], 3); }
void SoWriteValue(SoOutput& out, SbColor const& value) { SoWriteComponents(out, &value[0], 3); }
bool SoReadValue(SoInput& in, SbColorRGBA& value) { return SoReadComponents(in, &value[0], 4); }
void SoWriteValue(SoOutput& out, SbColorRGBA const& value) { SoWriteComponents(out, &value[0], 4); }

bool SoReadValue(SoInput& in, SbRotation& value) {
  float v[4];
  if (!SoReadComponents(in, v, 4)) return false;
  value.setValue(SbVec3f(v[0], v[1], v[2]), v[3]);
  return true;
}

void SoWriteValue(SoOutput& out, SbRotation const& value) {
  SbVec3f const& axis = value.getAxis();
  float const v[] = {axis[0], axis[1], axis[2], value.getAngle()};
  SoWriteComponents(out, v, 4);
}

bool SoReadValue(SoInput& in, SbMatrix& value) { return SoReadComponents(in, value[0], 16); }
void SoWriteValue(SoOutput& out, SbMatrix const& value) { SoWriteComponents(out, value[0], 16); }

bool SoReadValue(SoInput& in, SbPlane& value) {
  float v[4];
  if (!SoReadComponents(in, v, 4)) return false;
  value = SbPlane(SbVec3f(v[0], v[1], v[2]), v[3]);
  return true;
}

void SoWriteValue(SoOutput& out, SbPlane const& value) {
  SbVec3f const& normal = value.getNormal();
  float const v[] = {normal[0], normal[1], normal[2], value.getDistanceFromOrigin()};
  SoWriteComponents(out, v, 4);
}

bool SoReadValue(SoInput& in, SbTime& value) { return in.read(value.seconds); }
void SoWriteValue(SoOutput& out, SbTime const& value) { out.write(value.seconds); }

bool SoReadHexBytes(SoInput& in, std::vector<unsigned char>& bytes, std::size_t count, int group) {
  constexpr std::size_t FIRST = 1 << 16;  // memory grows no faster than bytes arrive
  bytes.clear();
  bytes.reserve(std::min(count, FIRST));
  if (in.isBinary()) {
    while (bytes.size() < count) {
      std::size_t const done = bytes.size(), part = std::min(count - done, std::max(done, FIRST));
      bytes.resize(done + part);
      if (!in.readBytes(bytes.data() + done, part)) return false;
    }
    return true;
  }
  while (bytes.size() < count) {
    int const length = static_cast<int>(std::min(count - bytes.size(), static_cast<std::size_t>(group)));
    std::uint32_t number = 0;
    if (!in.read(number)) return false;
    if (length < 4 && number >> (8 * length)) {
      return in.failText("the number " + std::to_string(number) + " does not fit in " + std::to_string(length) +
                         (length == 1 ? " byte" : " bytes"));
    }
    for (int shift = 8 * (length - 1); shift >= 0; shift -= 8) {
      bytes.push_back(static_cast<unsigned char>(number >> shift));
    }
  }
  return true;
}

void SoWriteHexBytes(SoOutput& out, unsigned char const* bytes, std::size_t count, int group) {
  if (out.isBinary()) return out.writeBytes(bytes, count);
  for (std::size_t done = 0; done < count;) {
    char text[2 + 2 * 4] = {'0', 'x'};
    char* c = text + 2;
    for (int i = 0; i < group && done < count; ++i, ++done) {
      *c++ = "0123456789abcdef"[bytes[done] >> 4];
      *c++ = "0123456789abcdef"[bytes[done] & 15];
    }
    constexpr int LONGEST_LINE = 100;
    if (out.getColumn() + (c - text) >= LONGEST_LINE) {
      out.newLine();
    } else {
      out.put(" ");
    }
    out.put({text, c});
  }
}

// An image with a depth has the word DEPTH and the number of slices in front; in binary form a count of
// slices always comes first.
bool SoReadValue(SoInput& in, SbImage& value) {
  SbVec3i32 size;
  std::int32_t components = 0;
  if ((in.isBinary() || in.skipWord("DEPTH")) && !in.read(size[2])) return false;
  if (!in.read(size[0]) || !in.read(size[1]) || !in.read(components)) return false;
  value = SbImage();
  if (size[0] == 0 && size[1] == 0) return true;
  std::size_t const count = SbImage::countBytes(size, components);
  if (count == 0) {
    return in.failText("an image of " + std::to_string(size[0]) + " x " + std::to_string(size[1]) + " pixels and " +
                       std::to_string(components) + " components is not possible");
  }
  SbImage::Bytes bytes;
  if (!SoReadHexBytes(in, bytes, count, components)) return false;
  value = SbImage(size, components, std::move(bytes));
  return true;
}

void SoWriteValue(SoOutput& out, SbImage const& value) {
  SbVec3i32 const size = value.getSize();
  int const components = value.getNumComponents();
  if (out.isBinary()) {
    for (int n : {size[2], size[0], size[1], components}) out.write(n);
    out.writeBytes(value.getBytes(), value.getNumBytes());
    return;
  }
  if (size[2] > 0) {
    out.put("DEPTH ");
    out.write(size[2]);
    out.put(" ");
  }
  int const head[] = {size[0], size[1], components};
  SoWriteComponents(out, head, 3);
  SoWriteHexBytes(out, value.getBytes(), value.getNumBytes(), components);
}
