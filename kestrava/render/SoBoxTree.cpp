#include "kestrava/render/SoBoxTree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr std::uint32_t MAX_LEAF = 4, MAX_CLUSTER = 48;
constexpr int BINS = 16;

/// The middle of a box; no number for one that is empty or not finite.
void middleOf(SbBox3f const& box, float* middle) {
  float const *min = box.getMin().v, *max = box.getMax().v;
  bool const isUsable = min[0] <= max[0] && min[1] <= max[1] && min[2] <= max[2];
  for (int k = 0; k < 3; ++k) middle[k] = min[k] * 0.5f + max[k] * 0.5f;
  bool const isFinite = std::isfinite(middle[0]) && std::isfinite(middle[1]) && std::isfinite(middle[2]);
  if (!isUsable || !isFinite) middle[0] = NAN;
}

/// Bits 0 to 9 of a number, two places apart.
std::uint32_t spread(std::uint32_t x) {
  x = (x | x << 16) & 0x030000ff;
  x = (x | x << 8) & 0x0300f00f;
  x = (x | x << 4) & 0x030c30c3;
  return (x | x << 2) & 0x09249249;
}

template <class Coded> void sortByCode(std::vector<Coded>& entries) {
  constexpr int BITS = 10;
  std::vector<Coded> other(entries.size());
  for (int shift = 0; shift < 30; shift += BITS) {
    std::array<std::uint32_t, 1 << BITS> starts{};
    for (Coded const& e : entries) ++starts[e.code >> shift & ((1 << BITS) - 1)];
    std::uint32_t sum = 0;
    for (std::uint32_t& start : starts) start = std::exchange(sum, sum + start);
    for (Coded const& e : entries) other[starts[e.code >> shift & ((1 << BITS) - 1)]++] = e;
    entries.swap(other);
  }
}

float halfArea(float const* min, float const* max) {
  float const x = max[0] - min[0], y = max[1] - min[1], z = max[2] - min[2];
  return x * y + y * z + z * x;
}

} // namespace

struct SoBoxTree::Coded {
  std::uint32_t code; // the bits of three coordinates, interleaved
  std::uint32_t number;

  /// Where a range whose codes are in order falls into two halves of space; by number where all are the same.
  static std::uint32_t split(std::vector<Coded> const& coded, std::uint32_t from, std::uint32_t to) {
    std::uint32_t const differing = coded[from].code ^ coded[to - 1].code;
    if (!differing) return from + (to - from) / 2;
    int const bit = 31 - __builtin_clz(differing);
    auto const middle = std::partition_point(coded.begin() + from, coded.begin() + to,
                                             [bit](Coded const& e) { return !(e.code >> bit & 1); });
    return static_cast<std::uint32_t>(middle - coded.begin());
  }
};

/// Neighbours in space.
struct SoBoxTree::Cluster {
  float min[3], max[3];
  std::uint32_t first, count;

  float middle(int axis) const { return min[axis] * 0.5f + max[axis] * 0.5f; }
  void extendBy(float const* otherMin, float const* otherMax) {
    for (int i = 0; i < 3; ++i) {
      min[i] = std::min(min[i], otherMin[i]);
      max[i] = std::max(max[i], otherMax[i]);
    }
  }
  static Cluster none() {
    constexpr float MOST = std::numeric_limits<float>::max();
    return {{MOST, MOST, MOST}, {-MOST, -MOST, -MOST}, 0, 0};
  }
};

SoBoxTree::SoBoxTree(std::span<SbBox3f const> boxes) {
  std::vector<Coded> coded;
  std::vector<Cluster> clusters;
  makeClusters(boxes, coded, clusters);
  if (!clusters.empty()) makeNodes(clusters, boxes, coded);
}

// Everything is put in order along a curve that fills space; what lies together in a cell of few is a
// cluster.
void SoBoxTree::makeClusters(std::span<SbBox3f const> boxes, std::vector<Coded>& coded,
                             std::vector<Cluster>& clusters) {
  Cluster around = Cluster::none();
  std::vector<float> middles(3 * boxes.size());
  coded.reserve(boxes.size());
  for (size_t i = 0; i < boxes.size(); ++i) {
    float* const middle = &middles[3 * i];
    middleOf(boxes[i], middle);
    if (std::isnan(middle[0])) continue;
    around.extendBy(middle, middle);
    coded.push_back({0, static_cast<std::uint32_t>(i)});
  }
  if (coded.empty()) return;
  float scale[3];
  for (int k = 0; k < 3; ++k) {
    float const size = around.max[k] - around.min[k];
    scale[k] = size > 0 ? std::min(1023.0f / size, std::numeric_limits<float>::max()) : 0;
  }
  for (Coded& e : coded) {
    for (int k = 0; k < 3; ++k) {
      float const place = (middles[3 * size_t{e.number} + static_cast<size_t>(k)] - around.min[k]) * scale[k];
      // Differences of huge numbers may be none.
      e.code |= spread(static_cast<std::uint32_t>(place > 0 ? std::min(place, 1023.0f) : 0.0f)) << k;
    }
  }
  sortByCode(coded);
  m_order.reserve(coded.size());
  for (Coded const& e : coded) m_order.push_back(e.number);

  struct Range {
    std::uint32_t from, to;
  };
  std::vector<Range> ranges{{0, static_cast<std::uint32_t>(coded.size())}};
  clusters.reserve(coded.size() / (MAX_CLUSTER / 3) + 1);
  while (!ranges.empty()) {
    Range const range = ranges.back();
    ranges.pop_back();
    if (range.to - range.from <= MAX_CLUSTER) {
      Cluster cluster = Cluster::none();
      cluster.first = range.from;
      cluster.count = range.to - range.from;
      for (std::uint32_t i = range.from; i < range.to; ++i) {
        SbBox3f const& box = boxes[m_order[i]];
        cluster.extendBy(box.getMin().v, box.getMax().v);
      }
      clusters.push_back(cluster);
      continue;
    }
    std::uint32_t const middle = Coded::split(coded, range.from, range.to);
    ranges.push_back({range.from, middle});
    ranges.push_back({middle, range.to});
  }
}

// Clusters are split where the sum of the areas of both sides, times the clusters in each, is the least of
// those at a number of equidistant planes.
void SoBoxTree::makeNodes(std::vector<Cluster>& clusters, std::span<SbBox3f const> boxes,
                          std::vector<Coded> const& coded) {
  struct Task {
    std::uint32_t node, from, to;
    int depth;
  };
  struct Bin {
    Cluster box = Cluster::none(); // its count is that of the clusters
  };
  m_nodes.reserve(coded.size());
  m_nodes.emplace_back();
  std::vector<Task> tasks{{0, 0, static_cast<std::uint32_t>(clusters.size()), 0}};
  while (!tasks.empty()) {
    Task const task = tasks.back();
    tasks.pop_back();
    Cluster around = Cluster::none(), middles = Cluster::none();
    for (std::uint32_t i = task.from; i < task.to; ++i) {
      Cluster const& c = clusters[i];
      around.extendBy(c.min, c.max);
      float const middle[3] = {c.middle(0), c.middle(1), c.middle(2)};
      middles.extendBy(middle, middle);
    }
    Node node;
    for (int k = 0; k < 3; ++k) node.min[k] = around.min[k], node.max[k] = around.max[k];
    if (task.to - task.from == 1) {
      divide(clusters[task.from], task.node, boxes, coded);
      continue;
    }
    int axis = 0;
    for (int k = 1; k < 3; ++k) {
      if (middles.max[k] - middles.min[k] > middles.max[axis] - middles.min[axis]) axis = k;
    }
    std::uint32_t split = task.from + (task.to - task.from) / 2;
    float const from = middles.min[axis], size = middles.max[axis] - from;
    float const scale = BINS * 0.9999f / size;
    if (task.depth < MAX_DEPTH && task.to - task.from > 2 && std::isfinite(scale) && std::isfinite(size) && size > 0) {
      auto const binOf = [&](Cluster const& c) {
        return std::clamp(static_cast<int>((c.middle(axis) - from) * scale), 0, BINS - 1);
      };
      Bin bins[BINS];
      for (std::uint32_t i = task.from; i < task.to; ++i) {
        Bin& bin = bins[binOf(clusters[i])];
        bin.box.extendBy(clusters[i].min, clusters[i].max);
        ++bin.box.count;
      }
      float costsBelow[BINS];
      Cluster sum = Cluster::none();
      for (int i = 0; i + 1 < BINS; ++i) {
        if (bins[i].box.count) sum.extendBy(bins[i].box.min, bins[i].box.max);
        sum.count += bins[i].box.count;
        costsBelow[i] = sum.count ? halfArea(sum.min, sum.max) * static_cast<float>(sum.count) : 0;
      }
      sum = Cluster::none();
      int best = -1;
      float least = std::numeric_limits<float>::infinity();
      for (int i = BINS - 1; i > 0; --i) {
        if (bins[i].box.count) sum.extendBy(bins[i].box.min, bins[i].box.max);
        sum.count += bins[i].box.count;
        if (sum.count == 0 || sum.count == task.to - task.from) continue;
        float const cost = costsBelow[i - 1] + halfArea(sum.min, sum.max) * static_cast<float>(sum.count);
        if (cost < least) least = cost, best = i;
      }
      if (best > 0) {
        auto const middle = std::partition(clusters.begin() + task.from, clusters.begin() + task.to,
                                           [&](Cluster const& c) { return binOf(c) < best; });
        split = static_cast<std::uint32_t>(middle - clusters.begin());
      }
    }
    node.first = static_cast<std::uint32_t>(m_nodes.size());
    node.count = 0;
    m_nodes[task.node] = node;
    m_nodes.resize(m_nodes.size() + 2);
    tasks.push_back({node.first, task.from, split, task.depth + 1});
    tasks.push_back({node.first + 1, split, task.to, task.depth + 1});
  }
}

// Inside a cluster halves of space will do.
void SoBoxTree::divide(Cluster const& cluster, std::uint32_t root, std::span<SbBox3f const> boxes,
                       std::vector<Coded> const& coded) {
  struct Task {
    std::uint32_t node, from, to;
  };
  Task tasks[MAX_CLUSTER];
  int waiting = 0;
  auto const start = static_cast<std::uint32_t>(m_nodes.size());
  tasks[waiting++] = {root, cluster.first, cluster.first + cluster.count};
  while (waiting > 0) {
    Task const task = tasks[--waiting];
    Node node;
    if (task.to - task.from <= MAX_LEAF) {
      Cluster leaf = Cluster::none();
      for (std::uint32_t i = task.from; i < task.to; ++i) {
        SbBox3f const& box = boxes[m_order[i]];
        leaf.extendBy(box.getMin().v, box.getMax().v);
      }
      for (int k = 0; k < 3; ++k) node.min[k] = leaf.min[k], node.max[k] = leaf.max[k];
      node.first = task.from;
      node.count = task.to - task.from;
      m_nodes[task.node] = node;
      continue;
    }
    std::uint32_t const middle = Coded::split(coded, task.from, task.to);
    node.first = static_cast<std::uint32_t>(m_nodes.size());
    node.count = 0;
    m_nodes[task.node] = node;
    m_nodes.resize(m_nodes.size() + 2);
    tasks[waiting++] = {node.first, task.from, middle};
    tasks[waiting++] = {node.first + 1, middle, task.to};
  }
  // Children come after their parents; the root is given last.
  auto const surround = [this](Node& node) {
    if (node.count > 0) return;
    Node const &a = m_nodes[node.first], &b = m_nodes[node.first + 1];
    for (int k = 0; k < 3; ++k) {
      node.min[k] = std::min(a.min[k], b.min[k]);
      node.max[k] = std::max(a.max[k], b.max[k]);
    }
  };
  for (auto i = static_cast<std::uint32_t>(m_nodes.size()); i > start; --i) surround(m_nodes[i - 1]);
  surround(m_nodes[root]);
}
