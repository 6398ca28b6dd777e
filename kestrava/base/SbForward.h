#pragma once

#include <cstdint>

// Names of the value types, for headers that only pass them by reference.

template <class T, int N> struct SbVec;
template <class T, int N> class SbBox;

using SbVec2f = SbVec<float, 2>;
using SbVec3f = SbVec<float, 3>;
using SbVec4f = SbVec<float, 4>;
using SbVec2d = SbVec<double, 2>;
using SbVec3d = SbVec<double, 3>;
using SbVec4d = SbVec<double, 4>;
using SbVec2s = SbVec<std::int16_t, 2>;
using SbVec3s = SbVec<std::int16_t, 3>;
using SbVec2i32 = SbVec<std::int32_t, 2>;
using SbVec3i32 = SbVec<std::int32_t, 3>;
using SbVec4i32 = SbVec<std::int32_t, 4>;
using SbVec4ub = SbVec<std::uint8_t, 4>;

using SbBox2f = SbBox<float, 2>;
using SbBox2d = SbBox<double, 2>;
using SbBox2s = SbBox<std::int16_t, 2>;
using SbBox2i32 = SbBox<std::int32_t, 2>;
using SbBox3f = SbBox<float, 3>;
using SbBox3d = SbBox<double, 3>;
using SbBox3s = SbBox<std::int16_t, 3>;
using SbBox3i32 = SbBox<std::int32_t, 3>;

struct SbColor;
struct SbColorRGBA;
class SbImage;
class SbLine;
struct SbMatrix;
class SbName;
class SbPlane;
class SbRotation;
struct SbSphere;
class SbString;
struct SbTime;
class SbViewVolume;
class SbViewportRegion;
