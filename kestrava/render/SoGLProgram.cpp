#include "kestrava/render/SoGLProgram.h"

#include <epoxy/gl.h>

#include <utility>
#include <vector>

#include "kestrava/base/SoError.h"

namespace {

// Shared by all stages. Matrices arrive row by row for row vectors, which is what column vectors want column
// by column.
char const* const BLOCKS = R"(
layout(std140) uniform View {
  mat4 viewProjection;
  mat4 view;
  vec4 viewport;   // x, y, width, height
  vec4 unproject;  // 1 / scale in x and y, 1 for perspective, 1 / scale in z
  vec4 shift;      // of x, y, z
};
struct Light {
  vec4 position;     // in view space; w: 0 directional, 1 point, 2 spot
  vec4 direction;    // in view space; w: cosine of the cone
  vec4 color;        // w: exponent of the drop towards the edge of the cone
  vec4 attenuation;  // quadratic, linear, constant
};
layout(std140) uniform Surroundings {
  Light lights[8];
  vec4 clipPlanes[6];  // in world coordinates
  vec4 ambient;
  vec4 fogColor;  // w: 1 haze, 2 fog, 3 smoke
  vec4 counts;    // lights, clipping planes, visibility of the fog
};
)";

char const* const SURFACE = R"( Surface {
  vec3 normal;
  vec4 color;
  vec2 texCoord;
  flat uint base;  // what shines without light, 8 bits each
#ifdef SPECULAR
  flat uint material;
#endif
#ifdef WIDE_LINES
  noperspective float along;
#ifdef CLIP
  float clip[6];  // built-in distances do not pass through the stage that widens the lines
#endif
#endif
})";

char const* const VERTEX = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 normal;
layout(location = 2) in vec4 color;
layout(location = 3) in uint material;
layout(location = 4) in vec2 texCoord;
#ifdef INSTANCED
layout(location = 5) in vec4 row0;
layout(location = 6) in vec4 row1;
layout(location = 7) in vec4 row2;
#endif
#ifdef CLIP
#ifdef WIDE_LINES
#define clipDistance s.clip
#else
out float gl_ClipDistance[6];
#define clipDistance gl_ClipDistance
#endif
#endif
uniform float pointSize;
uniform samplerBuffer materials;  // a material: emissive and shininess, ambient, specular
void main() {
#ifdef INSTANCED
  vec4 p = vec4(position, 1.0);
  vec3 world = vec3(dot(row0, p), dot(row1, p), dot(row2, p));
  // Cofactors: the inverse transposed but for a factor.
  vec3 n = vec3(dot(cross(row1.xyz, row2.xyz), normal.xyz), dot(cross(row2.xyz, row0.xyz), normal.xyz),
                dot(cross(row0.xyz, row1.xyz), normal.xyz));
#else
  vec3 world = position;
  vec3 n = normal.xyz;
#endif
  gl_Position = viewProjection * vec4(world, 1.0);
  gl_PointSize = pointSize;
  s.normal = mat3(view) * n;
  s.color = color.abgr;
  s.texCoord = texCoord;
#ifdef LIT
  vec3 base = texelFetch(materials, int(material) * 3).rgb + texelFetch(materials, int(material) * 3 + 1).rgb * ambient.rgb;
  uvec3 bytes = uvec3(clamp(base, 0.0, 1.0) * 255.0 + 0.5);
  s.base = bytes.r << 16 | bytes.g << 8 | bytes.b;
#else
  s.base = 0u;
#endif
#ifdef SPECULAR
  s.material = material;
#endif
#ifdef WIDE_LINES
  s.along = 0.0;
#endif
#ifdef ENVIRONMENT_MAP
  vec3 eye = (view * vec4(world, 1.0)).xyz;
  vec3 r = reflect(unproject.z > 0.0 ? normalize(eye) : vec3(0.0, 0.0, -1.0), normalize(s.normal));
  r.z += 1.0;
  s.texCoord = r.xy / (2.0 * max(length(r), 1e-6)) + 0.5;
#endif
#ifdef CLIP
  for (int i = 0; i < 6; ++i) {
    clipDistance[i] = i < int(counts.y) ? dot(clipPlanes[i].xyz, world) - clipPlanes[i].w : 1.0;
  }
#endif
}
)";

char const* const GEOMETRY = R"(
layout(lines) in;
layout(triangle_strip, max_vertices = 4) out;
uniform float lineWidth;
void corner(int end, vec4 p, vec2 offset, float along) {
  gl_Position = p + vec4(offset * 2.0 / viewport.zw * p.w, 0.0, 0.0);
  s.normal = g[end].normal;
  s.color = g[end].color;
  s.texCoord = g[end].texCoord;
  s.base = g[end].base;
#ifdef SPECULAR
  s.material = g[end].material;
#endif
  s.along = along;
#ifdef CLIP
  for (int i = 0; i < 6; ++i) s.clip[i] = g[end].clip[i];
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
  vec2 pa = a.xy / a.w * viewport.zw * 0.5, pb = b.xy / b.w * viewport.zw * 0.5;
  float size = distance(pa, pb);
  if (size == 0.0) return;
  vec2 across = vec2(pa.y - pb.y, pb.x - pa.x) / size * lineWidth * 0.5;
  corner(0, a, across, 0.0);
  corner(0, a, -across, 0.0);
  corner(1, b, across, size);
  corner(1, b, -across, size);
  EndPrimitive();
}
)";

char const* const FRAGMENT = R"(
uniform sampler2D image;
uniform samplerBuffer materials;
uniform int textureModel;
uniform vec3 blendColor;
uniform int linePattern;
out vec4 result;

// From the eye towards the pixel, of any length.
vec3 eyeRay() {
  vec2 ndc = (gl_FragCoord.xy - viewport.xy) / viewport.zw * 2.0 - 1.0;
  return vec3((ndc + shift.xy) * unproject.xy * unproject.z, -1.0);
}

vec3 eyePosition() {
  if (unproject.z > 0.0) return eyeRay() / gl_FragCoord.w;
  vec2 ndc = (gl_FragCoord.xy - viewport.xy) / viewport.zw * 2.0 - 1.0;
  return vec3((ndc - shift.xy) * unproject.xy, (gl_FragCoord.z * 2.0 - 1.0 - shift.z) * unproject.w);
}

vec3 glossy = vec3(0.0);

#ifdef LIT
vec3 shade(vec3 diffuse) {
  vec3 sum = vec3((uvec3(s.base) >> uvec3(16, 8, 0)) & 255u) / 255.0;
  vec3 n = normalize(s.normal);
#ifdef BOTH_SIDES
#ifdef FACING
  if (!gl_FrontFacing) n = -n;
#else
  if (dot(n, eyeRay()) > 0.0) n = -n;
#endif
#endif
#ifdef POSITIONAL
  vec3 eye = eyePosition();
#endif
#ifdef SPECULAR
  vec3 v = -normalize(eyeRay());
  float shininess = max(texelFetch(materials, int(s.material) * 3).a * 128.0, 1e-3);
  vec3 specular = texelFetch(materials, int(s.material) * 3 + 2).rgb;
#endif
  for (int i = 0; i < NUM_LIGHTS; ++i) {
    vec3 l = -lights[i].direction.xyz;
    vec3 light = lights[i].color.rgb;
#ifdef POSITIONAL
    if (lights[i].position.w > 0.0) {
      vec3 way = lights[i].position.xyz - eye;
      float d = length(way);
      vec3 axis = -l;
      l = way / max(d, 1e-20);
      light /= max(dot(lights[i].attenuation.xyz, vec3(d * d, d, 1.0)), 1e-6);
      if (lights[i].position.w > 1.5) {
        float c = dot(-l, axis);
        light *= c >= lights[i].direction.w ? pow(max(c, 0.0), lights[i].color.w) : 0.0;
      }
    }
#endif
    float facing = max(dot(n, l), 0.0);
    sum += diffuse * light * facing;
#ifdef SPECULAR
    if (facing > 0.0) glossy += specular * light * pow(max(dot(n, normalize(l + v)), 0.0), shininess);
#endif
  }
  return sum;
}
#endif

void main() {
#ifdef WIDE_LINES
  if (((linePattern >> (int(s.along) & 15)) & 1) == 0) discard;
#ifdef CLIP
  for (int i = 0; i < 6; ++i) {
    if (s.clip[i] < 0.0) discard;
  }
#endif
#endif
  vec4 color = s.color;
#ifdef LIT
  color.rgb = shade(color.rgb);
#endif
#ifdef TEXTURE
  vec4 texel = texture(image, s.texCoord);
  if (textureModel == 0) {
    color *= texel;
  } else if (textureModel == 1) {
    color.rgb = mix(color.rgb, texel.rgb, texel.a);
  } else {
    color = vec4(mix(color.rgb, blendColor, texel.rgb), color.a * texel.a);
  }
#ifdef CUT_OUT
  if (color.a < 0.5) discard;
  color.a = 1.0;
#endif
#endif
  color.rgb += glossy;
#ifdef FOG
  float far = length(eyePosition()) / max(counts.z, 1e-20);
  float clear = fogColor.w < 1.5 ? 1.0 - far : fogColor.w < 2.5 ? exp(-5.5 * far) : exp(-5.5 * far * far);
  color.rgb = mix(fogColor.rgb, color.rgb, clamp(clear, 0.0, 1.0));
#endif
  result = vec4(min(color.rgb, vec3(1.0)), color.a);
}
)";

std::string header(unsigned features) {
  static std::pair<unsigned, char const*> const names[] = {
      {SoGLProgram::LIT, "LIT"},           {SoGLProgram::BOTH_SIDES, "BOTH_SIDES"},
      {SoGLProgram::FACING, "FACING"},     {SoGLProgram::TEXTURE, "TEXTURE"},
      {SoGLProgram::CLIP, "CLIP"},         {SoGLProgram::ENVIRONMENT_MAP, "ENVIRONMENT_MAP"},
      {SoGLProgram::FOG, "FOG"},           {SoGLProgram::WIDE_LINES, "WIDE_LINES"},
      {SoGLProgram::CUT_OUT, "CUT_OUT"},   {SoGLProgram::INSTANCED, "INSTANCED"},
      {SoGLProgram::SPECULAR, "SPECULAR"}, {SoGLProgram::POSITIONAL, "POSITIONAL"}};
  std::string text = "#version 330 core\n";
  for (auto const& [feature, name] : names) {
    if (features & feature) text += std::string("#define ") + name + "\n";
  }
  text += "#define NUM_LIGHTS " + std::to_string(features >> 16) + "\n";
  return text + BLOCKS;
}

unsigned compile(char const* what, unsigned kind, std::string const& source) {
  unsigned const shader = glCreateShader(kind);
  char const* const text = source.c_str();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  int compiled = 0;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
  if (compiled) return shader;
  char log[2000] = "";
  glGetShaderInfoLog(shader, sizeof log, nullptr, log);
  SoDebugError::post("SoGLProgram", "a shader of the %s does not compile: %s", what, log);
  glDeleteShader(shader);
  return 0;
}

}  // namespace

unsigned SoGLProgram::build(char const* what, std::string const& vertex, std::string const& geometry,
                            std::string const& fragment) {
  std::pair<unsigned, std::string const*> const stages[] = {
      {GL_VERTEX_SHADER, &vertex}, {GL_GEOMETRY_SHADER, &geometry}, {GL_FRAGMENT_SHADER, &fragment}};
  unsigned const program = glCreateProgram();
  std::vector<unsigned> shaders;
  bool good = true;
  for (auto const& [kind, source] : stages) {
    if (source->empty()) continue;
    unsigned const shader = compile(what, kind, *source);
    if (!shader) good = false;
    if (shader) glAttachShader(program, shader);
    shaders.push_back(shader);
  }
  int linked = 0;
  if (good) {
    glLinkProgram(program);
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (!linked) {
      char log[2000] = "";
      glGetProgramInfoLog(program, sizeof log, nullptr, log);
      SoDebugError::post("SoGLProgram", "the program of the %s does not link: %s", what, log);
    }
  }
  for (unsigned shader : shaders) glDeleteShader(shader);
  if (linked) return program;
  glDeleteProgram(program);
  return 0;
}

SoGLProgram SoGLProgram::make(unsigned features) {
  std::string const start = header(features), surface = SURFACE;
  std::string geometry;
  if (features & WIDE_LINES) geometry = start + "in" + surface + " g[2];\nout" + surface + " s;\n" + GEOMETRY;
  SoGLProgram program;
  program.m_name = build("scene", start + "out" + surface + " s;\n" + VERTEX, geometry,
                         start + "in" + surface + " s;\n" + FRAGMENT);
  if (!program.m_name) return program;
  unsigned const name = program.m_name;
  static char const* const uniforms[NUM_UNIFORMS] = {"textureModel", "blendColor", "lineWidth", "linePattern",
                                                     "pointSize"};
  for (int i = 0; i < NUM_UNIFORMS; ++i) program.m_uniforms[i] = glGetUniformLocation(name, uniforms[i]);
  std::pair<char const*, unsigned> const blocks[] = {{"View", VIEW_BLOCK}, {"Surroundings", SURROUNDINGS_BLOCK}};
  for (auto const& [block, binding] : blocks) {
    unsigned const index = glGetUniformBlockIndex(name, block);
    if (index != GL_INVALID_INDEX) glUniformBlockBinding(name, index, binding);
  }
  int before = 0;
  glGetIntegerv(GL_CURRENT_PROGRAM, &before);
  glUseProgram(name);
  glUniform1i(glGetUniformLocation(name, "image"), IMAGE_UNIT);
  glUniform1i(glGetUniformLocation(name, "materials"), MATERIAL_UNIT);
  glUseProgram(static_cast<unsigned>(before));
  return program;
}
