/* Memory: blocks with accounting per thread, a soft limit, and a choice of what exhaustion means.
 *
 * Conventions:
 *  - Sizes and counters are bytes. A block counts at the size that it consumes, which is somewhat above the size asked for.
 *  - A block may be freed on any thread. It counts for the thread that made it, until that thread takes it back: a block that
 *    another thread freed stays in the maker's count until the maker's next allocation or release of that size, or until
 *    CompactifyMemory.
 *  - aligned: 0 gives a multiple of 8, any other value a multiple of 16.
 *  - failMode: FailFatal, FailNull or FailReport (base.h).
 *  - Each thread gets its accounts with its first allocation or query; a thread that only frees has none. They end with the
 *    thread if it was made by KThreadCreate, else with the library. Blocks outlive the thread that made them.
 *  - All functions may run on any thread at any time after initialisation, but for those that say otherwise. */
#ifndef VELORIM_MEMORY_H
#define VELORIM_MEMORY_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

/** The allocator's root record. */
typedef struct HeapRoot HeapRoot;

/** Physical memory of the machine in bytes; 0 before initialisation. */
extern uint64_t system_memory;
/** Largest consumed size of a block above 64 KB that is asked of the system; larger requests fail. All ones, which sets no
 *  bound, unless a host lowers it after initialisation. */
extern uint64_t system_allocation_limit;

/* ---- Blocks ---------------------------------------------------------------------------------------------------------- */

/** A block of at least size bytes, contents undefined.
 *  returns the block; NULL for size 0, which counts nothing. With FailNull and FailReport NULL if the system has no more, if
 *  system_allocation_limit forbids the size or no 64-bit number holds it; with FailNull also if the soft limit would be
 *  passed (MCsetlimit). With FailFatal these end the process through nomem, and passing the soft limit is no failure.
 *  Nothing has changed after NULL, though the interrupt function may have run. */
void* zalloc(uint64_t size, int32_t aligned, int32_t failMode) VLM_NOEXCEPT;

/** Frees a block that came from any function of this header; NULL is ignored. */
void zfree(void* pointer) VLM_NOEXCEPT;

/** Resizes a block. It stays where it is if it holds size bytes, at most half of it would lie idle, and it has the alignment;
 *  otherwise the first min(old, new) bytes move to a new block and the old one is freed. A null pointer gives zalloc.
 *  returns the block; NULL on failure, as zalloc does, and for size 0: the old block then stays valid. */
void* zrealloc(void* pointer, uint64_t size, int32_t aligned, int32_t failMode) VLM_NOEXCEPT;

/** The size that byte counts of objects use for a block of size bytes: its size class, or for large blocks (size of 65521
 *  and more) the size rounded up to 8 plus the header of 40 or, aligned, 48 bytes. 0 for size 0; all ones if no 64-bit
 *  number holds it. A pure function. */
uint64_t zalloc_round(uint64_t size, int32_t aligned) VLM_NOEXCEPT;

/** A zero-filled block of count * size bytes; otherwise as zalloc. A product beyond 64 bits fails like any size that is too
 *  large. */
void* kCalloc(uint64_t count, uint64_t size, int32_t aligned, int32_t failMode) VLM_NOEXCEPT;

/** zalloc, kCalloc, zrealloc and zfree with FailFatal: for callers that expect an allocator which cannot fail. Aligned and
 *  Align16 forms give multiples of 16. */
void* Malloc_fun(uint64_t size) VLM_NOEXCEPT;
void* MallocAligned_fun(uint64_t size) VLM_NOEXCEPT;
void* MallocAlign16_fun(uint64_t size) VLM_NOEXCEPT;
void* Calloc_fun(uint64_t count, uint64_t size) VLM_NOEXCEPT;
void* CallocAligned_fun(uint64_t count, uint64_t size) VLM_NOEXCEPT;
void* CallocAlign16_fun(uint64_t count, uint64_t size) VLM_NOEXCEPT;
void* Realloc_fun(void* pointer, uint64_t size) VLM_NOEXCEPT;
void* ReallocAligned_fun(void* pointer, uint64_t size) VLM_NOEXCEPT;
void Free_fun(void* pointer) VLM_NOEXCEPT;
/** The same with the signatures of GMP's memory functions; oldSize and the size given to the free form are ignored. */
void* Malloc_fun_for_gmp(uint64_t size) VLM_NOEXCEPT;
void* Realloc_fun_for_gmp(void* pointer, uint64_t oldSize, uint64_t newSize) VLM_NOEXCEPT;
void Free_fun_for_gmp(void* pointer, uint64_t size) VLM_NOEXCEPT;

/** The same with FailNull: what compiled code calls, testing for NULL. */
void* RuntimeAllocate(uint64_t size) VLM_NOEXCEPT;
void* RuntimeAllocateAligned(uint64_t size) VLM_NOEXCEPT;
void* RuntimeReallocate(void* pointer, uint64_t size) VLM_NOEXCEPT;
void* RuntimeReallocateAligned(void* pointer, uint64_t size) VLM_NOEXCEPT;
void* RuntimeCallocate(uint64_t count, uint64_t size) VLM_NOEXCEPT;
void* RuntimeCallocateAligned(uint64_t count, uint64_t size) VLM_NOEXCEPT;
void RuntimeFree(void* pointer) VLM_NOEXCEPT;

/* ---- Accounts of the calling thread ---------------------------------------------------------------------------------- */

/** Bytes in use: blocks made by this thread and not yet taken back, and the record of the accounts itself. */
int64_t MemoryInUse(void) VLM_NOEXCEPT;
/** The same. */
int64_t MCinuse(void) VLM_NOEXCEPT;
/** The largest value that the bytes in use have reached by an allocation since the last MaxMemoryListPush. */
int64_t MaxMemoryUsed(void) VLM_NOEXCEPT;
/** The soft limit; 0 for none. */
uint64_t MCliminuse(void) VLM_NOEXCEPT;
/** Sets the soft limit of this thread; 0 removes it. An allocation that would take the bytes in use above it calls the
 *  interrupt function, and fails if its mode is FailNull. */
void MCsetlimit(uint64_t limit) VLM_NOEXCEPT;
/** Sets the interrupt function of the whole process; NULL for none. While it runs MemoryInUse shows what the passed limit
 *  would have been exceeded with (at most all ones), and is set back after. It must return and must not allocate. */
void MC_set_interrupt_fun(void (*function)(void)) VLM_NOEXCEPT;

/** Opens a nested measurement of the peak. head is the address of a list head that the caller keeps, NULL at first.
 *  returns the bytes in use, from which the new peak starts. The list's node is a block of this thread (FailFatal). */
int64_t MaxMemoryListPush(void** head) VLM_NOEXCEPT;
/** Closes the measurement that the matching push on this thread opened; the outer one goes on with the larger peak. The list
 *  must not be empty: an assertion in debug builds, else the current peak is returned.
 *  returns the largest number of bytes in use since the push. */
int64_t MaxMemoryListPop(void** head) VLM_NOEXCEPT;
/** The number of open measurements of a list; 0 for NULL. */
mint MaxMemoryListLength(void* list) VLM_NOEXCEPT;

/** Reports the current total of an outside allocator (that of a binary-decision-diagram package). The change since the last
 *  report of any thread goes into this thread's bytes in use; growth raises the peak, and calls the interrupt function if
 *  the soft limit is now exceeded. */
void RecordCUDDMemory(uint64_t total) VLM_NOEXCEPT;

/* ---- The whole process ----------------------------------------------------------------------------------------------- */

/** One number for each thread's accounts, newest first, and at *countOut how many.
 *  what    0 bytes in use; 1 peak; 2 bytes of blocks up to 64 KB that other threads freed and the owner has not taken back;
 *          3 the same of larger blocks; else the thread's KThreadID. Accounts of ended threads are listed while blocks of
 *          theirs live.
 *  returns an array to be released with freeMemorySizeArray; NULL if the system has no more, *countOut then being 0. */
int64_t* FullMemoryInformation(mint* countOut, int32_t what) VLM_NOEXCEPT;
/** Releases such an array; NULL is ignored. */
void freeMemorySizeArray(int64_t* array) VLM_NOEXCEPT;

/** Takes back every thread's blocks that other threads freed, and gives the system what each thread keeps of freed memory for its
 *  next allocations, up to 64 MB, which counts nowhere. No other thread may be allocating or freeing. */
void CompactifyMemory(void) VLM_NOEXCEPT;

/** The root record; NULL before the allocator is first used. */
HeapRoot* GetAllocatorList(void) VLM_NOEXCEPT;

/** Makes the root record and the lists of thread-start and thread-stop functions where they are absent, and registers the
 *  function that gives back a thread's memory when it ends. Part of initialisation: no other thread may be in the library. */
void InitializeMemory(void) VLM_NOEXCEPT;

/** What happens when memory is gone: prints three lines on standard output, sleeps 3000 milliseconds and ends the process
 *  with exit(1). Does not return. */
#ifdef __cplusplus
[[noreturn]]
#else
_Noreturn
#endif
void nomem(void) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
