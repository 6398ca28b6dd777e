#pragma once

#include <string>
#include <string_view>
#include <vector>

class SoBase;

/// What stands behind an SbName: the text, and the objects that have it as their name, so that naming an
/// object looks nothing up. The objects belong to SoBase and its lock.
struct SbNameEntry : std::string {
  struct Many {
    std::vector<SoBase*> objects; // the latest last; null where one has left
    std::size_t count = 0;
  };
  explicit SbNameEntry(std::string_view text) : std::string(text) {}

  SoBase* only = nullptr; // while there is one at most
  Many* many = nullptr;   // else
};
