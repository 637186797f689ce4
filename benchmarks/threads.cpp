// exp over 10 million Real64 on one thread and on two, by the wall clock.
#include "support.h"

namespace bench {
namespace {

constexpr mint long_length = 10'000'000;

void exp_on_threads(benchmark::State& state, mint threads) {
  static const std::vector<double> x = uniform<double>(long_length, -10, 10);
  const thread_number team(threads);
  run_into_new(state, MNumericArray_getUnaryVectorMachFunc(MachFunc_exp, MNumericArrayTypeReal64), x,
               MACHFUNC_CHECK_FP, [](double y) { return std::exp(y); });
}

}  // namespace

void register_threads() {
  for (const mint threads : {1, 2}) {
    benchmark::RegisterBenchmark(("threads/exp/" + std::to_string(threads)).c_str(), exp_on_threads, threads)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace bench
