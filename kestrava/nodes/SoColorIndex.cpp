#include "kestrava/nodes/SoColorIndex.h"

#include <mutex>
#include <span>

namespace {

/// The colours that a node keeps are asked for by several rendering threads.
std::mutex mutex;

/// Three bits of colour, dark and bright, as screens of sixteen colours have them.
std::span<SbColor const> defaultPalette() {
  static SbColor const colors[] = {
      {0, 0, 0},          {0.5f, 0, 0},    {0, 0.5f, 0},    {0.5f, 0.5f, 0},
      {0, 0, 0.5f},       {0.5f, 0, 0.5f}, {0, 0.5f, 0.5f}, {0.75f, 0.75f, 0.75f},
      {0.5f, 0.5f, 0.5f}, {1, 0, 0},       {0, 1, 0},       {1, 1, 0},
      {0, 0, 1},          {1, 0, 1},       {0, 1, 1},       {1, 1, 1}};
  return colors;
}

} // namespace

std::vector<SbColor> const& SoColorIndex::getColors() const {
  auto const indices = index.values();
  auto const given = palette.values();
  auto const colors = given.empty() ? defaultPalette() : given;
  std::lock_guard lock(mutex);
  if (m_made) return m_colors;
  m_made = true;
  m_colors.clear();
  auto const count = static_cast<std::int64_t>(colors.size());
  for (std::int64_t i : indices) m_colors.push_back(colors[static_cast<size_t>((i % count + count) % count)]);
  return m_colors;
}

void SoColorIndex::fieldChanged(SoField*) {
  std::lock_guard lock(mutex);
  m_made = false;
}
