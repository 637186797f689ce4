// Copies, fills and takes of 32 MB on all threads beside memcpy and memset on all threads.
#include <omp.h>

#include <cstring>

#include "rows.h"
#include "velorim/velorim.h"

namespace {

constexpr mint bytes = 32 << 20;
constexpr mint doubles = bytes / 8;

/// f(first, length) in one piece for each thread.
template <class F> void on_all_threads(F f) {
  const mint threads = getParallelThreadNumber();
#pragma omp parallel for schedule(static, 1) num_threads(static_cast <int>(threads))
  for (mint t = 0; t < threads; ++t) {
    const mint first = bytes / threads * t;
    f(first, (t + 1 == threads ? bytes : first + bytes / threads) - first);
  }
}

MTensor* tensor(std::vector<mint> dims) {
  MTensor* const t =
      MTensor_newAllocatedCommon(MTensorTypeReal, static_cast<mint>(dims.size()), dims.data(), FailFatal);
  for (mint i = 0; i < doubles; ++i) static_cast<double*>(t->data)[i] = static_cast<double>(i);
  return t;
}

std::vector<peers::row> rows() {
  static MTensor* const source = tensor({doubles});
  static MTensor* const target = tensor({doubles});
  static MTensor* const matrix = tensor({2 * 1024, doubles / 2048});
  static MTensor* taken = nullptr;
  setParallelThreadNumber(getProcessorCount());
  static const double value = 2.5;
  const auto copy = [] {
    on_all_threads([](mint first, mint length) {
      std::memcpy(static_cast<char*>(target->data) + first, static_cast<char*>(source->data) + first,
                  static_cast<size_t>(length));
    });
  };
  const auto set = [] {
    on_all_threads([](mint first, mint length) {
      std::memset(static_cast<char*>(target->data) + first, 1, static_cast<size_t>(length));
    });
  };
  const auto fresh_copy = [] {
    char* const fresh = static_cast<char*>(std::malloc(bytes));
    on_all_threads([fresh](mint first, mint length) {
      std::memcpy(fresh + first, static_cast<char*>(matrix->data) + first, static_cast<size_t>(length));
    });
    std::free(fresh);
  };
  const auto row = [](const char* work, const char* peer, std::function<void()> ours,
                      std::function<void()> theirs) {
    return peers::row{work, peer, ours, theirs, {}, peers::bar_kind::rate_at_least, 0.9, bytes, "GB/s"};
  };
  return {row(
              "contiguous copy, 32 MB, all threads", "memcpy",
              [] { MTensor_copyContiguousData(target, 0, source, 0, doubles); }, copy),
          row(
              "fill with a double, 32 MB, all threads", "memset",
              [] { MTensor_setData(target, 0, 1, &value, 1); }, set),
          row(
              "zero, 32 MB, all threads", "memset", [] { MTensor_zero(target); }, set),
          row(
              "take of whole rows into a new array, 32 MB, all threads", "malloc + memcpy",
              [] {
                const mint start = 1, end = -1, step = 1;
                MTensor_take(&taken, matrix, 1, &start, &end, &step, nullptr);
                MTensor_delete(taken);
              },
              fresh_copy)};
}

const peers::registered_group group("copy", rows);

}  // namespace
