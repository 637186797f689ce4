// One function by length, from the first-level cache to memory, with and without checks, beside the loop that
// a user would write over the C library and beside memcpy. One thread.
#include "support.h"

namespace bench {
namespace {

void exp_kernel(benchmark::State& state, uint32_t flags) {
  const thread_number one(1);
  run_into_new(state, MNumericArray_getUnaryVectorMachFunc(MachFunc_exp, MNumericArrayTypeReal64),
               uniform<double>(state.range(0), -10, 10), flags, [](double x) { return std::exp(x); });
}

void exp_loop(benchmark::State& state) {
  const std::vector<double> x = uniform<double>(state.range(0), -10, 10);
  std::vector<double> results(x.size());
  for (auto _ : state) {
    for (size_t i = 0; i < x.size(); i++) results[i] = std::exp(x[i]);
    benchmark::DoNotOptimize(results.data());
    benchmark::ClobberMemory();
  }
  count_elements<double>(state, state.range(0));
}

void copy(benchmark::State& state) {
  const std::vector<double> x = uniform<double>(state.range(0), -10, 10);
  std::vector<double> results(x.size());
  for (auto _ : state) {
    std::memcpy(results.data(), x.data(), x.size() * sizeof(double));
    benchmark::DoNotOptimize(results.data());
    benchmark::ClobberMemory();
  }
  count_elements<double>(state, state.range(0));
}

}  // namespace

void register_lengths() {
  for (const int64_t length : {1'000, 20'000, 100'000, 10'000'000}) {
    benchmark::RegisterBenchmark("lengths/exp/checked", exp_kernel, MACHFUNC_CHECK_FP)->Arg(length);
    benchmark::RegisterBenchmark("lengths/exp/unchecked", exp_kernel, 0)->Arg(length);
    benchmark::RegisterBenchmark("lengths/exp/user_loop", exp_loop)->Arg(length);
    benchmark::RegisterBenchmark("lengths/memcpy", copy)->Arg(length);
  }
}

}  // namespace bench
