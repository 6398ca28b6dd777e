#pragma once

#include <QProcess>
#include <string>

/// A part of a test that needs a process of its own, with no Qt application yet:
///
///     SessionChild const quits("quits", [] { ...; return 0; });
///     EXPECT_EQ(quits.run(), "");
class SessionChild {
 public:
  SessionChild(char const* name, int (*function)());
  /// Runs the function in a new process. Empty when it ended with status 0; otherwise what it wrote and how
  /// it ended.
  std::string run() const;

  char const* name() const { return m_name; }

  /// The other side, in the new process.
  static int main(char const* name);

 private:
  char const* m_name;
  int (*m_function)();
  SessionChild const* m_next;
};

/// For the functions: says what does not hold and where, and ends the function with status 2.
#define CHILD_EXPECT(condition)                                                \
  do {                                                                         \
    if (!(condition)) {                                                        \
      std::fprintf(stderr, "%s:%d: not " #condition "\n", __FILE__, __LINE__); \
      return 2;                                                                \
    }                                                                          \
  } while (false)
