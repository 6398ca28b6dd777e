#include "kestrava/render/SoGLShaderText.h"

// Matrices arrive row by row for row vectors, which is what column vectors want column by column. The names
// without "Raw" are there for the shaders of scenes, too: docs/shaders.md lists them.

char const* const SoGLShaderText::BLOCKS = R"(
layout(std140) uniform KsView {
  mat4 ksViewProjectionMatrix;
  mat4 ksViewMatrix;
  mat4 ksProjectionMatrix;
  mat4 ksInverseViewMatrix;
  vec4 ksViewport;      // x, y, width, height
  vec4 ksRawUnproject;  // 1 / scale in x and y, 1 for perspective, 1 / scale in z
  vec4 ksRawShift;      // of x, y, z
};
struct KsLight {
  vec4 position;     // in view space; w: 0 directional, 1 point, 2 spot
  vec4 direction;    // in view space; w: cosine of the cone
  vec4 color;        // w: exponent of the drop towards the edge of the cone
  vec4 attenuation;  // quadratic, linear, constant
};
layout(std140) uniform KsSurroundings {
  KsLight ksLights[32];
  vec4 ksClipPlanes[16];  // in world coordinates
  vec4 ksAmbientLight;
  vec4 ksFogColor;        // w: 1 haze, 2 fog, 3 smoke
  vec4 ksRawCounts;       // lights, clipping planes, visibility of the fog
};
#define ksNumLights int(ksRawCounts.x)
#define ksNumClipPlanes int(ksRawCounts.y)
)";

char const* const SoGLShaderText::SURFACE = R"( KsSurface {
  vec3 normal;
  vec4 color;
#ifdef DEEP_COORDS
  vec3 texCoord;
#else
  vec2 texCoord;
#endif
  flat uint base;  // what shines without light, 8 bits each
#ifdef SPECULAR
  flat uint material;
#endif
#ifdef WIDE_LINES
  noperspective float along;
#ifdef CLIP
  float clip[8];  // built-in distances do not pass through the stage that widens the lines
#endif
#endif
})";

char const* const SoGLShaderText::VERTEX = R"(
layout(location = 0) in vec3 ksPosition;
layout(location = 1) in vec4 ksRawNormal;
layout(location = 2) in vec4 ksRawColor;
layout(location = 3) in uint ksRawMaterial;
layout(location = 4) in vec3 ksTexCoord;
#ifdef PLACED
layout(location = 5) in uint ksRawPlace;
uniform samplerBuffer ksRawPlaces;
mat4 ksModelMatrix;
mat3 ksNormalMatrix;
vec3 ksNormal;
vec4 ksColor;
void ksRawBegin() {
  int place = int(ksRawPlace) * 3;
  vec4 row0 = texelFetch(ksRawPlaces, place), row1 = texelFetch(ksRawPlaces, place + 1);
  vec4 row2 = texelFetch(ksRawPlaces, place + 2);
  ksModelMatrix = transpose(mat4(row0, row1, row2, vec4(0.0, 0.0, 0.0, 1.0)));
  // Cofactors: the inverse transposed but for a factor.
  vec3 c0 = cross(row1.xyz, row2.xyz);
  mat3 cofactors = transpose(mat3(c0, cross(row2.xyz, row0.xyz), cross(row0.xyz, row1.xyz)));
  ksNormalMatrix = mat3(ksViewMatrix) * cofactors * (dot(row0.xyz, c0) < 0.0 ? -1.0 : 1.0);
  ksNormal = ksRawNormal.xyz;
  ksColor = ksRawColor.abgr;
}
#elif defined(INSTANCED)
layout(location = 5) in vec4 ksRawRow0;
layout(location = 6) in vec4 ksRawRow1;
layout(location = 7) in vec4 ksRawRow2;
#endif
#ifdef CLIP
#ifdef WIDE_LINES
#define ksRawClip s.clip
#else
out float gl_ClipDistance[8];
#define ksRawClip gl_ClipDistance
#endif
#endif
uniform float ksPointSize;
uniform samplerBuffer ksRawMaterials;  // a material: emissive and shininess, ambient, specular
void ksTransform(vec3 position, vec3 normal) {
#ifdef PLACED
  vec3 world = (ksModelMatrix * vec4(position, 1.0)).xyz;
  s.normal = ksNormalMatrix * normal;
#elif defined(INSTANCED)
  vec4 p = vec4(position, 1.0);
  vec3 world = vec3(dot(ksRawRow0, p), dot(ksRawRow1, p), dot(ksRawRow2, p));
  // Cofactors: the inverse transposed but for a factor.
  s.normal = mat3(ksViewMatrix) * vec3(dot(cross(ksRawRow1.xyz, ksRawRow2.xyz), normal),
                                       dot(cross(ksRawRow2.xyz, ksRawRow0.xyz), normal),
                                       dot(cross(ksRawRow0.xyz, ksRawRow1.xyz), normal));
#else
  vec3 world = position;
  s.normal = mat3(ksViewMatrix) * normal;
#endif
  gl_Position = ksViewProjectionMatrix * vec4(world, 1.0);
  gl_PointSize = ksPointSize;
#ifdef PLACED
  s.color = ksColor;
#else
  s.color = ksRawColor.abgr;
#endif
#ifdef DEEP_COORDS
  s.texCoord = ksTexCoord;
#else
  s.texCoord = ksTexCoord.xy;
#endif
#ifdef LIT
  int row = int(ksRawMaterial) * 3;
  vec3 base = texelFetch(ksRawMaterials, row).rgb + texelFetch(ksRawMaterials, row + 1).rgb * ksAmbientLight.rgb;
  uvec3 bytes = uvec3(clamp(base, 0.0, 1.0) * 255.0 + 0.5);
  s.base = bytes.r << 16 | bytes.g << 8 | bytes.b;
#else
  s.base = 0u;
#endif
#ifdef SPECULAR
  s.material = ksRawMaterial;
#endif
#ifdef WIDE_LINES
  s.along = 0.0;
#endif
#ifdef ENVIRONMENT_MAP
  vec3 eye = (ksViewMatrix * vec4(world, 1.0)).xyz;
  vec3 r = reflect(ksRawUnproject.z > 0.0 ? normalize(eye) : vec3(0.0, 0.0, -1.0), normalize(s.normal));
  r.z += 1.0;
  s.texCoord.xy = r.xy / (2.0 * max(length(r), 1e-6)) + 0.5;
#endif
#ifdef ksRawClip
  for (int i = 0; i < 8; ++i) {
    ksRawClip[i] = i < ksNumClipPlanes ? dot(ksClipPlanes[i].xyz, world) - ksClipPlanes[i].w : 1.0;
  }
#endif
}
)";

char const* const SoGLShaderText::VERTEX_MAIN = R"(
void main() {
#ifdef PLACED
  ksRawBegin();
#endif
  ksTransform(ksPosition, ksRawNormal.xyz);
}
)";

char const* const SoGLShaderText::VERTEX_CALL = R"(
#undef main
void main() {
  ksRawBegin();
  gl_PointSize = ksPointSize;
  ksRawMain();
}
)";

char const* const SoGLShaderText::GEOMETRY = R"(
#define ksCopyCorner(i) (gl_Position = gl_in[i].gl_Position, s.normal = g[i].normal, s.color = g[i].color, \
  s.texCoord = g[i].texCoord, s.base = g[i].base, s.material = g[i].material)
)";

char const* const SoGLShaderText::WIDEN_LINES = R"(
layout(lines) in;
layout(triangle_strip, max_vertices = 4) out;
uniform float ksRawLineWidth;
void corner(int end, vec4 p, vec2 offset, float along) {
  gl_Position = p + vec4(offset * 2.0 / ksViewport.zw * p.w, 0.0, 0.0);
  s.normal = g[end].normal;
  s.color = g[end].color;
  s.texCoord = g[end].texCoord;
  s.base = g[end].base;
#ifdef SPECULAR
  s.material = g[end].material;
#endif
  s.along = along;
#ifdef CLIP
  for (int i = 0; i < 8; ++i) s.clip[i] = g[end].clip[i];
#endif
  EmitVertex();
}
void main() {
  vec4 a = gl_in[0].gl_Position, b = gl_in[1].gl_Position;
  // Behind the near plane there is no place on the screen.
  float da = a.z + a.w, db = b.z + b.w;
  if (da < 0.0 && db < 0.0) return;
  if (da < 0.0) a = mix(a, b, da / (da - db));
  if (db < 0.0) b = mix(b, a, db / (db - da));
  vec2 pa = a.xy / a.w * ksViewport.zw * 0.5, pb = b.xy / b.w * ksViewport.zw * 0.5;
  float size = distance(pa, pb);
  if (size == 0.0) return;
  vec2 across = vec2(pa.y - pb.y, pb.x - pa.x) / size * ksRawLineWidth * 0.5;
  corner(0, a, across, 0.0);
  corner(0, a, -across, 0.0);
  corner(1, b, across, size);
  corner(1, b, -across, size);
  EndPrimitive();
}
)";

char const* const SoGLShaderText::FRAGMENT = R"(
#ifdef TEXTURE
#ifdef SOLID_TEXTURE
uniform sampler3D ksTexture;
#define ksRawCoord(t) (t).xyz
#else
uniform sampler2D ksTexture;
#define ksRawCoord(t) (t).xy
#endif
#endif
uniform samplerBuffer ksRawMaterials;
uniform int ksRawTextureModel;
uniform vec3 ksRawBlendColor;
uniform int ksRawLinePattern;

// From the eye towards the pixel, of any length.
vec3 ksRawRay() {
  vec2 ndc = (gl_FragCoord.xy - ksViewport.xy) / ksViewport.zw * 2.0 - 1.0;
  return vec3((ndc + ksRawShift.xy) * ksRawUnproject.xy * ksRawUnproject.z, -1.0);
}

vec3 ksRawEyePosition() {
  if (ksRawUnproject.z > 0.0) return ksRawRay() / gl_FragCoord.w;
  vec2 ndc = (gl_FragCoord.xy - ksViewport.xy) / ksViewport.zw * 2.0 - 1.0;
  return vec3((ndc - ksRawShift.xy) * ksRawUnproject.xy, (gl_FragCoord.z * 2.0 - 1.0 - ksRawShift.z) * ksRawUnproject.w);
}

vec3 ksRawFacing() {
  vec3 n = normalize(s.normal);
#ifdef BOTH_SIDES
#ifdef FACING
  if (!gl_FrontFacing) n = -n;
#else
  if (dot(n, ksRawRay()) > 0.0) n = -n;
#endif
#endif
  return n;
}

void ksRawCut() {
#ifdef CUT_BY_PIXEL
  vec3 world = (ksInverseViewMatrix * vec4(ksRawEyePosition(), 1.0)).xyz;
  for (int i = CUT_BY_PIXEL; i < ksNumClipPlanes; ++i) {
    if (dot(ksClipPlanes[i].xyz, world) < ksClipPlanes[i].w) discard;
  }
#endif
}

// Instead of blending: of four by four pixels so many as the surface is opaque.
void ksRawScreenDoor(float alpha) {
#ifdef SCREEN_DOOR
  const int order[16] = int[](0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5);
  ivec2 at = ivec2(gl_FragCoord.xy) & 3;
  if (alpha * 16.0 <= float(order[at.y * 4 + at.x]) + 0.5) discard;
#endif
}

vec3 ksRawGlossy = vec3(0.0);

#ifdef LIT
vec3 ksRawShade(vec3 diffuse, vec3 n) {
  vec3 sum = vec3((uvec3(s.base) >> uvec3(16, 8, 0)) & 255u) / 255.0;
#ifdef POSITIONAL
  vec3 eye = ksRawEyePosition();
#endif
#ifdef SPECULAR
  vec3 v = -normalize(ksRawRay());
  float shininess = max(texelFetch(ksRawMaterials, int(s.material) * 3).a * 128.0, 1e-3);
  vec3 specular = texelFetch(ksRawMaterials, int(s.material) * 3 + 2).rgb;
#endif
  for (int i = 0; i < NUM_LIGHTS; ++i) {
    vec3 l = -ksLights[i].direction.xyz;
    vec3 light = ksLights[i].color.rgb;
#ifdef POSITIONAL
    if (ksLights[i].position.w > 0.0) {
      vec3 way = ksLights[i].position.xyz - eye;
      float d = length(way);
      vec3 axis = -l;
      l = way / max(d, 1e-20);
      light /= max(dot(ksLights[i].attenuation.xyz, vec3(d * d, d, 1.0)), 1e-6);
      if (ksLights[i].position.w > 1.5) {
        float c = dot(-l, axis);
        light *= c >= ksLights[i].direction.w ? pow(max(c, 0.0), ksLights[i].color.w) : 0.0;
      }
    }
#endif
    float facing = max(dot(n, l), 0.0);
    sum += diffuse * light * facing;
#ifdef SPECULAR
    if (facing > 0.0) ksRawGlossy += specular * light * pow(max(dot(n, normalize(l + v)), 0.0), shininess);
#endif
  }
  return sum;
}
#endif

vec4 ksTextured(vec4 color) {
#ifdef TEXTURE
  vec4 texel = texture(ksTexture, ksRawCoord(s.texCoord));
  if (ksRawTextureModel == 0) {
    color *= texel;
  } else if (ksRawTextureModel == 1) {
    color.rgb = mix(color.rgb, texel.rgb, texel.a);
  } else {
    color = vec4(mix(color.rgb, ksRawBlendColor, texel.rgb), color.a * texel.a);
  }
#ifdef CUT_OUT
  if (color.a < 0.5) discard;
  color.a = 1.0;
#endif
#endif
  return color;
}

vec4 ksFogged(vec4 color) {
#ifdef FOG
  float far = length(ksRawEyePosition()) / max(ksRawCounts.z, 1e-20);
  float clear = ksFogColor.w < 1.5 ? 1.0 - far : ksFogColor.w < 2.5 ? exp(-5.5 * far) : exp(-5.5 * far * far);
  color.rgb = mix(ksFogColor.rgb, color.rgb, clamp(clear, 0.0, 1.0));
#endif
  return color;
}

#ifdef OWN_FRAGMENT
vec3 ksNormal, ksEyePosition, ksWorldPosition;
#define ksColor s.color
#define ksTexCoord s.texCoord
vec4 ksLit(vec4 color, vec3 normal) {
#ifdef LIT
  ksRawGlossy = vec3(0.0);
  vec3 sum = ksRawShade(color.rgb, normal);
  return vec4(sum + ksRawGlossy, color.a);
#else
  return color;
#endif
}
vec4 ksLit(vec4 color) { return ksLit(color, ksNormal); }
float ksShininess() { return texelFetch(ksRawMaterials, int(s.material) * 3).a; }
vec3 ksEmissive() { return texelFetch(ksRawMaterials, int(s.material) * 3).rgb; }
vec3 ksAmbient() { return texelFetch(ksRawMaterials, int(s.material) * 3 + 1).rgb; }
vec3 ksSpecular() { return texelFetch(ksRawMaterials, int(s.material) * 3 + 2).rgb; }
#endif

vec4 ksShade() {
  vec4 color = s.color;
#ifdef LIT
  color.rgb = ksRawShade(color.rgb, ksRawFacing());
#endif
  color = ksTextured(color);
  color.rgb += ksRawGlossy;
  return ksFogged(color);
}

void ksRawLine() {
#ifdef WIDE_LINES
  if (((ksRawLinePattern >> (int(s.along) & 15)) & 1) == 0) discard;
#ifdef CLIP
  for (int i = 0; i < 8; ++i) {
    if (s.clip[i] < 0.0) discard;
  }
#endif
#endif
}
)";

char const* const SoGLShaderText::FRAGMENT_MAIN = R"(
out vec4 ksRawResult;
void main() {
  ksRawLine();
  ksRawCut();
  vec4 color = ksShade();
  ksRawScreenDoor(color.a);
#ifdef FULL_ALPHA
  color.a = 1.0;
#endif
  ksRawResult = vec4(min(color.rgb, vec3(1.0)), color.a);
}
)";

char const* const SoGLShaderText::FRAGMENT_CALL = R"(
#undef main
void main() {
  ksRawLine();
  ksRawCut();
  ksRawScreenDoor(s.color.a);
  ksEyePosition = ksRawEyePosition();
  ksWorldPosition = (ksInverseViewMatrix * vec4(ksEyePosition, 1.0)).xyz;
  ksNormal = ksRawFacing();
  ksRawMain();
}
)";
