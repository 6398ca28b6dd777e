#include "kestrava/io/SoDB.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoReader.h"

namespace {

std::atomic<bool> initialized{false};
thread_local std::vector<SbString> filesBeingRead;

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

SoNode* SoDB::readAll(SoInput* in) {
  if (!in) return nullptr;
  filesBeingRead.push_back(in->getCurFileName());
  SoNode* const root = SoReader(*in).readAll();
  filesBeingRead.pop_back();
  return root;
}

std::vector<SbString> const& SoDB::getFilesBeingRead() { return filesBeingRead; }

void SoDB::writelock() { databaseLock().lock(); }
void SoDB::writeunlock() { databaseLock().unlock(); }
void SoDB::readlock() { databaseLock().lockShared(); }
void SoDB::readunlock() { databaseLock().unlockShared(); }
