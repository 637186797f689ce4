// What the benchmarks share: inputs, the run of a vector kernel, the check of its results.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "velorim/velorim.h"

namespace bench {

/// Elements of the cases that are compared with peers: in the second-level cache for Real64, in and out.
inline constexpr mint compared_length = 100'000;

/// Uniform in [low, high), the same numbers in every run.
template <class T> std::vector<T> uniform(mint length, double low, double high) {
  std::mt19937_64 engine(20120101);
  std::uniform_real_distribution<double> distribution(low, high);
  std::vector<T> values(static_cast<size_t>(length));
  for (T& value : values) value = static_cast<T>(distribution(engine));
  return values;
}

/// Distance in units in the last place of the expected value, of complex numbers in epsilons of its magnitude.
template <class T> double distance(T got, T expected) {
  if constexpr (std::is_integral_v<T>) {
    return got == expected ? 0.0 : std::numeric_limits<double>::infinity();
  } else if constexpr (std::is_same_v<T, std::complex<double>>) {
    return std::abs(got - expected) / (std::abs(expected) * std::numeric_limits<double>::epsilon());
  } else {
    if (got == expected) return 0.0;
    const T next = std::nextafter(std::abs(expected), std::numeric_limits<T>::infinity());
    return std::abs(static_cast<double>(got) - static_cast<double>(expected)) /
           static_cast<double>(next - std::abs(expected));
  }
}

/// Ends the benchmark with an error unless every 97th result lies within 2 units in the last place of the
/// reference.
template <class T, class Reference>
bool verify(benchmark::State& state, const std::vector<T>& x, const std::vector<T>& results,
            Reference reference) {
  for (size_t i = 0; i < x.size(); i += 97) {
    if (!(distance<T>(results[i], reference(x[i])) <= 2.0)) {
      state.SkipWithError("a result is wrong");
      return false;
    }
  }
  return true;
}

template <class T> void count_elements(benchmark::State& state, mint length) {
  state.SetItemsProcessed(state.iterations() * length);
  state.SetBytesProcessed(state.iterations() * length * static_cast<mint>(2 * sizeof(T)));
}

/// Times single calls by the wall clock and keeps the fastest, which a busy machine disturbs least: the counter best_ns.
class call_timer {
 public:
  using clock = std::chrono::steady_clock;

  /// Runs the call; its seconds.
  template <class Call> double operator()(Call&& call) {
    const auto start = clock::now();
    call();
    const double seconds = std::chrono::duration<double>(clock::now() - start).count();
    best_ = std::min(best_, seconds);
    return seconds;
  }
  void report(benchmark::State& state) const { state.counters["best_ns"] = 1e9 * best_; }

 private:
  double best_ = std::numeric_limits<double>::infinity();
};

/// From one array into another.
template <class T, class Reference>
void run_into_new(benchmark::State& state, MachFuncVector1 kernel, const std::vector<T>& x, uint32_t flags,
                  Reference reference) {
  const mint length = static_cast<mint>(x.size());
  std::vector<T> results(x.size());
  call_timer timer;
  for (auto _ : state) {
    mint position = 0;
    timer([&] { position = kernel(results.data(), x.data(), length, UnitIncrements, flags); });
    if (position != 0) return state.SkipWithError("the kernel reports a failure");
  }
  if (!verify(state, x, results, reference)) return;
  timer.report(state);
  count_elements<T>(state, length);
}

/// In place. The input is laid out anew before each call, outside of the time that counts.
template <class T, class Reference>
void run_in_place(benchmark::State& state, MachFuncVector1 kernel, const std::vector<T>& x, uint32_t flags,
                  Reference reference) {
  const mint length = static_cast<mint>(x.size());
  std::vector<T> data(x.size());
  call_timer timer;
  for (auto _ : state) {
    mint position = 0;
    std::memcpy(data.data(), x.data(), x.size() * sizeof(T));
    state.SetIterationTime(
        timer([&] { position = kernel(data.data(), data.data(), length, UnitIncrements, flags); }));
    if (position != 0) return state.SkipWithError("the kernel reports a failure");
  }
  if (!verify(state, x, data, reference)) return;
  timer.report(state);
  count_elements<T>(state, length);
}

/// The thread number for the length of a benchmark.
class thread_number {
 public:
  explicit thread_number(mint n) : before_(setParallelThreadNumber(n)) {}
  ~thread_number() { restoreParallelThreadNumber(before_); }
  thread_number(const thread_number&) = delete;
  thread_number& operator=(const thread_number&) = delete;

 private:
  mint before_;
};

// Each registers the benchmarks of its file.
void register_elementary();
void register_integer();
void register_complex();
void register_lengths();
void register_threads();
void register_front_ends();
void register_conversion();

}  // namespace bench
