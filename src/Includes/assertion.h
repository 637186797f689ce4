// Assertions of caller errors. A debug build stops with the text; a release build goes on to the answer
// stated beside it.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace vlm {
[[noreturn]] inline void assertion_failed(const char* text, const char* function) {
  std::fprintf(stderr, "Assertion failed: \"%s\" in %s\n", text, function);
  std::abort();
}
}  // namespace vlm

#if defined(VELORIM_DEBUG_CHECKS)
#define VELORIM_ASSERT(condition, text, function) \
  ((condition) ? static_cast<void>(0) : vlm::assertion_failed(text, function))
#else
#define VELORIM_ASSERT(condition, text, function) static_cast<void>(0)
#endif
