#pragma once

namespace Vnt {

/// What a node is shown as; each node has exactly one. The bits make masks, as the tree's filter does.
enum NodeCategory {
  Unknown = 0,
  Appearance = 1,
  Callback = 2,
  Camera = 4,
  Group = 8,
  Light = 16,
  Manipulator = 32,
  Nodekit = 64,
  Property = 128,
  Selection = 256,
  Separator = 512,
  Shape = 1024,
  Switch = 2048,
  Topology = 4096,
  Transform = 8192,
  // Second values that plug-ins may use: named like the first ones, without a picture, given to no node.
  ManipulatorAlias = 16384,
  AppearanceAlias = 32768,
};

/// The mask of all categories that nodes are given.
inline constexpr int ALL_NODE_CATEGORIES = 16383;

} // namespace Vnt
