/* Processor counts, the thread number, length thresholds, and a pool of worker threads.
 *
 * The library works on several threads in two ways. Array functions open an OpenMP region for the length of one call when
 * the count reaches a threshold, the thread number is at least 2 and ListableCompileEvaluatingThreaded is 0. The pool below
 * is a fork-and-wait facility for plug-in code; its workers are threads of thread.h, apart from the OpenMP threads.
 *
 * Settings belong to the process. They may be read on any thread at any time; change them between calls: a change in the
 * middle of a call takes effect at the next one. Before startup the counts and the thread number are 1 and the thresholds
 * have their first values.
 *
 * In a child made by fork() the threads of the parent do not exist: array functions then stay on the calling thread, and
 * the child's first call of the pool makes a pool of its own. */
#ifndef VELORIM_PARALLEL_H
#define VELORIM_PARALLEL_H

#include <velorim/base.h>
#include <velorim/thread.h>

VLM_BEGIN_DECLS

/* ---- Settings ---- */

/** Non-zero keeps all array work on the calling thread. The host sets it; startup clears it. */
extern int32_t ListableCompileEvaluatingThreaded;

/** Processor cores and hardware threads that this process may use: those of its affinity mask, and no more than its CPU
 *  quota rounded up. At least 1; 1 before startup. */
mint getProcessorCount(void) VLM_NOEXCEPT;
mint getHyperThreadCount(void) VLM_NOEXCEPT;

/** The number of threads that parallel work uses. Startup makes it the number of performance cores, or of all cores where
 *  they are of one kind, or 1 after RTL_From_SubKernel. Array functions use at most 1024. */
mint getParallelThreadNumber(void) VLM_NOEXCEPT;

/** Sets the thread number to n, clamped to 32 bits, and returns the old one. 0 and negative numbers are kept as they are
 *  and mean one thread. Also calls omp_set_num_threads(n), which binds the calling thread's own OpenMP regions. The pool
 *  follows at the next call of it. */
mint setParallelThreadNumber(mint n) VLM_NOEXCEPT;
/** The same without a result: puts back what setParallelThreadNumber returned. */
void restoreParallelThreadNumber(mint n) VLM_NOEXCEPT;

/** Says, before startup, that this process is one of several that share the machine: startup sets the thread number to 1. */
void RTL_From_SubKernel(void) VLM_NOEXCEPT;

/** The count of elements from which a family of functions uses several threads. It gives out half as many at a time.
 *  index 0: reductions and scans of whole arrays, 32768 at startup; 1, 2, 3: unary, binary and ternary elementwise
 *  functions, 8192. 0 for any other index. */
mint getVectorParallelLengthThreshold(int32_t index) VLM_NOEXCEPT;
/** Sets it to value, or to 2 if value is less. Nothing happens for an index outside 0 to 3. */
void setVectorParallelLengthThreshold(int32_t index, mint value) VLM_NOEXCEPT;

/** Three numbers, index 0 to 2, that the library keeps for a host's use of vendor routines and does not read itself;
 *  0x7FFFFFFFFFFFFFFF at startup. The setter stores 1 for a value less than 1. Any other index: 0; nothing happens. */
mint getVectorVendorLengthThreshold(int32_t index) VLM_NOEXCEPT;
void setVectorVendorLengthThreshold(int32_t index, mint value) VLM_NOEXCEPT;

/* ---- The pool: records ---- */

typedef struct ParallelThreadsEnvironment ParallelThreadsEnvironment;
typedef struct ParallelThread ParallelThread;
typedef struct ParallelThreadsSchedule ParallelThreadsSchedule;

/** How ParallelThreads_For cuts a range. Made by New_ParallelThreadsSchedule; fields may be read. */
struct ParallelThreadsSchedule {
  mint kind;      /**< see ParallelThreads_For */
  mint chunk;     /**< size or number of pieces by the kind, at least 1 */
  int32_t single; /**< non-zero: always on the calling thread */
};

/** The range and the function of one piece of work. */
typedef struct ParallelThreadWork {
  mint start;
  mint end;
  mint step;
  void (*function)(void* argument, ParallelThread* thread);
  void* argument;
} ParallelThreadWork;

/** A worker, as a body sees it. Read it through the functions below. */
struct ParallelThread {
  mint id; /**< from 0 to one below the number of workers; 0 also for work on the calling thread */
  int32_t keepRunning; /**< 0 asks the worker to leave; guarded by lock */
  int32_t go;          /**< work is waiting; guarded by lock */
  KMutex* lock;
  KCondition* wake; /**< signalled when go is set */
  ParallelThreadsEnvironment* environment;
  ParallelThreadWork* work;
  KThread* thread;
  mint osThreadId;      /**< KThreadID of the worker */
  ParallelThread* next; /**< link of the idle list */
};

/** The pool; one for the process. */
struct ParallelThreadsEnvironment {
  mint active;      /**< workers that hold work; guarded by doneLock */
  int32_t busy;     /**< a parallel call is in progress; guarded by busyLock */
  KMutex* busyLock; /**< guards busy, canceled and cancelCode */
  KMutex* synchronizeLock;
  KMutex* doneLock;          /**< guards active and idle */
  KCondition* doneCondition; /**< signalled by each worker that finishes */
  mint numThreads;           /**< workers, at least 1; 1 means that all work runs on the calling thread */
  ParallelThread* mainThread;
  ParallelThread** workers; /**< numThreads of them; NULL if numThreads is 1 */
  ParallelThread* idle;     /**< head of the list of workers without work */
  int32_t canceled;
  int32_t cancelCode;
};

/* ---- The pool: calls ----
 *
 * Every call first gets the pool: it is made at the first call, with as many workers as the thread number says, and made
 * anew when the thread number has changed and no call is using it. If the system refuses a thread, the pool has the workers
 * that it got, and works on the calling thread if they are fewer than two.
 *
 * One call at a time has the workers. A call made in the meantime, from inside a body or on another thread of the host, runs
 * on its own thread alone, with a thread record of its own and ID 0. The cancel mark is one for the pool: a call that finds
 * the pool free clears it; a call inside a body does not, so that it ends with the code of the outer call when that was
 * canceled, and cancels the outer call when it is canceled itself. Enter from one thread of the host at a time if cancel
 * codes are to be told apart.
 *
 * The functions handed in run concurrently on the workers (init on the calling thread alone) and return normally: one that
 * is left by an exception ends the process, and one left by a jump leaves the pool marked as in use. */

/** A schedule record; chunk below 1 becomes 1. NULL when there is no memory. Release with Delete_ParallelThreadsSchedule. */
ParallelThreadsSchedule* New_ParallelThreadsSchedule(mint kind, mint chunk) VLM_NOEXCEPT;
/** A schedule by which a call always runs on the calling thread: kind 1, chunk 1, single 1. NULL when there is no memory. */
ParallelThreadsSchedule* New_ParallelThreadsScheduleSingle(void) VLM_NOEXCEPT;
/** Frees a schedule; NULL is ignored. */
void Delete_ParallelThreadsSchedule(ParallelThreadsSchedule* schedule) VLM_NOEXCEPT;

/** Runs body over the range start, start + step, ... below end, cut into pieces that are given to workers as they come free.
 *  init      NULL, or called once before any work with the pool, on the calling thread.
 *  body      called once for each piece; reads the piece with ParallelThread_RangeStart, _RangeEnd and _RangeStep. A piece
 *            starts on a point of the range, so that the pieces visit each point once.
 *  schedule  how to cut, or NULL for as many pieces as there are workers. Everything is one piece on the calling thread if
 *            there is one worker, the call is a second one, schedule->single is set, or there is a schedule and
 *            (end - start) / step is at most its chunk.
 *  Let n be the number of workers, c the chunk rounded down to a multiple of step, but at least step, and
 *  share = (end - cursor) / (pieces left), at least 1, rounded up to a multiple of step. The next piece has the size
 *    no schedule   share, n pieces at first: 0 to 10 on 4 workers is cut into 0-2, 2-4, 4-7, 7-10
 *    kind 1        max(share, c), n pieces at first: few pieces, none short
 *    kind 2        share, max(1, (end - start) / c) pieces at first: pieces of about c
 *    kind 3        share, c pieces at first
 *    kind 4        max((end - cursor) / n rounded up to a multiple of step, c): large pieces, then smaller and smaller
 *    other kinds   all in one piece
 *  and the last one ends at end. The record's chunk is c during the call and afterwards what it was.
 *  returns   0 when all pieces have run, or end is not above start (checked first; init is then not called); 4 if step is
 *            below 1 or body is NULL (nothing is called); else the code of the last ParallelThread_cancel. */
int32_t ParallelThreads_For(void* argument,
                            void (*init)(void* argument, ParallelThreadsEnvironment* environment),
                            void (*body)(void* argument, ParallelThread* thread), mint start, mint end,
                            mint step, ParallelThreadsSchedule* schedule) VLM_NOEXCEPT;

/** The same range, one piece for each worker: worker k, by its ID, has the k-th piece of (end - start) / n rounded up to a
 *  multiple of step, the last up to end; a piece can be empty. Partial results kept by ID and merged in that order are
 *  therefore the same in every run with the same thread number. The whole range is one piece on the calling thread if there
 *  is one worker, the call is a second one, or (end - start) / step is below n. Init may size its storage by
 *  ParallelThreadsEnvironment_numThreads of its argument, which says how many pieces will run; that record is valid until
 *  the call returns. Returns as ParallelThreads_For. */
int32_t ParallelThreads_Reduce(void* argument,
                               void (*init)(void* argument, ParallelThreadsEnvironment* environment),
                               void (*body)(void* argument, ParallelThread* thread), mint start, mint end,
                               mint step) VLM_NOEXCEPT;

/** Calls function once on every worker, without a range (0 to 0, step 1). With one worker it is called on the calling thread
 *  unless flag 2 is set.
 *  flags     1: use the pool as it is, whatever the thread number, and leave the cancel mark; 2: workers only; or both.
 *  returns   0 when all have returned, also with one worker, and when another call is in progress, in which case nothing is
 *            called; 4 if flag 1 is set and there is no pool, or function is NULL; else the code of the last
 *            ParallelThread_cancel. */
int32_t ParallelThreads_Iterate(void* argument, void (*function)(void* argument, ParallelThread* thread),
                                uint32_t flags) VLM_NOEXCEPT;

/** The ids by KThreadID of the caller and then of the workers: count of them, one more than the workers, or 1 if there is
 *  one worker. Makes the pool if there is none. Release with zfree (memory.h). NULL and count 0 when there is no memory. */
mint* ParallelThreadID(mint* count) VLM_NOEXCEPT;

/** 1 if the pool exists, else 0. Startup makes none; ReinitializeRuntimeLibrary (runtime.h) and the calls above do. */
int32_t ParallelThreadsEnvironment_initializedQ(void) VLM_NOEXCEPT;
/** The number of workers, at least 1; 0 for NULL. */
mint ParallelThreadsEnvironment_numThreads(const ParallelThreadsEnvironment* environment) VLM_NOEXCEPT;

/* ---- The pool: what a body asks. Each belongs to the thread that the body was called with; 0 for NULL. ---- */

/** The piece given to this call of the body: start, the end behind its last point, and the step. */
mint ParallelThread_RangeStart(const ParallelThread* thread) VLM_NOEXCEPT;
mint ParallelThread_RangeEnd(const ParallelThread* thread) VLM_NOEXCEPT;
mint ParallelThread_RangeStep(const ParallelThread* thread) VLM_NOEXCEPT;
/** The worker's index from 0. */
mint ParallelThread_ID(const ParallelThread* thread) VLM_NOEXCEPT;

/** Locks and unlocks the one mutex that the pool lends to bodies; recursive. NULL is ignored. */
void ParallelThread_synchronizeLock(ParallelThread* thread) VLM_NOEXCEPT;
void ParallelThread_synchronizeUnlock(ParallelThread* thread) VLM_NOEXCEPT;

/** Marks the call as canceled with a code, which becomes its result. Nothing is interrupted, pieces not yet given out run
 *  too: a body polls ParallelThread_canceledQ to stop early. The last code given counts. NULL is ignored. */
void ParallelThread_cancel(ParallelThread* thread, int32_t code) VLM_NOEXCEPT;
/** 1 if the call was canceled, else 0; 0 for NULL. Takes no lock: as cheap as reading a variable. */
int32_t ParallelThread_canceledQ(const ParallelThread* thread) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
