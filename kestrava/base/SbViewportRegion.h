#pragma once

#include "kestrava/base/SbVec2f.h"
#include "kestrava/base/SbVec2s.h"

/// The part of a window that is drawn into, in pixels from the lower left corner of the window.
class SbViewportRegion {
 public:
  /// A window of 100 x 100 pixels.
  SbViewportRegion() : SbViewportRegion(SbVec2s(100, 100)) {}
  explicit SbViewportRegion(SbVec2s windowSize) { setWindowSize(windowSize); }
  SbViewportRegion(short width, short height) : SbViewportRegion(SbVec2s(width, height)) {}

  SbVec2s getWindowSize() const { return m_windowSize; }
  /// The viewport then is the whole window.
  void setWindowSize(SbVec2s size) {
    m_windowSize = m_size = size;
    m_origin = SbVec2s();
  }
  SbVec2s getViewportOriginPixels() const { return m_origin; }
  SbVec2s getViewportSizePixels() const { return m_size; }
  void setViewportPixels(SbVec2s origin, SbVec2s size) {
    m_origin = origin;
    m_size = size;
  }
  /// Width by height; 1 where there is no area.
  float getViewportAspectRatio() const {
    return m_size[0] > 0 && m_size[1] > 0 ? static_cast<float>(m_size[0]) / static_cast<float>(m_size[1]) : 1;
  }
  /// A pixel of the window as a point of the viewport, 0 to 1; the centre of the pixel counts.
  SbVec2f normalize(SbVec2s pixel) const {
    SbVec2f point;
    for (int i = 0; i < 2; ++i) point[i] = (pixel[i] - m_origin[i] + 0.5f) / (m_size[i] > 0 ? m_size[i] : 1);
    return point;
  }

  friend bool operator==(SbViewportRegion const&, SbViewportRegion const&) = default;

 private:
  SbVec2s m_windowSize, m_origin, m_size;
};
