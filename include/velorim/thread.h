/* Threads, recursive mutexes, condition variables, thread-local keys and the priority of the process: a thin layer over
 * POSIX threads.
 *
 * Conventions:
 *  - Handles are opaque. New_X makes one and Delete_X releases it; a null handle given to Delete_X is ignored. Their records
 *    come from the system allocator and never count in MemoryInUse. Null from New_X or KThreadCreate: the system has no more.
 *  - Functions that return a platform status return that of the POSIX call beneath: 0, or an errno value.
 *  - Times are milliseconds.
 *  - Every function may be called on any thread unless its comment says otherwise. */
#ifndef VELORIM_THREAD_H
#define VELORIM_THREAD_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

typedef struct KThread KThread;
typedef struct KMutex KMutex;
typedef struct KCondition KCondition;
typedef struct KThreadLocalStorage KThreadLocalStorage;

/** Flags of KThreadCreate: at least one priority, and KTHREAD_DETACHED for a thread that nobody waits for. Of several
 *  priorities, low decides before high and high before normal. High and low lie one level above and below the default
 *  priority; where the scheduling policy of the process has no such level, the thread gets the default one. */
enum {
  KTHREAD_PRIORITY_HIGH = 1,
  KTHREAD_PRIORITY_NORMAL = 2,
  KTHREAD_PRIORITY_LOW = 4,
  KTHREAD_DETACHED = 8
};

/** Starts a thread that runs the registered thread-start functions of the library in their order, then entry(argument),
 *  then the thread-stop functions, last registered first; the last of them gives back the thread's memory heap.
 *  returns the thread, to be released with Delete_KThread; NULL if the system refuses, and, but for an assertion in debug
 *  builds, if entry is NULL or flags hold no priority. */
KThread* KThreadCreate(void (*entry)(void* argument), void* argument, uint32_t flags) VLM_NOEXCEPT;

/** Waits until the thread has ended. To be called once, on another thread.
 *  returns 1; 0 at once for NULL, for a detached thread, and for one that was waited for before. */
int32_t KThreadWaitForExit(KThread* thread) VLM_NOEXCEPT;

/** Releases the handle and leaves the thread alone: a thread that is neither detached nor waited for keeps its stack. */
void Delete_KThread(KThread* thread) VLM_NOEXCEPT;

/** Ends the calling thread at once, without the thread-stop functions: its memory heap stays until the library goes down.
 *  Does not return; unwinds the stack, so no caller of it may be noexcept. */
#ifdef __cplusplus
[[noreturn]] void KThreadRawExit(void);
#else
_Noreturn void KThreadRawExit(void);
#endif

/** The calling thread's id, as pthread_self gives it; unique among live threads. */
int64_t KThreadID(void) VLM_NOEXCEPT;

/** Sleeps for the whole time, also when signals arrive. Zero and negative times return at once. */
void KThread_Sleep(int32_t milliseconds) VLM_NOEXCEPT;

/** Creates the two lists of functions that run when a thread starts and ends; lists that exist are kept. Part of
 *  initialisation: no other thread may be in the library. Ends the process through nomem (memory.h) if memory fails. */
void KThread_initStartStopFunctions(void) VLM_NOEXCEPT;

/** A recursive mutex: its owner may lock it again and unlocks it as often. It must be unlocked when it is deleted. */
KMutex* New_KMutex(void) VLM_NOEXCEPT;
void Delete_KMutex(KMutex* mutex) VLM_NOEXCEPT;
/** Lock and unlock.       returns the platform status; EPERM when a thread unlocks what it does not own. */
int32_t KMutexLock(KMutex* mutex) VLM_NOEXCEPT;
int32_t KMutexUnlock(KMutex* mutex) VLM_NOEXCEPT;
/** Locks if that needs no wait.       returns 1 if the lock was taken, else 0. */
int32_t KMutexTryLock(KMutex* mutex) VLM_NOEXCEPT;

/** A condition variable. No thread may wait on it when it is deleted. */
KCondition* New_KCondition(void) VLM_NOEXCEPT;
void Delete_KCondition(KCondition* condition) VLM_NOEXCEPT;
/** Waits for a signal. The caller holds mutex, locked once; it is free during the wait and held again on return. A wait may
 *  also end without a signal, so callers test their predicate in a loop.       returns the platform status. */
int32_t KConditionWait(KCondition* condition, KMutex* mutex) VLM_NOEXCEPT;
/** The same, for at most the given time from now by the time of day; a negative time counts as 0.
 *  returns 1 if the time ran out, else 0. */
int32_t KConditionTimedWait(KCondition* condition, KMutex* mutex, int64_t milliseconds) VLM_NOEXCEPT;
/** Wakes one waiting thread, if there is one.       returns the platform status. */
int32_t KConditionSignal(KCondition* condition) VLM_NOEXCEPT;

/** A key under which every thread keeps a pointer of its own, NULL at first. Nothing is called on the values when a thread
 *  ends or the key is deleted. */
KThreadLocalStorage* New_KThreadLocalStorage(void) VLM_NOEXCEPT;
void Delete_KThreadLocalStorage(KThreadLocalStorage* key) VLM_NOEXCEPT;
/** Stores the calling thread's value.       returns the platform status; EINVAL for a null key. */
int32_t KThreadLocalStorageSet(KThreadLocalStorage* key, void* value) VLM_NOEXCEPT;
/** The calling thread's value; NULL for a null key. */
void* KThreadLocalStorageGet(KThreadLocalStorage* key) VLM_NOEXCEPT;

/** Priority class of the process, from its nice value: 2 for -10 and below, 1 for -9 to -1, 0 for 0, -1 for 1 to 18, -2 for
 *  19. Where threads have nice values of their own, that of the process is its first thread's.
 *  returns the class; 0 if the nice value cannot be read, which is an assertion in debug builds. */
int32_t getProcessPriorityClass(void) VLM_NOEXCEPT;
/** Sets the nice value of the process: -10, -4, 0, 4 or 19 for the classes 2, 1, 0, -1, -2.
 *  returns 1; 0 if the system refuses (raising the priority takes a privilege) and, but for an assertion in debug builds, if
 *  there is no such class. The priority is then as it was. */
int32_t setProcessPriorityClass(int32_t priorityClass) VLM_NOEXCEPT;
/** 1 if the process runs under binary translation: always 0. */
int32_t RosettaQ(void) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
