#include "modules/foreign_formats/ReaderProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoSearchPath.h"
#include "modules/foreign_formats/ReaderChannel.h"

namespace {

/// An open file of this process; above the numbers that the program's files get.
class Handle {
 public:
  Handle() = default;
  explicit Handle(int file) : m_file(file < 0 ? -1 : fcntl(file, F_DUPFD_CLOEXEC, 16)) {
    if (file >= 0) ::close(file);
  }
  ~Handle() { close(); }
  Handle(Handle const&) = delete;
  Handle& operator=(Handle const&) = delete;
  void close() {
    if (m_file >= 0) ::close(m_file);
    m_file = -1;
  }
  int get() const { return m_file; }

 private:
  int m_file = -1;
};

bool writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    ssize_t const count = write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::string readerProgram() {
  SbString const own =
      SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&readInProcess));
  return SoPreferences::getString("KSV_FOREIGN_READER", SbFileHelper::getDirName(own) + "qor_foreign_reader")
      .str();
}

int secondsFor(SoImporter::File const& file) {
  int const atLeast = std::max(1, SoPreferences::getInt("KSV_FOREIGN_READER_SECONDS", 60));
  struct stat status {};
  constexpr long BYTES_A_SECOND = 50000, LONGEST = 100000;
  long const size = stat(file.name.c_str(), &status) == 0 ? static_cast<long>(status.st_size) : 0;
  return atLeast + static_cast<int>(std::min(size / BYTES_A_SECOND, LONGEST));
}

/// One run of the program.
class Run {
 public:
  Run(SoImporter::File const& file, std::function<void(double)> const& progress)
      : m_file(file), m_progress(progress), m_seconds(secondsFor(file)) {}

  bool start();
  /// Takes the messages, waits for the end and answers the scene.
  SoRef<SoNode> finish(SbString& fault);

 private:
  void takeMessages();
  void takeMessage(std::string_view line);
  SoRef<SoNode> readScene(SbString& fault) const;

  SoImporter::File const& m_file;
  std::function<void(double)> const& m_progress;
  int const m_seconds;
  std::unique_ptr<Handle> m_messages, m_scene;
  pid_t m_process = 0;
  SbString m_fault;
};

bool Run::start() {
  std::string const program = readerProgram();
  if (access(program.c_str(), X_OK) != 0) return false;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  m_messages = std::make_unique<Handle>(ends[0]);
  Handle const toMessages(ends[1]);
  m_scene = std::make_unique<Handle>(memfd_create("scene", MFD_CLOEXEC));
  auto const text = SoSearchPath::getInMemoryText(m_file.name);
  Handle const model(text ? memfd_create("model", MFD_CLOEXEC) : -1);
  if (m_messages->get() < 0 || toMessages.get() < 0 || m_scene->get() < 0) return false;
  if (text && (model.get() < 0 || !writeAll(model.get(), *text) || lseek(model.get(), 0, SEEK_SET) != 0))
    return false;

  std::vector<std::string> words{
      program,          m_file.name.str(),        m_file.innerName.str(), m_file.isPacked ? "1" : "0",
      text ? "1" : "0", std::to_string(m_seconds)};
  for (std::string const& folder : SoSearchPath::getFolders()) words.push_back(folder);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, toMessages.get(), ReaderChannel::MESSAGES);
  posix_spawn_file_actions_adddup2(&files, m_scene->get(), ReaderChannel::SCENE);
  if (text) posix_spawn_file_actions_adddup2(&files, model.get(), ReaderChannel::MODEL);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  int const failed = posix_spawn(&m_process, program.c_str(), &files, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return failed == 0;
}

void Run::takeMessage(std::string_view line) {
  if (line.size() < 2) return;
  std::string const text(line.substr(2));
  switch (line[0]) {
    case 'p':
      return m_progress(std::strtod(text.c_str(), nullptr));
    case 'e':
      return SoReadError::post("%s", text.c_str());
    case 'w':
      return SoDebugError::postWarning("foreign_formats", "%s", text.c_str());
    case 'i':
      return SoDebugError::postInfo("foreign_formats", "%s", text.c_str());
    case 'f':
      m_fault = SbString(text);
      return;
    default:
      return;
  }
}

void Run::takeMessages() {
  std::string pending;
  char part[4096];
  for (;;) {
    ssize_t const count = ::read(m_messages->get(), part, sizeof part);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    pending.append(part, static_cast<std::size_t>(count));
    for (std::size_t end; (end = pending.find('\n')) != pending.npos; pending.erase(0, end + 1))
      takeMessage(std::string_view(pending).substr(0, end));
  }
}

SoRef<SoNode> Run::readScene(SbString& fault) const {
  struct stat status {};
  if (fstat(m_scene->get(), &status) != 0 || status.st_size <= 0) return {};
  auto const size = static_cast<std::size_t>(status.st_size);
  void* const bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, m_scene->get(), 0);
  if (bytes == MAP_FAILED) {
    fault = "there is not enough memory for the model";
    return {};
  }
  SoRef<SoNode> root;
  {
    SoInput in;
    in.setBuffer(std::string_view(static_cast<char const*>(bytes), size), true);
    root = SoRef<SoNode>(SoReader(in).readAll());
  }
  munmap(bytes, size);
  return root;
}

SoRef<SoNode> Run::finish(SbString& fault) {
  takeMessages();
  int status = 0;
  pid_t ended;
  while ((ended = waitpid(m_process, &status, 0)) < 0 && errno == EINTR) {
  }
  // A host may collect all of its children itself; what was sent tells enough then.
  bool const isKnown = ended == m_process;
  SoRef<SoNode> root;
  if (isKnown && WIFSIGNALED(status)) {
    fault = WTERMSIG(status) == SIGXCPU
                ? SbString::format("reading takes more than %d seconds: the file is damaged, or too large",
                                   m_seconds)
                : SbString::format("the reader of this format failed (signal %d): the file is damaged",
                                   WTERMSIG(status));
  } else if (!m_fault.empty()) {
    fault = m_fault;
  } else {
    root = readScene(fault);
    if (!root && fault.empty())
      fault = SbString::format("the reader of this format failed (status %d)",
                               isKnown ? WEXITSTATUS(status) : -1);
  }
  if (root) m_progress(100);
  return root;
}

} // namespace

bool readInProcess(SoImporter::File const& file, std::function<void(double)> const& progress,
                   SoRef<SoNode>& root, SbString& fault) {
  Run run(file, progress);
  if (!run.start()) return false;
  root = run.finish(fault);
  return true;
}
