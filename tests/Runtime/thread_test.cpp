// Faults looked for: hooks run in the wrong order, lost when their list grows, or run without lists; a
// priority that makes thread creation fail or a detached thread joinable; nanoseconds that do not carry; a
// mutex that its owner cannot lock again; values of one thread's key seen by another; nice values at the edge
// of a class; a sleep that a signal cuts short.
#include "Runtime/os_thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <limits>
#include <string>
#include <vector>

namespace {

std::vector<std::string> trace;

/// Runs its body with fresh, empty hook lists, and without any afterwards.
class ThreadHooks : public testing::Test {
 protected:
  ThreadHooks() {
    vlm::free_thread_hook_lists();
    KThread_initStartStopFunctions();
    trace.clear();
  }
  ~ThreadHooks() override { vlm::free_thread_hook_lists(); }
};

void run_and_join(void (*entry)(void*), void* argument, uint32_t flags = KTHREAD_PRIORITY_NORMAL) {
  KThread* const thread = KThreadCreate(entry, argument, flags);
  ASSERT_NE(thread, nullptr);
  EXPECT_EQ(KThreadWaitForExit(thread), 1);
  EXPECT_EQ(KThreadWaitForExit(thread), 0);
  Delete_KThread(thread);
}

TEST_F(ThreadHooks, RunAroundTheEntryFirstToLastAndBack) {
  EXPECT_EQ(vlm::add_thread_start_hook([] { trace.push_back("start 1"); }), 1u);
  EXPECT_EQ(vlm::add_thread_start_hook([] { trace.push_back("start 2"); }), 2u);
  EXPECT_EQ(vlm::add_thread_stop_hook([] { trace.push_back("stop 1"); }), 1u);
  EXPECT_EQ(vlm::add_thread_stop_hook([] { trace.push_back("stop 2"); }), 2u);
  std::string word = "entry";
  run_and_join([](void* argument) { trace.push_back(*static_cast<std::string*>(argument)); }, &word);
  EXPECT_EQ(trace, (std::vector<std::string>{"start 1", "start 2", "entry", "stop 2", "stop 1"}));

  trace.clear();
  vlm::call_thread_stop_hook(1);
  vlm::call_thread_stop_hook(0);
  vlm::call_thread_stop_hook(3);
  EXPECT_EQ(trace, (std::vector<std::string>{"stop 1"}));
}

int calls[9];
template <int I> void numbered_hook() { ++calls[I]; }

TEST_F(ThreadHooks, ANinthHookKeepsTheFirstEight) {
  constexpr vlm::thread_hook hooks[] = {numbered_hook<0>, numbered_hook<1>, numbered_hook<2>,
                                        numbered_hook<3>, numbered_hook<4>, numbered_hook<5>,
                                        numbered_hook<6>, numbered_hook<7>, numbered_hook<8>};
  uint32_t count = 0;
  for (vlm::thread_hook hook : hooks) EXPECT_EQ(vlm::add_thread_stop_hook(hook), ++count);
  KThread_initStartStopFunctions();  // keeps the lists
  EXPECT_EQ(vlm::thread_stop_hook_position(numbered_hook<8>), 9u);
  vlm::run_thread_stop_hooks();
  for (int i = 0; i < 9; ++i) EXPECT_EQ(calls[i], 1) << i;
}

TEST_F(ThreadHooks, WithoutListsNothingRunsAndNothingIsAdded) {
  vlm::free_thread_hook_lists();
  EXPECT_EQ(vlm::add_thread_start_hook([] {}), 0u);
  EXPECT_EQ(vlm::add_thread_stop_hook([] {}), 0u);
  EXPECT_EQ(vlm::thread_stop_hook_position(numbered_hook<0>), 0u);
  vlm::run_thread_stop_hooks();
  vlm::call_thread_stop_hook(1);
  int ran = 0;
  run_and_join([](void* argument) { ++*static_cast<int*>(argument); }, &ran);
  EXPECT_EQ(ran, 1);
}

TEST_F(ThreadHooks, ARawExitMissesTheStopHooks) {
  vlm::add_thread_stop_hook([] { trace.push_back("stop"); });
  run_and_join(
      [](void*) {
        trace.push_back("entry");
        KThreadRawExit();
      },
      nullptr);
  EXPECT_EQ(trace, (std::vector<std::string>{"entry"}));
}

TEST(KThreads, EveryPriorityStartsAThreadAlsoDetached) {
  for (uint32_t priority = 1; priority <= 7; ++priority) {
    std::atomic<int> ran{0};
    run_and_join([](void* argument) { ++*static_cast<std::atomic<int>*>(argument); }, &ran, priority);
    EXPECT_EQ(ran, 1);
    KThread* const detached = KThreadCreate(
        [](void* argument) {
          int state = -1;
          pthread_attr_t attributes;
          pthread_getattr_np(pthread_self(), &attributes);
          pthread_attr_getdetachstate(&attributes, &state);
          pthread_attr_destroy(&attributes);
          *static_cast<std::atomic<int>*>(argument) = state == PTHREAD_CREATE_DETACHED ? 2 : 3;
        },
        &ran, priority | KTHREAD_DETACHED);
    ASSERT_NE(detached, nullptr);
    EXPECT_EQ(KThreadWaitForExit(detached), 0);
    while (ran == 1) KThread_Sleep(1);
    EXPECT_EQ(ran, 2);
    Delete_KThread(detached);
  }
  Delete_KThread(nullptr);
  EXPECT_EQ(KThreadWaitForExit(nullptr), 0);
}

TEST(KThreads, HaveIdsOfTheirOwn) {
  int64_t id = KThreadID();
  EXPECT_EQ(id, KThreadID());
  int64_t other = id;
  run_and_join([](void* argument) { *static_cast<int64_t*>(argument) = KThreadID(); }, &other);
  EXPECT_NE(other, id);
}

TEST(KThreads, BadCallsAreAssertionsOrTheirDocumentedAnswers) {
#if defined(VELORIM_DEBUG_CHECKS)
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(KThreadCreate([](void*) {}, nullptr, KTHREAD_DETACHED),
               "\"flags & KTHREAD_PRIORITY_NORMAL\" in KThreadCreate");
  EXPECT_DEATH(setProcessPriorityClass(3), "\"FALSE\" in setProcessPriorityClass");
#else
  EXPECT_EQ(KThreadCreate([](void*) {}, nullptr, KTHREAD_DETACHED), nullptr);
  EXPECT_EQ(setProcessPriorityClass(3), 0);
  EXPECT_EQ(setProcessPriorityClass(-3), 0);
#endif
  EXPECT_EQ(KThreadCreate(nullptr, nullptr, KTHREAD_PRIORITY_NORMAL), nullptr);
}

TEST(KMutexes, AreRecursive) {
  KMutex* const mutex = New_KMutex();
  ASSERT_NE(mutex, nullptr);
  struct Probe {
    KMutex* mutex;
    int32_t taken;
    int32_t unlocked;
  } probe{mutex, -1, EPERM};
  const auto try_elsewhere = [&] {
    run_and_join(
        [](void* argument) {
          Probe& p = *static_cast<Probe*>(argument);
#if !defined(__SANITIZE_THREAD__)  // which takes the refused unlock for a fault of the program
          p.unlocked = KMutexUnlock(p.mutex);
#endif
          p.taken = KMutexTryLock(p.mutex);
          if (p.taken) KMutexUnlock(p.mutex);
        },
        &probe);
    EXPECT_EQ(probe.unlocked, EPERM);
    return probe.taken;
  };
  EXPECT_EQ(KMutexLock(mutex), 0);
  EXPECT_EQ(KMutexLock(mutex), 0);
  EXPECT_EQ(KMutexTryLock(mutex), 1);
  for (int held = 3; held > 0; --held) {
    EXPECT_EQ(try_elsewhere(), 0) << held;
    EXPECT_EQ(KMutexUnlock(mutex), 0);
  }
  EXPECT_EQ(try_elsewhere(), 1);
  Delete_KMutex(mutex);
  Delete_KMutex(nullptr);
}

struct Meeting {
  KMutex* mutex = New_KMutex();
  KCondition* condition = New_KCondition();
  bool arrived = false;
  ~Meeting() {
    Delete_KCondition(condition);
    Delete_KMutex(mutex);
  }
};

void arrive(void* argument) {
  Meeting& meeting = *static_cast<Meeting*>(argument);
  KMutexLock(meeting.mutex);
  meeting.arrived = true;
  EXPECT_EQ(KConditionSignal(meeting.condition), 0);
  KMutexUnlock(meeting.mutex);
}

TEST(KConditions, WaitsEndBySignalOrByTime) {
  for (bool timed : {false, true}) {
    Meeting meeting;
    KMutexLock(meeting.mutex);
    KThread* const thread = KThreadCreate(arrive, &meeting, KTHREAD_PRIORITY_NORMAL);
    while (!meeting.arrived) {
      if (timed) {
        EXPECT_EQ(KConditionTimedWait(meeting.condition, meeting.mutex, 3600'000), 0);
      } else {
        EXPECT_EQ(KConditionWait(meeting.condition, meeting.mutex), 0);
      }
    }
    EXPECT_EQ(KConditionTimedWait(meeting.condition, meeting.mutex, 0), 1);
    EXPECT_EQ(KConditionTimedWait(meeting.condition, meeting.mutex, -5), 1);
    EXPECT_EQ(KConditionTimedWait(meeting.condition, meeting.mutex, 3), 1);
    KMutexUnlock(meeting.mutex);
    KThreadWaitForExit(thread);
    Delete_KThread(thread);
  }
  Delete_KCondition(nullptr);
}

TEST(TimedWait, NanosecondsCarryIntoSeconds) {
  struct Case {
    timespec start;
    int64_t milliseconds;
    timespec end;
  };
  constexpr time_t last = std::numeric_limits<time_t>::max();
  for (const Case c :
       {Case{{100, 700'000'000}, 1500, {102, 200'000'000}}, Case{{100, 700'000'000}, 299, {100, 999'000'000}},
        Case{{100, 700'000'000}, 300, {101, 0}}, Case{{100, 999'999'999}, 1, {101, 999'999}},
        Case{{100, 5}, 0, {100, 5}}, Case{{100, 5}, -2500, {100, 5}}, Case{{100, 0}, 86'400'000, {86'500, 0}},
        Case{{last - 1, 0}, 5000, {last, 0}}}) {
    const timespec end = vlm::time_after(c.start, c.milliseconds);
    EXPECT_EQ(end.tv_sec, c.end.tv_sec) << c.milliseconds;
    EXPECT_EQ(end.tv_nsec, c.end.tv_nsec) << c.milliseconds;
  }
}

TEST(Keys, HoldAValueForEachThread) {
  KThreadLocalStorage* const key = New_KThreadLocalStorage();
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(KThreadLocalStorageGet(key), nullptr);
  int mine = 0;
  EXPECT_EQ(KThreadLocalStorageSet(key, &mine), 0);
  struct Probe {
    KThreadLocalStorage* key;
    void* first;
    void* second;
  } probe{key, &mine, nullptr};
  run_and_join(
      [](void* argument) {
        Probe& p = *static_cast<Probe*>(argument);
        p.first = KThreadLocalStorageGet(p.key);
        KThreadLocalStorageSet(p.key, &p);
        p.second = KThreadLocalStorageGet(p.key);
      },
      &probe);
  EXPECT_EQ(probe.first, nullptr);
  EXPECT_EQ(probe.second, &probe);
  EXPECT_EQ(KThreadLocalStorageGet(key), &mine);
  Delete_KThreadLocalStorage(key);
  EXPECT_EQ(KThreadLocalStorageGet(nullptr), nullptr);
  EXPECT_EQ(KThreadLocalStorageSet(nullptr, &mine), EINVAL);
  Delete_KThreadLocalStorage(nullptr);
}

TEST(Priority, ClassesOfNiceValues) {
  const std::pair<int, int32_t> cases[] = {{-20, 2}, {-10, 2}, {-9, 1}, {-4, 1},  {-1, 1},
                                           {0, 0},   {1, -1},  {4, -1}, {18, -1}, {19, -2}};
  for (const auto& [nice, priority_class] : cases) {
    EXPECT_EQ(vlm::priority_class_of_nice(nice), priority_class) << nice;
  }
}

TEST(Priority, LoweringSetsTheNiceValue) {
  // In a child, since a process without privilege cannot raise its priority again.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (getpriority(PRIO_PROCESS, 0) > 4) _exit(0);  // too low already to see a change
    const bool lower = setProcessPriorityClass(-1) == 1 && getpriority(PRIO_PROCESS, 0) == 4 &&
                       getProcessPriorityClass() == -1;
    const bool lowest = setProcessPriorityClass(-2) == 1 && getpriority(PRIO_PROCESS, 0) == 19 &&
                        getProcessPriorityClass() == -2;
    _exit(lower && lowest ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(RosettaQ(), 0);
}

TEST(Sleep, GoesOnAfterASignal) {
  struct sigaction action = {}, previous;
  action.sa_handler = [](int) {};
  sigaction(SIGUSR1, &action, &previous);
  const pthread_t sleeper = pthread_self();
  const auto start = std::chrono::steady_clock::now();
  KThread* const waker = KThreadCreate(
      [](void* argument) {
        for (int i = 0; i < 3; ++i) {
          KThread_Sleep(20);
          pthread_kill(*static_cast<const pthread_t*>(argument), SIGUSR1);
        }
      },
      const_cast<pthread_t*>(&sleeper), KTHREAD_PRIORITY_NORMAL);
  KThread_Sleep(150);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
  KThreadWaitForExit(waker);
  Delete_KThread(waker);
  KThread_Sleep(0);
  KThread_Sleep(-1);
  sigaction(SIGUSR1, &previous, nullptr);
}

}  // namespace
