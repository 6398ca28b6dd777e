#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "kestrava/render/SoGLRenderer.h"

void SoGLRenderer::drawTransparent(SoDrawList const& list, Frame const& frame) {
  unsigned const opaque = SoGLProgram::FULL_ALPHA;
  if (frame.transparency == NONE) return drawLayer(list, SoDrawLook::TRANSPARENT, opaque);
  if (frame.transparency == SCREEN_DOOR) {
    return drawLayer(list, SoDrawLook::TRANSPARENT, opaque | SoGLProgram::SCREEN_DOOR);
  }
  glEnable(GL_BLEND);
  glDepthMask(GL_FALSE);
  frame.transparency == BLEND ? drawLayer(list, SoDrawLook::TRANSPARENT) : drawInTurn(list, frame);
}

/// The parts of the transparent groups that are in view, the farthest first; false when they are as before.
bool SoGLRenderer::findTurns(Frame const& frame) {
  SbVec3f const eye = frame.volume.getProjectionPoint(), ahead = frame.volume.getProjectionDirection();
  std::array<SbVec3f, 2> const view{eye, ahead};
  if (m_turnsAreCurrent && m_turnsView == view && m_turnsBoundaries == m_boundaries) return false;
  m_turnsView = view;
  m_turnsBoundaries = m_boundaries;
  m_turnsAreCurrent = true;
  // A place that is no number can be sorted all the same.
  auto distanceTo = [&](SbVec3f const& point) {
    float const distance = (point - eye).dot(ahead);
    return std::isnan(distance) ? std::numeric_limits<float>::infinity() : distance;
  };
  m_turns.clear();
  m_turnsSeen = m_turnsCulled = 0;
  for (Group const& group : m_groups) {
    if (group.look.layer != SoDrawLook::TRANSPARENT) continue;
    for (SoGLPage* page : group.pages) {
      std::vector<SbVec3f> const& centers = page->getTriangleCenters();
      for (SoGLPage::Range const& range : page->getRanges()) {
        if (SbViewVolume::isOutside(m_boundaries, range.bounds)) {
          ++m_turnsCulled;
          continue;
        }
        ++m_turnsSeen;
        if (centers.empty()) {
          m_turns.push_back({distanceTo(range.bounds.getCenter()), &group, page, range, false});
          continue;
        }
        for (std::uint32_t i = range.first; i < range.first + range.count; i += 3) {
          m_turns.push_back({distanceTo(centers[i / 3]), &group, page, {range.bounds, i, 3}, true});
        }
      }
    }
  }
  std::stable_sort(m_turns.begin(), m_turns.end(),
                   [](Turn const& a, Turn const& b) { return a.distance > b.distance; });
  return true;
}

/// Brings the triangles of each page into the order in which they are drawn.
void SoGLRenderer::orderTriangles() {
  std::unordered_map<SoGLPage*, std::vector<std::uint32_t>> orders;
  for (Turn& turn : m_turns) {
    if (!turn.isTriangle) continue;
    std::vector<std::uint32_t>& order = orders[turn.page];
    order.push_back(turn.range.first / 3);
    turn.range.first = static_cast<std::uint32_t>(order.size() - 1) * 3;
  }
  for (auto& [page, order] : orders) page->setOrder(order);
}

void SoGLRenderer::drawInTurn(SoDrawList const& list, Frame const& frame) {
  if (findTurns(frame)) orderTriangles();
  m_statistics.rangesSeen += m_turnsSeen;
  m_statistics.rangesCulled += m_turnsCulled;
  Group const* bound = nullptr;
  bool usable = false;
  for (size_t i = 0; i < m_turns.size();) {
    Turn const& turn = m_turns[i];
    // Of a shape that is seen from both sides the far side is seen through the near one.
    bool const twice =
        !turn.isTriangle && !turn.group->look.culled && turn.group->primitive == SoGLPage::TRIANGLES;
    m_runs.clear();
    for (; i < m_turns.size() && m_turns[i].group == turn.group && m_turns[i].page == turn.page; ++i) {
      SoGLPage::Range const& range = m_turns[i].range;
      if (turn.isTriangle && !m_runs.empty() && m_runs.back().first + m_runs.back().count == range.first) {
        m_runs.back().count += range.count;
      } else {
        m_runs.push_back(range);
      }
      if (twice) {
        ++i;
        break;
      }
    }
    if (turn.group != bound) {
      bound = turn.group;
      usable = bindGroup(list, *bound);
    }
    if (!usable) continue;
    if (!twice) {
      drawRuns(*turn.page, m_runs);
      continue;
    }
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT);
    drawRuns(*turn.page, m_runs);
    glCullFace(GL_BACK);
    drawRuns(*turn.page, m_runs);
    glDisable(GL_CULL_FACE);
  }
}
