// Threads, mutexes, conditions and keys over POSIX threads, and the priority of the process. Every record
// comes from the system allocator: the library's own allocator stands on this layer.
#include "Runtime/os_thread.h"

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

#include "Includes/assertion.h"

struct KThread {
  pthread_t id;
  bool joinable;
};
struct KMutex {
  pthread_mutex_t mutex;
};
struct KCondition {
  pthread_cond_t condition;
};
struct KThreadLocalStorage {
  pthread_key_t key;
};

namespace {

template <class Record> Record* new_record() {
  void* const storage = std::malloc(sizeof(Record));
  return storage == nullptr ? nullptr : new (storage) Record;
}

/// What a new thread is to run; the new thread frees it.
struct start_record {
  void (*entry)(void* argument);
  void* argument;
};

/// Not noexcept: KThreadRawExit unwinds through it.
void* run_thread(void* record) {
  // Copied and freed first, so that a thread which leaves by KThreadRawExit leaks nothing.
  const start_record start = *static_cast<start_record*>(record);
  std::free(record);
  vlm::run_thread_start_hooks();
  start.entry(start.argument);
  vlm::run_thread_stop_hooks();
  return nullptr;
}

/// Default attributes but for the detached state, which a caller relies on: nobody joins such a thread.
class thread_attributes {
 public:
  explicit thread_attributes(bool detached) {
    pthread_attr_init(&attributes_);
    if (detached) pthread_attr_setdetachstate(&attributes_, PTHREAD_CREATE_DETACHED);
  }
  ~thread_attributes() { pthread_attr_destroy(&attributes_); }
  thread_attributes(const thread_attributes&) = delete;
  thread_attributes& operator=(const thread_attributes&) = delete;

  /// Moves the scheduling priority; false if the policy has no such level.
  bool shift_priority(int offset) {
    sched_param parameters;
    if (pthread_attr_getschedparam(&attributes_, &parameters) != 0) return false;
    parameters.sched_priority += offset;
    return pthread_attr_setschedparam(&attributes_, &parameters) == 0 &&
           pthread_attr_setinheritsched(&attributes_, PTHREAD_EXPLICIT_SCHED) == 0;
  }
  const pthread_attr_t* get() const { return &attributes_; }

 private:
  pthread_attr_t attributes_;
};

int priority_offset(uint32_t flags) {
  if (flags & KTHREAD_PRIORITY_LOW) return -1;
  if (flags & KTHREAD_PRIORITY_HIGH) return 1;
  return 0;
}

/// Starts the thread with the shifted priority where that is permitted, otherwise with the default one.
bool start_thread(KThread& thread, start_record* record, uint32_t flags) {
  const bool detached = (flags & KTHREAD_DETACHED) != 0;
  thread.joinable = !detached;
  if (const int offset = priority_offset(flags); offset != 0) {
    thread_attributes attributes(detached);
    if (attributes.shift_priority(offset) &&
        pthread_create(&thread.id, attributes.get(), run_thread, record) == 0) {
      return true;
    }
  }
  const thread_attributes attributes(detached);
  return pthread_create(&thread.id, attributes.get(), run_thread, record) == 0;
}

/// Nice values by priority class, from class -2 up.
constexpr int class_nice_values[] = {19, 4, 0, -4, -10};

}  // namespace

namespace vlm {

timespec time_after(timespec start, int64_t milliseconds) {
  if (milliseconds <= 0) return start;
  constexpr long nanoseconds_per_second = 1'000'000'000;
  time_t seconds = static_cast<time_t>(milliseconds / 1000);
  long nanoseconds = start.tv_nsec + static_cast<long>(milliseconds % 1000) * 1'000'000;
  if (nanoseconds >= nanoseconds_per_second) {
    nanoseconds -= nanoseconds_per_second;
    ++seconds;
  }
  timespec end;
  end.tv_nsec = nanoseconds;
  if (__builtin_add_overflow(start.tv_sec, seconds, &end.tv_sec)) {
    end.tv_sec = std::numeric_limits<time_t>::max();
  }
  return end;
}

int32_t priority_class_of_nice(int nice) {
  if (nice <= -10) return 2;
  if (nice < 0) return 1;
  if (nice == 0) return 0;
  return nice < 19 ? -1 : -2;
}

}  // namespace vlm

KThread* KThreadCreate(void (*entry)(void* argument), void* argument, uint32_t flags) noexcept {
  const bool has_priority =
      (flags & (KTHREAD_PRIORITY_HIGH | KTHREAD_PRIORITY_NORMAL | KTHREAD_PRIORITY_LOW)) != 0;
  VELORIM_ASSERT(has_priority, "flags & KTHREAD_PRIORITY_NORMAL", "KThreadCreate");
  if (!has_priority || entry == nullptr) return nullptr;
  KThread* const thread = new_record<KThread>();
  start_record* const record = new_record<start_record>();
  if (thread != nullptr && record != nullptr) {
    *record = {entry, argument};
    if (start_thread(*thread, record, flags)) return thread;
  }
  std::free(record);
  std::free(thread);
  return nullptr;
}

int32_t KThreadWaitForExit(KThread* thread) noexcept {
  if (thread == nullptr || !thread->joinable) return 0;
  thread->joinable = false;
  pthread_join(thread->id, nullptr);
  return 1;
}

void Delete_KThread(KThread* thread) noexcept { std::free(thread); }

void KThreadRawExit(void) { pthread_exit(nullptr); }

int64_t KThreadID(void) noexcept { return static_cast<int64_t>(pthread_self()); }

void KThread_Sleep(int32_t milliseconds) noexcept {
  timespec left = vlm::time_after({0, 0}, milliseconds);
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

KMutex* New_KMutex(void) noexcept {
  KMutex* const mutex = new_record<KMutex>();
  if (mutex == nullptr) return nullptr;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(&mutex->mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
  return mutex;
}

void Delete_KMutex(KMutex* mutex) noexcept {
  if (mutex == nullptr) return;
  pthread_mutex_destroy(&mutex->mutex);
  std::free(mutex);
}

int32_t KMutexLock(KMutex* mutex) noexcept { return pthread_mutex_lock(&mutex->mutex); }

int32_t KMutexUnlock(KMutex* mutex) noexcept { return pthread_mutex_unlock(&mutex->mutex); }

int32_t KMutexTryLock(KMutex* mutex) noexcept { return pthread_mutex_trylock(&mutex->mutex) == 0; }

KCondition* New_KCondition(void) noexcept {
  KCondition* const condition = new_record<KCondition>();
  if (condition != nullptr) pthread_cond_init(&condition->condition, nullptr);
  return condition;
}

void Delete_KCondition(KCondition* condition) noexcept {
  if (condition == nullptr) return;
  pthread_cond_destroy(&condition->condition);
  std::free(condition);
}

int32_t KConditionWait(KCondition* condition, KMutex* mutex) noexcept {
  return pthread_cond_wait(&condition->condition, &mutex->mutex);
}

int32_t KConditionTimedWait(KCondition* condition, KMutex* mutex, int64_t milliseconds) noexcept {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  const timespec end = vlm::time_after(now, milliseconds);
  return pthread_cond_timedwait(&condition->condition, &mutex->mutex, &end) == ETIMEDOUT;
}

int32_t KConditionSignal(KCondition* condition) noexcept {
  return pthread_cond_signal(&condition->condition);
}

KThreadLocalStorage* New_KThreadLocalStorage(void) noexcept {
  KThreadLocalStorage* const storage = new_record<KThreadLocalStorage>();
  if (storage == nullptr) return nullptr;
  // The system has a fixed number of keys; a handle without one must not pass for that of another.
  if (pthread_key_create(&storage->key, nullptr) == 0) return storage;
  std::free(storage);
  return nullptr;
}

void Delete_KThreadLocalStorage(KThreadLocalStorage* key) noexcept {
  if (key == nullptr) return;
  pthread_key_delete(key->key);
  std::free(key);
}

int32_t KThreadLocalStorageSet(KThreadLocalStorage* key, void* value) noexcept {
  return key == nullptr ? EINVAL : pthread_setspecific(key->key, value);
}

void* KThreadLocalStorageGet(KThreadLocalStorage* key) noexcept {
  return key == nullptr ? nullptr : pthread_getspecific(key->key);
}

int32_t getProcessPriorityClass(void) noexcept {
  errno = 0;
  const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
  const bool known = errno == 0;
  VELORIM_ASSERT(known, "errno == 0", "getProcessPriorityClass");
  return known ? vlm::priority_class_of_nice(nice) : 0;
}

int32_t setProcessPriorityClass(int32_t priorityClass) noexcept {
  const bool known = priorityClass >= -2 && priorityClass <= 2;
  VELORIM_ASSERT(known, "FALSE", "setProcessPriorityClass");
  if (!known) return 0;
  return setpriority(PRIO_PROCESS, static_cast<id_t>(getpid()), class_nice_values[priorityClass + 2]) == 0;
}

int32_t RosettaQ(void) noexcept { return 0; }
