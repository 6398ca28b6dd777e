#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFImage.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/io/SoImageCache.h"
#include "kestrava/nodes/SoBackground.h"

/// Fills the window with an image.
class SoImageBackground : public SoBackground {
  SO_NODE(SoImageBackground, SoBackground)
  enum Style { NONE, CENTER, LOWER_LEFT, UPPER_LEFT, UPPER_RIGHT, LOWER_RIGHT, STRETCH, TILE, CROP };
  static std::vector<SoEnumSymbol> const& styles() {
    static std::vector<SoEnumSymbol> const symbols{{"NONE", NONE},
                                                   {"CENTER", CENTER},
                                                   {"LOWER_LEFT", LOWER_LEFT},
                                                   {"UPPER_LEFT", UPPER_LEFT},
                                                   {"UPPER_RIGHT", UPPER_RIGHT},
                                                   {"LOWER_RIGHT", LOWER_RIGHT},
                                                   {"STRETCH", STRETCH},
                                                   {"TILE", TILE},
                                                   {"CROP", CROP}};
    return symbols;
  }

  SoSFString filename{this, "filename"}; ///< beside the scene file, else in the search path
  SoSFImage image{this, "image"};        ///< counts while there is no filename
  SoSFEnum style{this, "style", TILE, styles()};

  /// The image of the file, or else of the field; empty when there is none. A file that can not be read is
  /// posted as a read error, once for all nodes that name it.
  SbImage getImage() const;

 protected:
  void fieldChanged(SoField* field) override;
  ~SoImageBackground() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier&) override {
    m_file = static_cast<SoImageBackground const&>(from).m_file;
  }

 private:
  mutable SoNamedImage m_file;
};
