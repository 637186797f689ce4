// Tells the address sanitizer which blocks are free, so that a use of one is found although its chunk stays mapped, and where its
// leak check finds pointers. Nothing in other builds.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define VELORIM_SHADOW 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELORIM_SHADOW 1
#endif
#endif

#if defined(VELORIM_SHADOW)
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#endif

namespace vlm::memory::shadow {

#if defined(VELORIM_SHADOW)
inline void forbid(const void* memory, size_t bytes) { __asan_poison_memory_region(memory, bytes); }
inline void allow(const void* memory, size_t bytes) { __asan_unpoison_memory_region(memory, bytes); }
inline void holds_pointers(const void* memory, size_t bytes) { __lsan_register_root_region(memory, bytes); }
inline void holds_none(const void* memory, size_t bytes) { __lsan_unregister_root_region(memory, bytes); }
#else
inline void forbid(const void*, size_t) {}
inline void allow(const void*, size_t) {}
inline void holds_pointers(const void*, size_t) {}
inline void holds_none(const void*, size_t) {}
#endif

}  // namespace vlm::memory::shadow
