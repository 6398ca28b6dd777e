#include "modules/foreign_formats/LargeStack.h"

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>

namespace {

struct Job {
  std::function<void()> const& work;
  std::mutex mutex;
  std::condition_variable changed;
  std::exception_ptr thrown;
  bool done = false;
};

void* runJob(void* data) {
  Job& job = *static_cast<Job*>(data);
  try {
    job.work();
  } catch (...) {
    job.thrown = std::current_exception();
  }
  // Told with the lock held: the job goes away as soon as the waiting thread has it.
  std::lock_guard lock(job.mutex);
  job.done = true;
  job.changed.notify_all();
  return nullptr;
}

/// Address space only: pages are taken as the stack grows.
bool startThread(pthread_t& thread, Job& job) {
  for (std::size_t megabytes : {1024, 256, 64}) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, megabytes << 20);
    bool const started = pthread_create(&thread, &attributes, runJob, &job) == 0;
    pthread_attr_destroy(&attributes);
    if (started) return true;
  }
  return false;
}

} // namespace

void runOnLargeStack(std::function<void()> const& work, std::function<void()> const& whileWaiting) {
  Job job{work, {}, {}, {}};
  pthread_t thread;
  if (!startThread(thread, job)) return work();
  {
    std::unique_lock lock(job.mutex);
    while (!job.done) {
      job.changed.wait_for(lock, std::chrono::milliseconds(50));
      if (job.done || !whileWaiting) continue;
      lock.unlock();
      whileWaiting();
      lock.lock();
    }
  }
  pthread_join(thread, nullptr);
  if (job.thrown) std::rethrow_exception(job.thrown);
}
