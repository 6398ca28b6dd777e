#include "kestrava/actions/SoState.h"

#include <atomic>

int SoState::nextIndex() {
  static std::atomic<int> count{0};
  return count++;
}
