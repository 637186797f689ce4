// Moving elements whole: bare memory, element size in bytes, steps in elements. Every copy of the array layer comes down to these.
#pragma once

#include <cstdint>

#include "Arithmetic/Parallel/team.h"
#include "velorim/base.h"

namespace vlm {

/// An unsigned carrier of W bytes that may alias any element; its alignment is the least that an element of that size has.
template <int W> struct carrier;
template <> struct carrier<1> { using type [[gnu::may_alias]] = uint8_t; };
template <> struct carrier<2> { using type [[gnu::may_alias]] = uint16_t; };
template <> struct carrier<4> { using type [[gnu::may_alias]] = uint32_t; };
template <> struct carrier<8> { using type [[gnu::may_alias, gnu::aligned(4)]] = uint64_t; };
template <> struct carrier<16> {
  struct [[gnu::may_alias]] type {
    carrier<8>::type low, high;
  };
};
template <int W> using carrier_t = typename carrier<W>::type;

/// Calls body.template operator()<W>() for the element size W; false, with nothing called, for a size that no type has.
template <class Body> bool with_width(mint bytes, Body&& body) {
  switch (bytes) {
    case 1:
      body.template operator()<1>();
      return true;
    case 2:
      body.template operator()<2>();
      return true;
    case 4:
      body.template operator()<4>();
      return true;
    case 8:
      body.template operator()<8>();
      return true;
    case 16:
      body.template operator()<16>();
      return true;
    default:
      return false;
  }
}

/// body(first, length) over 0 to count, on the team by the byte rule if the pieces may run in any order.
template <class Body> void over_elements(mint count, mint element_bytes, bool independent, Body&& body) {
  const parallel::length_pair lengths = parallel::byte_lengths(element_bytes);
  if (independent && parallel::use_team(count, lengths.threshold)) {
    parallel::for_chunks(count, lengths.chunk, body);
  } else {
    body(0, count);
  }
}

/// target[i] = source[i] for i below count; the two may overlap.
void copy_run(void* target, const void* source, mint count, mint element_bytes);

/// target[i * target_step] = source[i * source_step] for i from 0 to count - 1, in this order where the two overlap or a step is 0.
/// Both steps 1 is copy_run. A size that no element type has copies nothing.
void copy_strided(void* target, mint target_step, const void* source, mint source_step, mint count,
                  mint element_bytes);

/// data[i * step + k] = values[k] for i below count and k below value_count; the writes of different i must not meet.
void fill_pattern(void* data, mint step, const void* values, mint value_count, mint count,
                  mint element_bytes);
/// count elements of zero bits.
void fill_zero(void* data, mint count, mint element_bytes);

}  // namespace vlm
