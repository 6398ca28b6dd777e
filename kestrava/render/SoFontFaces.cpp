#include "kestrava/render/SoFontFaces.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <array>
#include <memory>

#include "kestrava/base/SbFileHelper.h"

namespace {

template <auto destroy> struct Destroyer {
  template <class T> void operator()(T* object) const { destroy(object); }
};
using Pattern = std::unique_ptr<FcPattern, Destroyer<FcPatternDestroy>>;

struct Match {
  SbString file, family;
  bool isWanted = true; // false: another family stands in
};

/// Families that stand for whatever the system has of that kind.
bool isGeneric(std::string const& family) {
  constexpr std::array<char const*, 8> GENERIC{"sans", "sans-serif", "serif",   "monospace",
                                               "mono", "cursive",    "fantasy", "system-ui"};
  return std::any_of(GENERIC.begin(), GENERIC.end(), [&](char const* name) {
    return FcStrCmpIgnoreCase(reinterpret_cast<FcChar8 const*>(name),
                              reinterpret_cast<FcChar8 const*>(family.c_str())) == 0;
  });
}

bool hasFamily(FcPattern* match, FcChar8 const* wanted) {
  FcChar8* family = nullptr;
  for (int i = 0; FcPatternGetString(match, FC_FAMILY, i, &family) == FcResultMatch; ++i) {
    if (FcStrCmpIgnoreCase(family, wanted) == 0) return true;
  }
  return false;
}

Match matchOf(std::string const& name) {
  Match result;
  bool const isDefault = name == "defaultFont" || name.empty();
  std::string const wanted = isDefault ? "DejaVu Sans" : name;
  // A configuration of our own: fonts are looked up once a name, and nothing is left behind.
  std::unique_ptr<FcConfig, Destroyer<FcConfigDestroy>> const config(FcInitLoadConfigAndFonts());
  Pattern const pattern(FcNameParse(reinterpret_cast<FcChar8 const*>(wanted.c_str())));
  if (!config || !pattern) return result; // out of memory
  FcChar8* asked = nullptr;
  std::string family;
  if (FcPatternGetString(pattern.get(), FC_FAMILY, 0, &asked) == FcResultMatch) {
    family = reinterpret_cast<char*>(asked);
  }
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcConfigSubstitute(config.get(), pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  FcResult outcome;
  Pattern const match(FcFontMatch(config.get(), pattern.get(), &outcome));
  FcChar8* text = nullptr;
  if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &text) != FcResultMatch) return result;
  result.file = SbString(reinterpret_cast<char*>(text));
  if (FcPatternGetString(match.get(), FC_FAMILY, 0, &text) == FcResultMatch) {
    result.family = SbString(reinterpret_cast<char*>(text));
  }
  result.isWanted = isDefault || family.empty() || isGeneric(family) ||
                    hasFamily(match.get(), reinterpret_cast<FcChar8 const*>(family.c_str()));
  return result;
}

} // namespace

SoFontFaces& SoFontFaces::instance() {
  static SoFontFaces& faces = *new SoFontFaces;
  return faces;
}

FT_Face SoFontFaces::find(SbName const& name, SbString& error) {
  auto const [known, isNew] = m_byName.try_emplace(name.str(), nullptr);
  if (isNew) known->second = open(name.str(), error);
  if (!known->second) error = "there is no font '" + name.str() + "' and none in its place";
  return known->second;
}

FT_Face SoFontFaces::open(std::string const& name, SbString& error) {
  if (!m_library && FT_Init_FreeType(&m_library) != 0) return nullptr;
  auto const faceOf = [this](SbString const& file) -> FT_Face {
    auto const [opened, isNew] = m_byFile.try_emplace(file, nullptr);
    if (isNew && FT_New_Face(m_library, file.c_str(), 0, &opened->second) != 0) opened->second = nullptr;
    FT_Face const face = opened->second;
    return face && FT_IS_SCALABLE(face) ? face : nullptr;
  };
  bool const isFile = SbFileHelper::isReadable(name);
  if (isFile) {
    if (FT_Face const face = faceOf(SbString(name))) return face;
  }
  Match const match = matchOf(isFile ? std::string() : name);
  FT_Face const face = match.file.empty() ? nullptr : faceOf(match.file);
  if (face && isFile) {
    error = "'" + name + "' is no font with outlines, '" + match.family.str() + "' stands in";
  } else if (face && !match.isWanted) {
    error = "there is no font '" + name + "', '" + match.family.str() + "' stands in";
  }
  return face;
}
