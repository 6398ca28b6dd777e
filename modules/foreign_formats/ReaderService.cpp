// The side of the program that reads models.

#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoModuleTool.h"
#include "kestrava/io/SoSearchPath.h"
#include "modules/foreign_formats/ModelReading.h"
#include "modules/foreign_formats/ReaderChannel.h"
#include "modules/foreign_formats/ReaderProcess.h"

namespace {

void send(char kind, std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  dprintf(ReaderChannel::MESSAGES, "%c %s\n", kind, text.c_str());
}

void sendReadError(SoError const* error, void*) { send('e', error->getDebugString().str()); }

void sendDebugError(SoError const* error, void*) {
  std::string const& text = error->getDebugString().str(); // "warning in foreign_formats: ..."
  bool const isNote = static_cast<SoDebugError const*>(error)->getSeverity() == SoDebugError::INFO;
  std::size_t const end = text.find(": ");
  send(isNote ? 'i' : 'w', end == text.npos ? text : text.substr(end + 2));
}

void setLimit(int which, rlim_t value) {
  rlimit limit{};
  if (getrlimit(which, &limit) != 0) return;
  limit.rlim_cur = std::min(value, limit.rlim_max);
  setrlimit(which, &limit);
}

void limitSelf(int seconds) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  setLimit(RLIMIT_CORE, 0);
  setLimit(RLIMIT_CPU, static_cast<rlim_t>(std::max(1, seconds)));
#ifndef __SANITIZE_ADDRESS__ // which reserves far more than there is
  // A damaged count is refused where it asks for more than the machine has. The addresses of stacks count
  // too.
  constexpr rlim_t STACKS = rlim_t(2) << 30;
  setLimit(RLIMIT_AS, STACKS + static_cast<rlim_t>(sysconf(_SC_PHYS_PAGES)) *
                                   static_cast<rlim_t>(sysconf(_SC_PAGESIZE)));
#endif
}

std::string readModelText() {
  std::string text;
  char part[1 << 16];
  for (ssize_t count; (count = read(ReaderChannel::MODEL, part, sizeof part)) > 0;)
    text.append(part, static_cast<std::size_t>(count));
  return text;
}

bool writeScene(SoNode* root) {
  SoWriteAction action;
  action.getOutput()->setBuffer();
  action.getOutput()->setBinary(true);
  action.apply(root);
  if (action.getOutput()->hasFailed()) return false;
  std::string const bytes = action.getOutput()->takeBuffer();
  for (std::size_t done = 0; done < bytes.size();) {
    ssize_t const count = write(ReaderChannel::SCENE, bytes.data() + done, bytes.size() - done);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

} // namespace

int serveModel(int argumentCount, char** arguments) {
  using namespace ReaderChannel;
  if (argumentCount < FIRST_FOLDER) {
    std::fputs("This program is started by the module foreign_formats.\n", stderr);
    return 2;
  }
  limitSelf(std::atoi(arguments[SECONDS]));
  SoReadError::setHandlerCallback(sendReadError);
  SoDebugError::setHandlerCallback(sendDebugError);
  for (int i = FIRST_FOLDER; i < argumentCount; ++i) SoSearchPath::addLast(arguments[i]);
  SoImporter::File const file{arguments[NAME], arguments[INNER_NAME], arguments[IS_PACKED][0] == '1'};
  if (arguments[IS_IN_MEMORY][0] == '1') SoSearchPath::addInMemoryText(file.name, SbString(readModelText()));
  SoModuleTool::initModule("image_formats"); // for embedded images

  SbString fault;
  SoRef<SoNode> const root = readModel(
      file, [](double percent) { send('p', std::to_string(std::min(percent, 99.0))); }, fault);
  if (!root) {
    send('f', fault.empty() ? "the file can not be read" : fault.str());
  } else if (!writeScene(root)) {
    send('f', "there is not enough memory for the model");
  }
  // What was built need not be taken down.
  _exit(0);
}
