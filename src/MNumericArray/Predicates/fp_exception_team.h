// How scans and replacements of exception values go on the thread team: by bytes, since they are bound by memory.
#pragma once

#include "Arithmetic/Parallel/team.h"
#include "Includes/element_types.h"

namespace vlm {

/// Elements from which on the team is used, 128 KiB of them, and those of a chunk, 64 KiB.
template <class T> inline constexpr mint fp_parallel_threshold = 131072 / static_cast<mint>(sizeof(T));
template <class T> inline constexpr mint fp_parallel_chunk = 65536 / static_cast<mint>(sizeof(T));

/// Calls body.operator()<T>() for an element type with floating-point content; false for any other.
template <class Body> bool with_floating_type(int32_t type, Body&& body) {
  bool floating = false;
  with_element_type(type, [&]<class T>() {
    if constexpr (!is_integer_element<T>) {
      floating = true;
      body.template operator()<T>();
    }
  });
  return floating;
}

}  // namespace vlm
