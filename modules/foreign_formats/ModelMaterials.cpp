#include "modules/foreign_formats/ModelMaterials.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SoError.h"
#include "kestrava/io/SoImageCache.h"
#include "kestrava/nodes/SoLightModel.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTexture2Transform.h"
#include "modules/foreign_formats/ModelFiles.h"

namespace {

constexpr float LARGEST_EXPONENT = 128; // of a highlight: shininess 1

float unit(float value) { return value > 0 ? std::min(value, 1.0f) : 0.0f; }
SbColor fromLinear(SbColor const& c) {
  return SbColor(::fromLinear(c[0]), ::fromLinear(c[1]), ::fromLinear(c[2]));
}
SbColor toColor(aiColor4D const& c) { return SbColor(unit(c.r), unit(c.g), unit(c.b)); }
SbColor times(SbColor const& c, float f) { return SbColor(unit(c[0] * f), unit(c[1] * f), unit(c[2] * f)); }
bool isBlack(SbColor const& c) { return c[0] == 0 && c[1] == 0 && c[2] == 0; }

bool getColor(aiMaterial const& material, char const* key, SbColor& color, float* alpha = nullptr) {
  aiColor4D value(0, 0, 0, 1);
  if (material.Get(key, 0, 0, value) != aiReturn_SUCCESS) return false;
  color = toColor(value);
  if (alpha) *alpha = unit(value.a);
  return true;
}

float getNumber(aiMaterial const& material, char const* key, float otherwise) {
  float value = otherwise;
  return material.Get(key, 0, 0, value) == aiReturn_SUCCESS && std::isfinite(value) ? value : otherwise;
}
int getInteger(aiMaterial const& material, char const* key, int otherwise) {
  int value = otherwise;
  return material.Get(key, 0, 0, value) == aiReturn_SUCCESS ? value : otherwise;
}

/// A metallic and rough surface in terms of a highlight. The exponent is the one whose lobe is as wide; the
/// strength makes the lobe reflect as much light in all.
void setFromRoughness(SoMaterial& node, SbColor const& base, float metallic, float roughness) {
  float const alpha = std::max(roughness * roughness, 0.02f);
  float const exponent = std::clamp(2 / (alpha * alpha) - 2, 1.0f, LARGEST_EXPONENT);
  float const strength = (exponent + 8) / 8;
  constexpr float DIELECTRIC = 0.04f;
  SbColor specular;
  for (int i = 0; i < 3; ++i) specular[i] = unit(strength * (DIELECTRIC + (base[i] - DIELECTRIC) * metallic));
  // With no surroundings to reflect a metal would be black: it keeps half of its colour.
  node.diffuseColor = times(base, 1 - 0.5f * metallic);
  node.specularColor = specular;
  node.shininess = exponent / LARGEST_EXPONENT;
}

bool hasTexture(aiMaterial const& material, aiTextureType type) { return material.GetTextureCount(type) > 0; }

/// Where an image says which parts are metal, half of the surface counts as such.
float metalness(aiMaterial const& material, float factor) {
  bool const isMixed =
      hasTexture(material, aiTextureType_METALNESS) || hasTexture(material, aiTextureType_UNKNOWN);
  return isMixed ? factor / 2 : factor;
}

void setFromHighlight(SoMaterial& node, aiMaterial const& material, SbColor const& diffuse) {
  node.diffuseColor = diffuse;
  float const exponent = getNumber(material, "$mat.shininess", 0);
  int const model = getInteger(material, "$mat.shadingm", aiShadingMode_Phong);
  SbColor specular;
  // Without an exponent, or with next to none, a highlight would cover everything.
  if (exponent < 1 || model == aiShadingMode_Gouraud || model == aiShadingMode_Flat) return;
  if (!getColor(material, "$clr.specular", specular)) return;
  node.specularColor = times(specular, getNumber(material, "$mat.shinpercent", 1));
  node.shininess = unit(exponent / LARGEST_EXPONENT);
}

SbImage imageOf(aiTexture const& texture, std::string& fault) {
  SbImage image;
  if (texture.mHeight == 0) {
    auto const* bytes = reinterpret_cast<unsigned char const*>(texture.pcData);
    fault = SbImageReader::read(std::vector<unsigned char>(bytes, bytes + texture.mWidth), image);
    return image;
  }
  SbVec2i32 const size(static_cast<int>(texture.mWidth), static_cast<int>(texture.mHeight));
  std::size_t const count = SbImage::countBytes(SbVec3i32(size[0], size[1], 0), 4);
  SbImage::Bytes pixels(count);
  for (std::size_t i = 0; i < count / 4; ++i) {
    std::size_t const row = i / texture.mWidth, fromBottom = texture.mHeight - 1 - row;
    aiTexel const& texel = texture.pcData[i];
    unsigned char const rgba[] = {texel.r, texel.g, texel.b, texel.a};
    std::copy_n(rgba, 4, &pixels[4 * (fromBottom * texture.mWidth + i % texture.mWidth)]);
  }
  if (count == 0) fault = "the size is out of range";
  return SbImage(size, 4, std::move(pixels));
}

int wrapOf(aiMaterial const& material, char const* key, aiTextureType type) {
  int mode = aiTextureMapMode_Wrap;
  material.Get(key, type, 0, mode);
  return mode == aiTextureMapMode_Decal ? static_cast<int>(aiTextureMapMode_Clamp) : mode;
}

bool hasClearPixels(SbImage const& image) {
  if (!image.hasAlpha()) return false;
  std::size_t const count = image.getNumComponents();
  for (std::size_t i = count - 1; i < image.getNumBytes(); i += count) {
    if (image.getBytes()[i] != 255) return true;
  }
  return false;
}

SbImage withoutAlpha(SbImage const& image) {
  int const count = image.getNumComponents();
  SbImage::Bytes bytes;
  bytes.reserve(image.getNumBytes() / count * (count - 1));
  for (std::size_t i = 0; i < image.getNumBytes(); i += count)
    bytes.insert(bytes.end(), image.getBytes() + i, image.getBytes() + i + count - 1);
  return SbImage(image.getSize(), count - 1, std::move(bytes));
}

/// The image and its mirror images beside it: repeated, that is the image repeated in turns.
SbImage mirrored(SbImage const& image, bool inS, bool inT) {
  int const width = image.getWidth(), height = image.getHeight(), count = image.getNumComponents();
  SbVec2i32 const size(inS ? 2 * width : width, inT ? 2 * height : height);
  SbImage::Bytes bytes;
  bytes.reserve(SbImage::countBytes(SbVec3i32(size[0], size[1], 0), count));
  if (bytes.capacity() == 0) return image;
  for (int y = 0; y < size[1]; ++y) {
    for (int x = 0; x < size[0]; ++x) {
      auto const* pixel =
          image.getPixel(x < width ? x : 2 * width - 1 - x, y < height ? y : 2 * height - 1 - y);
      bytes.insert(bytes.end(), pixel, pixel + count);
    }
  }
  return SbImage(size, count, std::move(bytes));
}

/// As the scene shall name it: relative where it lies beside the model or below.
SbString nameOf(SbString const& model, std::string const& given) {
  SbString const found = findModelFile(model, given);
  if (found.empty()) return SbFileHelper::toUnixPath(SbString(given));
  std::string const path = SbFileHelper::toAbsolutePath(found).str();
  std::string const folder = SbFileHelper::getDirName(SbFileHelper::toAbsolutePath(model)).str();
  return SbString(path.starts_with(folder) ? path.substr(folder.size()) : path);
}

} // namespace

float fromLinear(float value) {
  return value <= 0.0031308f ? 12.92f * value : 1.055f * std::pow(value, 1 / 2.4f) - 0.055f;
}

SbName modelName(aiString const& name) {
  std::string_view const text(name.C_Str());
  bool const isMadeUp = text.starts_with('<') || text.starts_with('$') || text == AI_DEFAULT_MATERIAL_NAME;
  return isMadeUp ? SbName() : SbName(name.C_Str());
}

ModelMaterials::ModelMaterials(aiScene const& scene, SbString const& model, bool isGltf, bool isLinear)
    : m_scene(scene),
      m_model(model),
      m_isGltf(isGltf),
      m_isLinear(isLinear),
      m_isObj(model.lower().str().ends_with(".obj")) {}

ModelMaterials::Look const& ModelMaterials::get(unsigned index) {
  auto const [known, isNew] = m_looks.try_emplace(index);
  if (isNew && index < m_scene.mNumMaterials) known->second = make(*m_scene.mMaterials[index]);
  return known->second;
}

ModelMaterials::Look ModelMaterials::make(aiMaterial const& material) {
  Look look;
  auto* const node = new SoMaterial;
  look.nodes.emplace_back(node);
  node->setName(modelName(material.GetName()));

  aiString mode;
  bool const isGltfBlend = material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == aiReturn_SUCCESS &&
                           std::strcmp(mode.C_Str(), "BLEND") == 0;
  look.isLinear = m_isLinear;
  look.isOpaque = m_isGltf && (mode.length == 0 || std::strcmp(mode.C_Str(), "OPAQUE") == 0);
  makeTexture(material, aiTextureType_BASE_COLOR, look);
  if (!look.texture) makeTexture(material, aiTextureType_DIFFUSE, look);

  SbColor color(0.8f, 0.8f, 0.8f), emissive;
  float alpha = 1;
  float const metallic = getNumber(material, "$mat.metallicFactor", -1);
  bool const isRough = metallic >= 0 && getColor(material, "$clr.base", color, &alpha);
  if (isRough) {
    if (m_isLinear) color = fromLinear(color);
    setFromRoughness(*node, color, metalness(material, unit(metallic)),
                     unit(getNumber(material, "$mat.roughnessFactor", 1)));
  } else {
    if (getColor(material, "$clr.diffuse", color) && m_isLinear) color = fromLinear(color);
    // Only there the colour is meant to tint the texture; elsewhere it is what is left without one.
    bool const tints = m_isGltf || (m_isObj && !isBlack(color));
    if (look.texture && !tints) color = SbColor(1, 1, 1);
    setFromHighlight(*node, material, color);
  }
  look.diffuse = node->diffuseColor[0];
  node->ambientColor = times(look.diffuse, 0.25f);
  bool const hasImage = hasTexture(material, aiTextureType_EMISSIVE);
  bool const glowsByImage = hasImage || hasTexture(material, aiTextureType_EMISSION_COLOR);
  bool const onlyGlows = hasImage && !look.texture && isBlack(color);
  if (onlyGlows) makeTexture(material, aiTextureType_EMISSIVE, look);
  // Beside other colours an image of what glows has no counterpart; its factor alone would light up all.
  if ((!glowsByImage || onlyGlows) && getColor(material, "$clr.emissive", emissive) && !isBlack(emissive))
    node->emissiveColor = m_isLinear ? fromLinear(emissive) : emissive;

  float opacity = unit(getNumber(material, "$mat.opacity", 1));
  if (m_isGltf) opacity = isGltfBlend ? std::min(alpha, opacity) : 1;
  // Nobody makes a model of what can not be seen: such a file counts the other way round.
  if (!m_isGltf && opacity == 0) opacity = 1;
  look.transparency = 1 - opacity;
  if (look.transparency > 0) node->transparency = look.transparency;
  look.hidesBack = m_isGltf && getInteger(material, "$mat.twosided", 0) == 0;

  if (getInteger(material, "$mat.shadingm", 0) == aiShadingMode_NoShading) {
    auto* const unlit = new SoLightModel;
    unlit->model = SoLightModel::BASE_COLOR;
    look.nodes.emplace_back(unlit);
  }
  return look;
}

void ModelMaterials::makeTexture(aiMaterial const& material, aiTextureType type, Look& look) {
  aiString path;
  if (material.Get(AI_MATKEY_TEXTURE(type, 0), path) != aiReturn_SUCCESS || path.length == 0) return;
  look.textureChannel = 0;
  material.Get(AI_MATKEY_UVWSRC(type, 0), look.textureChannel);
  int const wrapS = wrapOf(material, _AI_MATKEY_MAPPINGMODE_U_BASE, type);
  int const wrapT = wrapOf(material, _AI_MATKEY_MAPPINGMODE_V_BASE, type);
  bool const mirrorsS = wrapS == aiTextureMapMode_Mirror, mirrorsT = wrapT == aiTextureMapMode_Mirror;
  std::string const key =
      std::to_string(wrapS) + std::to_string(wrapT) + (look.isOpaque ? "o" : "-") + path.C_Str();
  auto const [known, isNew] = m_textures.try_emplace(key);
  look.texture = known->second;
  if (isNew) {
    auto* const node = new SoTexture2;
    look.texture = known->second = SoRef<SoNode>(node);
    if (wrapS == aiTextureMapMode_Clamp) node->wrapS = SoTexture2::CLAMP;
    if (wrapT == aiTextureMapMode_Clamp) node->wrapT = SoTexture2::CLAMP;
    setImage(*node, path.C_Str(), look.isOpaque, mirrorsS, mirrorsT);
  }
  if (mirrorsS || mirrorsT) {
    auto* const half = new SoTexture2Transform;
    look.nodes.emplace_back(half);
    half->scaleFactor = SbVec2f(mirrorsS ? 0.5f : 1.0f, mirrorsT ? 0.5f : 1.0f);
  }
}

void ModelMaterials::setImage(SoTexture2& node, char const* path, bool isOpaque, bool mirrorsS,
                              bool mirrorsT) {
  aiTexture const* const embedded = m_scene.GetEmbeddedTexture(path);
  SbString const name = embedded ? SbString(path) : nameOf(m_model, path);
  bool const mirrors = mirrorsS || mirrorsT;
  std::string const lower = name.lower().str();
  bool const mayBeClear = isOpaque && !lower.ends_with(".jpg") && !lower.ends_with(".jpeg");
  SbImage image;
  if (embedded) {
    std::string fault;
    image = imageOf(*embedded, fault);
    if (!fault.empty()) {
      SoReadError::post("%s: the embedded image '%s' can not be read: %s", m_model.c_str(), path,
                        fault.c_str());
    }
  } else if (mirrors || mayBeClear) {
    // What fails here is told by the node, as for every image.
    SbString ignored;
    SbString const file = findModelFile(m_model, path);
    if (!file.empty()) image = SoImageCache::get(file, ignored);
  }
  bool const isClear = mayBeClear && hasClearPixels(image);
  if (!embedded && (image.isEmpty() || (!mirrors && !isClear))) {
    node.filename = name;
    return;
  }
  if (isClear) image = withoutAlpha(image);
  if (mirrors && !image.isEmpty()) image = mirrored(image, mirrorsS, mirrorsT);
  node.image = std::move(image);
}
