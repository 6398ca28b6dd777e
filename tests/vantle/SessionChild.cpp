#include "tests/vantle/SessionChild.h"

#include <QCoreApplication>
#include <cstring>

namespace {
SessionChild const* all = nullptr;
}

SessionChild::SessionChild(char const* name, int (*function)())
    : m_name(name), m_function(function), m_next(std::exchange(all, this)) {}

std::string SessionChild::run() const {
  QProcess process;
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(QCoreApplication::applicationFilePath(), {"--child", m_name});
  bool const ended = process.waitForFinished(300'000);
  std::string const output = process.readAll().toStdString();
  if (!ended) return output + "\nit did not end";
  if (process.exitStatus() == QProcess::CrashExit) return output + "\nit crashed";
  if (process.exitCode() == 0) return std::string();
  return output + "\nstatus " + std::to_string(process.exitCode());
}

int SessionChild::main(char const* name) {
  for (SessionChild const* child = all; child; child = child->m_next) {
    if (std::strcmp(child->m_name, name) == 0) return child->m_function();
  }
  return 99;
}
