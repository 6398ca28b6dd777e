// How long a host waits for the inspector: programs that load it afresh, one after the other. All files are
// in the system's cache by then.

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/bench.h"

BENCH(host_start) {
  constexpr int RUNS = 9;
  std::array<std::vector<double>, 4> steps;
  for (int i = 0; i <= RUNS; ++i) {
    FILE* const program = popen(VANTLE_BIN_DIR "/start_host", "r");
    double load = 0, start = 0, paint = 0;
    bool const read = program && std::fscanf(program, "%lf %lf %lf", &load, &start, &paint) == 3;
    if (!program || pclose(program) != 0 || !read) {
      std::fprintf(stderr, "host_start: needs a display and the program start_host\n");
      return;
    }
    if (i == 0) continue; // fills the caches
    std::size_t step = 0;
    for (double value : {load + start + paint, load, start, paint}) steps[step++].push_back(value);
  }
  char const* const names[] = {"", "host_start_load", "host_start_start", "host_start_paint"};
  for (std::size_t step = 0; step < steps.size(); ++step) {
    std::sort(steps[step].begin(), steps[step].end());
    bench::report({names[step], steps[step][RUNS / 2], "ms", 0});
  }
}
