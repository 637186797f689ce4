// The inner side of the thread layer: the functions that run when a thread starts and ends, and the
// arithmetic behind timed waits and priority classes. The exported calls are those of velorim/thread.h.
#pragma once

#include <ctime>

#include "velorim/thread.h"

namespace vlm {

using thread_hook = void (*)();

/// The two hook lists. They are filled during initialisation, before threads start, and take no lock. Without
/// lists the walks do nothing and nothing can be added. Both adders return the new count of the list, 0 if
/// the lists do not exist; a list that cannot grow ends in nomem.
uint32_t add_thread_start_hook(thread_hook hook);
uint32_t add_thread_stop_hook(thread_hook hook);
/// The one-based position of a stop hook; 0 if it is not registered.
uint32_t thread_stop_hook_position(thread_hook hook);

void run_thread_start_hooks();  ///< in the order of registration
void run_thread_stop_hooks();   ///< for the calling thread, last registered first
/// Calls one stop hook for the calling thread by its one-based position; positions outside the list do
/// nothing.
void call_thread_stop_hook(uint32_t position);
void free_thread_hook_lists();

/// The time a number of milliseconds after another, nanoseconds carried into the seconds. Negative counts as
/// 0; a sum that time_t cannot hold stops at its largest value.
timespec time_after(timespec start, int64_t milliseconds);

/// The priority class that a nice value reads as.
int32_t priority_class_of_nice(int nice);

}  // namespace vlm
