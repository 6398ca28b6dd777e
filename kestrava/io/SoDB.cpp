#include "kestrava/io/SoDB.h"

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoError.h"
#include "kestrava/io/SoImporter.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoSearchPath.h"

namespace {

std::atomic<bool> initialized{false};

/// What this thread reads.
struct Reading {
  std::vector<SbString> files;
  std::map<std::string, SoRef<SoNode>> included;  // by canonical name; null after a fault
};
thread_local Reading reading;

bool isSameFile(SbString const& a, SbString const& b) {
  std::error_code ignored;
  return a == b || std::filesystem::equivalent(a.str(), b.str(), ignored);
}

std::string canonicalName(SbString const& name) {
  std::error_code failed;
  auto const path = std::filesystem::canonical(name.str(), failed);
  return failed ? name.str() : path.string();  // in-memory files have no path
}

/// The root of what an importer makes of a file that is none of the toolkit's own; the stream's fault becomes
/// that of the importer, or none.
SoNode* import(SoInput& in) {
  SbString fault;
  SoRef<SoNode> root = SoImporter::readFile(
      in.getCurFileName(), [&in](double percent) { in.updateReadPercent(percent); }, fault);
  if (!root && fault.empty()) return nullptr;
  in.replaceFault(fault);
  return root.release();
}

/// Shared by readers, exclusive for a writer, recursive for both.
class DatabaseLock {
 public:
  void lock() {
    std::unique_lock guard(m_mutex);
    auto const self = std::this_thread::get_id();
    if (m_writer != self) {
      int const own = s_reads > 0 ? 1 : 0;
      ++m_waiting;
      m_changed.wait(guard, [&] { return m_depth == 0 && m_readers == own; });
      --m_waiting;
      m_writer = self;
    }
    ++m_depth;
  }

  void unlock() {
    std::lock_guard guard(m_mutex);
    if (m_writer != std::this_thread::get_id()) return;
    if (--m_depth > 0) return;
    m_writer = {};
    m_changed.notify_all();
  }

  void lockShared() {
    // A thread that reads already goes on even when a writer waits, which would else wait for it.
    if (s_reads++ > 0) return;
    std::unique_lock guard(m_mutex);
    bool const writing = m_writer == std::this_thread::get_id();
    if (!writing) m_changed.wait(guard, [&] { return m_depth == 0 && m_waiting == 0; });
    ++m_readers;
  }

  void unlockShared() {
    if (s_reads == 0 || --s_reads > 0) return;
    std::lock_guard guard(m_mutex);
    --m_readers;
    m_changed.notify_all();
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::thread::id m_writer;
  int m_depth = 0;    // of the writer
  int m_readers = 0;  // threads that read
  int m_waiting = 0;  // writers that wait
  static thread_local int s_reads;
};

thread_local int DatabaseLock::s_reads = 0;

DatabaseLock& databaseLock() {
  static DatabaseLock& instance = *new DatabaseLock;
  return instance;
}

}  // namespace

void SoDB::init() { initialized = true; }
void SoDB::finish() { initialized = false; }
bool SoDB::isInitialized() { return initialized; }

SoNode* SoDB::readAll(SoInput* in, bool* hasAddedRoot) {
  if (hasAddedRoot) *hasAddedRoot = false;
  if (!in) return nullptr;
  reading.files.push_back(in->getCurFileName());
  // What the toolkit can not read itself has failed when it was opened.
  SoNode* root = in->hasFailed() && in->isOpen() ? import(*in) : nullptr;
  if (!root) {
    SoReader reader(*in);
    root = reader.readAll();
    if (hasAddedRoot) *hasAddedRoot = reader.hasAddedRoot();
  }
  reading.files.pop_back();
  if (reading.files.empty()) reading.included.clear();
  return root;
}

std::vector<SbString> const& SoDB::getFilesBeingRead() { return reading.files; }

SoRef<SoNode> SoDB::readIncluded(SbString const& name, std::vector<SbString> includers, SbString& fullName) {
  fullName = SbString();
  SbString const by = includers.empty() ? SbString() : includers.back();
  auto complain = [&by](SbString const& file, char const* what) {
    SoReadError::post("%s%sthe included file '%s' %s", by.c_str(), by.empty() ? "" : ": ", file.c_str(),
                      what);
    return SoRef<SoNode>();
  };
  SbString const wanted = SbFileHelper::expandString(name);
  SbString const beside = SoSearchPath::getInMemoryText(wanted) ? wanted : SoSearchPath::findBeside(by, wanted);
  SoInput in;
  if (beside.empty() || !in.openFile(beside.c_str(), true, false)) return complain(name, "is not found");
  SbString const found = in.getCurFileName();
  for (SbString const& includer : includers) {
    if (isSameFile(includer, found)) return complain(found, "includes itself");
  }
  if (static_cast<int>(includers.size()) >= MAX_INCLUDES)
    return complain(found, "is included too deep in other files");
  bool const isInner = !reading.files.empty();
  std::string const key = canonicalName(found);
  auto known = reading.included.find(key);
  if (!isInner || known == reading.included.end()) {
    in.setIncludedBy(by);
    std::swap(reading.files, includers);
    SoRef<SoNode> const root(readAll(&in));
    std::swap(reading.files, includers);
    if (!isInner) {
      reading.included.clear();
      if (root) fullName = found;
      return root;
    }
    known = reading.included.insert_or_assign(key, root).first;
  }
  if (known->second) fullName = found;
  return known->second;
}

void SoDB::writelock() { databaseLock().lock(); }
void SoDB::writeunlock() { databaseLock().unlock(); }
void SoDB::readlock() { databaseLock().lockShared(); }
void SoDB::readunlock() { databaseLock().unlockShared(); }
