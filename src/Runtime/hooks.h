// The subsystem hooks that the lifecycle driver calls, each with a phase number from 0 to 4. A hook lives
// with its subsystem and does nothing in a phase that it has no work in; their order is the list in
// lifecycle.cpp. Also the steps that DeinitializeRuntimeLibrary and ReinitializeRuntimeLibrary take in each
// subsystem.
#pragma once

#include <cstdint>

struct ParallelThreadsEnvironment;

namespace vlm {

void memory_hook(int32_t phase);             // Memory
void hash_settings_hook(int32_t phase);      // Hash: thresholds, load factors, the default hash
void array_names_hook(int32_t phase);        // MNumericArray/Allocate
void tensor_hash_hook(int32_t phase);        // Hash: seeds made with the default hash
void parallel_settings_hook(int32_t phase);  // Arithmetic/Parallel
void eternal_tensor_hook(int32_t phase);     // MTensor
void abort_state_hook(int32_t phase);        // Runtime

// Tear-down and renewal, in the order of the calls.
void array_names_free();   // frees the two name-to-code maps
void array_names_build();  // builds them
void shared_rank0_key_delete();
void shared_rank0_key_create();
void thread_pool_free();                           // stops and frees the pool, if there is one
ParallelThreadsEnvironment* thread_pool_create();  // makes the pool at the current thread number
void memory_check_forget();                        // the check is off, and its table goes with the allocator
void memory_tear_down();                           // everything of the allocator

}  // namespace vlm
