#include "vnt/VntExtension.h"

#include "vnt/VntShell.h"

// The shell may still have entries that would call it.
VntExtension::~VntExtension() {
  if (VntShell* const shell = VntShell::getInstance()) Q_EMIT shell->extensionGone(this, true);
}
