#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFColor.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFImage.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/io/SoImageCache.h"
#include "kestrava/nodes/SoNode.h"

/// A flat image on what follows.
class SoTexture2 : public SoNode {
  SO_NODE(SoTexture2, SoNode)
  enum Wrap { REPEAT, CLAMP };
  static std::vector<SoEnumSymbol> const& wraps() {
    static std::vector<SoEnumSymbol> const symbols{{"REPEAT", REPEAT}, {"CLAMP", CLAMP}};
    return symbols;
  }
  enum Model { MODULATE, DECAL, BLEND };
  static std::vector<SoEnumSymbol> const& models() {
    static std::vector<SoEnumSymbol> const symbols{
        {"MODULATE", MODULATE}, {"DECAL", DECAL}, {"BLEND", BLEND}};
    return symbols;
  }

  SoSFString filename{this, "filename"}; ///< beside the scene file, else in the search path; read when it is first needed
  SoSFImage image{this, "image"};        ///< counts while there is no filename
  SoSFEnum wrapS{this, "wrapS", REPEAT, wraps()};
  SoSFEnum wrapT{this, "wrapT", REPEAT, wraps()};
  SoSFEnum model{this, "model", MODULATE, models()};
  SoSFColor blendColor{this, "blendColor", SbColor(0, 0, 0)}; ///< for BLEND
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

  /// The image of the file, or else of the field; empty when there is none. A file that can not be read is
  /// posted as a read error, once for all nodes that name it.
  SbImage getImage() const;

 protected:
  void fieldChanged(SoField* field) override;
  ~SoTexture2() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_file = static_cast<SoTexture2 const&>(from).m_file;
  }

 private:
  mutable SoNamedImage m_file;
};
