// bench [CASE...]: measures the named cases, or all. A name that ends with '*' stands for all it begins.

#include <algorithm>
#include <cstdio>
#include <map>

#include "bench/bench.h"

namespace {

std::map<std::string, bench::Case>& cases() {
  static std::map<std::string, bench::Case> all;
  return all;
}

std::string current;

bool matches(std::string_view wanted, std::string_view name) {
  return wanted.ends_with('*') ? name.starts_with(wanted.substr(0, wanted.size() - 1)) : wanted == name;
}

}  // namespace

namespace bench {

Registered::Registered(char const* name, Case run) { cases()[name] = run; }

void report(Result const& result) {
  std::printf("%-28s %10.4g %-8s", (result.name.empty() ? current : result.name).c_str(), result.value,
              result.unit.c_str());
  if (result.floor > 0) {
    std::printf(" floor %10.4g %-8s ratio %.3g\n", result.floor, result.unit.c_str(), result.value / result.floor);
  } else {
    std::printf(" floor          -          ratio -\n");
  }
  std::fflush(stdout);
}

double fastest(std::function<void()> const& run, int runs) {
  double best = 0;
  for (int i = 0; i < runs; ++i) {
    auto const start = std::chrono::steady_clock::now();
    run();
    double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    best = i == 0 ? seconds : std::min(best, seconds);
  }
  return best;
}

}  // namespace bench

int main(int argc, char** argv) {
  int status = 0;
  for (int i = 1; i < argc; ++i) {
    bool const known = std::any_of(cases().begin(), cases().end(),
                                   [&](auto const& entry) { return matches(argv[i], entry.first); });
    if (known) continue;
    std::fprintf(stderr, "bench: there is no case '%s'\n", argv[i]);
    status = 1;
  }
  for (auto const& [name, run] : cases()) {
    bool const wanted = argc == 1 || std::any_of(argv + 1, argv + argc, [&](char* w) { return matches(w, name); });
    if (!wanted) continue;
    current = name;
    run();
  }
  return status;
}
