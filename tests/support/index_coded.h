// Arrays whose elements tell where they came from, for operations that move elements without looking at them: a model computes with the
// codes, and the bytes of each element must be those of the code expected there.
#pragma once

#include <random>

#include "support/array_fixture.h"
#include "velorim/array_services.h"

namespace vlm_test {

inline mint bytes_of(int32_t type) { return static_cast<mint>(vlm::element_bytes(type)); }

/// A shape with its elements' codes, row-major.
struct coded {
  std::vector<mint> dims;
  std::vector<mint> codes;

  static coded numbered(const std::vector<mint>& dims, mint first = 0) {
    coded c{dims, std::vector<mint>(static_cast<size_t>(product_of(dims)))};
    for (mint& code : c.codes) code = first++;
    return c;
  }
  mint flat(const std::vector<mint>& index) const {
    mint f = 0;
    for (size_t i = 0; i < dims.size(); ++i) f = f * dims[i] + index[i];
    return f;
  }
  mint at(const std::vector<mint>& index) const { return codes[static_cast<size_t>(flat(index))]; }
};

/// A coded result of a shape whose element at each index (from 0) is what the function says.
template <class Function> coded make_coded(const std::vector<mint>& dims, Function function) {
  coded result{dims, {}};
  std::vector<mint> index(dims.size(), 0);
  for (mint i = 0, n = product_of(dims); i < n; ++i) {
    result.codes.push_back(function(static_cast<const std::vector<mint>&>(index)));
    for (size_t d = dims.size(); d-- > 0;) {
      if (++index[d] < dims[d]) break;
      index[d] = 0;
    }
  }
  return result;
}

/// Byte `k` of the element with a code: differs between neighbours and between the bytes of an element.
inline uint8_t byte_of_code(mint code, mint k) {
  return static_cast<uint8_t>((static_cast<uint64_t>(code) * 2654435761u >> (8 * (k % 4))) +
                              static_cast<uint64_t>(k) * 29);
}

inline array_ptr make_array(int32_t type, const coded& c) {
  MNumericArray* const array =
      MNumericArray_newAllocatedCommon(type, static_cast<mint>(c.dims.size()), c.dims.data(), FailFatal);
  auto* byte = static_cast<uint8_t*>(array->data);
  for (const mint code : c.codes) {
    for (mint k = 0; k < bytes_of(type); ++k) *byte++ = byte_of_code(code, k);
  }
  return array_ptr(array);
}

inline void expect_coded(const MNumericArray* array, int32_t type, const coded& expected) {
  ASSERT_NE(array, nullptr);
  ASSERT_TRUE(vlm::array_is_valid(array));
  ASSERT_EQ(array->elementType, static_cast<uint32_t>(type));
  ASSERT_EQ(dims_of(array), expected.dims);
  const auto* byte = static_cast<const uint8_t*>(array->data);
  for (size_t i = 0; i < expected.codes.size(); ++i) {
    for (mint k = 0; k < bytes_of(type); ++k) {
      ASSERT_EQ(*byte++, byte_of_code(expected.codes[i], k)) << "element " << i << " of type " << type;
    }
  }
}

/// A source of random cases whose seed is printed with every failure.
class random_cases {
 public:
  random_cases() : seed_(std::random_device{}()), engine_(seed_) {}
  uint64_t seed() const { return seed_; }
  /// Uniform from low to high, both included.
  mint in(mint low, mint high) { return std::uniform_int_distribution<mint>(low, high)(engine_); }
  int32_t type() { return static_cast<int32_t>(in(1, 13)); }
  std::vector<mint> shape(mint least_rank, mint least_size = 0) {
    std::vector<mint> dims(static_cast<size_t>(in(least_rank, 5)));
    for (mint& d : dims) d = in(least_size, 6);
    return dims;
  }

 private:
  uint64_t seed_;
  std::mt19937_64 engine_;
};

/// What *target holds at a call: nothing, an array to be reused, or the source itself.
enum class target_kind { none, other, source };
inline constexpr target_kind all_targets[] = {target_kind::none, target_kind::other, target_kind::source};

/// Calls operation(&target, source) for each kind of target and expects status 0 and the coded result, and the source unchanged unless it
/// is the target.
template <class Operation>
void expect_for_every_target(int32_t type, const coded& source, const coded& expected, Operation operation) {
  for (const target_kind kind : all_targets) {
    SCOPED_TRACE(testing::Message() << "kind of target " << static_cast<int>(kind));
    array_ptr from = make_array(type, source);
    array_ptr other = make_array(MNumericArrayTypeInteger16, coded::numbered({2, 3}));
    MNumericArray* target = kind == target_kind::none    ? nullptr
                            : kind == target_kind::other ? other.get()
                                                         : from.get();
    MNumericArray* const given = target;
    ASSERT_EQ(operation(&target, from.get()), 0);
    if (given != nullptr) {
      ASSERT_EQ(target, given);
    }
    expect_coded(target, type, expected);
    if (kind == target_kind::none) MNumericArray_delete(target);
    if (kind != target_kind::source) expect_coded(from.get(), type, source);
  }
}

}  // namespace vlm_test
