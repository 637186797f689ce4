/* Start and stop of the library.
 *
 * Order. Initialise, use, deinitialise; after DeinitializeRuntimeLibrary(1) the library may be initialised again, any number
 * of times. A host takes one road in, VelorimLibraryData_new or one of the entries below, and takes it once: nothing here is
 * guarded against a second run, which resets the settings, rebuilds the tables and makes a new eternal tensor. Arrays made
 * before stay valid.
 * Failure. None of these reports: what they allocate they allocate with FailFatal, so that exhaustion ends the process
 * through nomem (memory.h).
 * Threads. While one of these runs no other thread is in the library. */
#ifndef VELORIM_RUNTIME_H
#define VELORIM_RUNTIME_H

#include <velorim/base.h>

/** The pool of worker threads; fields in parallel.h. */
typedef struct ParallelThreadsEnvironment ParallelThreadsEnvironment;

VLM_BEGIN_DECLS

/** Initialises the library: phases 0, 1, 2, 3 and 4 over every subsystem. The pool of worker threads is not made; only
 *  ReinitializeRuntimeLibrary and the first parallel call make it. */
void InitializeRuntimeLibrary(void) VLM_NOEXCEPT;

/** Runs one phase over every subsystem, for hosts that have work of their own between the phases; they run all of 0 to 4 in
 *  order. 0 stores settings and allocates nothing, 1 makes the allocator, tables and keys, 2 the default generator, 4 the
 *  eternal tensor. 3 and numbers outside 0 to 4 do nothing. */
void InitRuntimeLibrary(int32_t phase) VLM_NOEXCEPT;

/** Another name of InitializeRuntimeLibrary. */
void VelorimRTL_initialize(void) VLM_NOEXCEPT;

/** Takes the library down. full zero: the name lookups of array.h, the shared scalars and the pool of worker threads go,
 *  arrays and the allocator stay, and ReinitializeRuntimeLibrary brings back what went. full nonzero: everything goes, every
 *  block that zalloc handed out with it, and pointers into the library's memory are dead. Calls from then on need a new
 *  initialisation. */
void DeinitializeRuntimeLibrary(int32_t full) VLM_NOEXCEPT;

/** Brings back what DeinitializeRuntimeLibrary(0) took down, and makes the pool of worker threads at the current thread
 *  number. returns  the pool, which stays the library's. */
ParallelThreadsEnvironment* ReinitializeRuntimeLibrary(void) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
