#include "kestrava/base/SoCallStack.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

std::string functionName(char const* symbol) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> readable(abi::__cxa_demangle(symbol, nullptr, nullptr, &status),
                                                       &std::free);
  return readable ? readable.get() : symbol;
}

} // namespace

SbString SoCallStack(void const* innermost) {
  void* frames[64];
  void** const end = frames + backtrace(frames, 64);
  void** first = std::find(frames, end, innermost);
  if (first == end) first = frames;
  std::string text;
  for (void** frame = first; frame != end; ++frame) {
    Dl_info info{};
    bool const known = dladdr(*frame, &info) != 0;
    void const* const base = !known ? nullptr : info.dli_sname ? info.dli_saddr : info.dli_fbase;
    std::string const name = known && info.dli_sname ? functionName(info.dli_sname) : "?";
    text += SbString::format("#%d %s + 0x%lx (%s)\n", static_cast<int>(frame - first), name.c_str(),
                             reinterpret_cast<unsigned long>(*frame) - reinterpret_cast<unsigned long>(base),
                             known && info.dli_fname ? info.dli_fname : "?")
                .str();
  }
  return SbString(std::move(text));
}
