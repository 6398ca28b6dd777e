#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

struct Outcome {
  int status;
  std::string output; // both channels
};

/// Runs one of the programs and waits for its end; without a display, unless the environment (NAME=value...)
/// gives one.
inline Outcome runProgram(std::string const& program, std::string const& arguments,
                          std::string const& environment = "") {
  std::string const command = "unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM; " + environment +
                              " " VANTLE_BIN_DIR "/" + program + " " + arguments + " 2>&1";
  Outcome result;
  FILE* const pipe = popen(command.c_str(), "r");
  std::array<char, 4096> part;
  while (std::size_t const count = std::fread(part.data(), 1, part.size(), pipe)) {
    result.output.append(part.data(), count);
  }
  int const status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}
