// Working space: a typed buffer over zalloc that is freed when its scope ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>

#include "velorim/memory.h"

namespace vlm::memory {

/// Room for a number of elements of T, contents undefined, at a multiple of 16. With the default mode
/// exhaustion and a passed soft limit leave it false; with FailFatal it is always true. No elements need no
/// memory and are true too.
template <class T> class working_space {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T> && alignof(T) <= 16,
                "working space is raw memory");

 public:
  explicit working_space(uint64_t count, int32_t fail_mode = FailNull) noexcept : count_(count) {
    uint64_t bytes;
    // A size that 64 bits cannot hold fails as one that memory cannot.
    if (__builtin_mul_overflow(count, uint64_t{sizeof(T)}, &bytes)) bytes = ~uint64_t{0};
    data_ = static_cast<T*>(zalloc(bytes, 1, fail_mode));
  }
  ~working_space() { zfree(data_); }
  working_space(working_space&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), count_(std::exchange(other.count_, 0)) {}
  working_space& operator=(working_space&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(count_, other.count_);
    return *this;
  }

  explicit operator bool() const { return data_ != nullptr || count_ == 0; }
  T* data() { return data_; }
  const T* data() const { return data_; }
  uint64_t size() const { return count_; }
  T& operator[](uint64_t index) { return data_[index]; }
  const T& operator[](uint64_t index) const { return data_[index]; }
  T* begin() { return data_; }
  T* end() { return data_ + count_; }
  std::span<T> span() { return {data_, static_cast<size_t>(count_)}; }

  /// Hands the block over to the caller, who frees it with zfree.
  [[nodiscard]] T* release() {
    count_ = 0;
    return std::exchange(data_, nullptr);
  }

 private:
  T* data_ = nullptr;
  uint64_t count_;
};

/// The same with room for the first N elements in the object itself: short requests take no memory and cannot fail.
template <class T, uint64_t N> class small_space {
 public:
  explicit small_space(uint64_t count, int32_t fail_mode = FailNull) noexcept
      : more_(count > N ? count : 0, fail_mode) {}
  small_space(const small_space&) = delete;
  small_space& operator=(const small_space&) = delete;

  explicit operator bool() const { return static_cast<bool>(more_); }
  T* data() { return more_.size() != 0 ? more_.data() : own_; }
  T& operator[](uint64_t index) { return data()[index]; }

 private:
  T own_[N];
  working_space<T> more_;
};

}  // namespace vlm::memory
