#pragma once

/// The toolkit's library itself: the address of init() tells which file it was loaded from.
class SoKestravaBase {
 public:
  SoKestravaBase() = delete;
  /// The same as SoDB::init().
  static void init();
};
