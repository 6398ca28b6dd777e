#pragma once

#include <chrono>
#include <functional>
#include <string>

// One program, one line of figures a case:
//
//     <case>  <value> <unit>  floor <floor> <unit>  ratio <value / floor>
//
// The floor is the least that the same work could cost, measured in the same run. A case that has none shows "-".

namespace bench {

struct Result {
  std::string name;  // empty: the case's own
  double value = 0;
  std::string unit;
  double floor = 0;  // 0: none
};

/// Prints a line; a case may report several.
void report(Result const& result);

/// Seconds of the fastest of several runs.
double fastest(std::function<void()> const& run, int runs = 5);

using Case = void (*)();
struct Registered {
  Registered(char const* name, Case run);
};

/// Keeps the compiler from dropping a computation whose result nobody uses.
template <class T>
void keep(T const& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench

/// Declares a case, which ends by calling bench::report().
#define BENCH(name)                                             \
  static void bench_##name();                                   \
  static bench::Registered const registered_##name(#name, bench_##name); \
  static void bench_##name()
