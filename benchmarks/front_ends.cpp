// The cost of a whole call: Math_T_T on tensors of 4 elements, the result reused, checks on.
#include "support.h"

namespace bench {
namespace {

MTensor* tensor_of(const std::vector<double>& values) {
  const mint length = static_cast<mint>(values.size());
  return MTensor_newCopyFromDataArray(MTensorTypeReal, 1, &length, values.data());
}

void whole_call(benchmark::State& state, int32_t number, double (*reference)(double)) {
  const std::vector<double> x = {0.5, 1.25, 2.0, 4.75};
  MTensor* source = tensor_of(x);
  MTensor* result = nullptr;
  for (auto _ : state) {
    if (Math_T_T(number, MACHFUNC_CHECK_FP, source, MTensorTypeReal, &result) != 0) {
      state.SkipWithError("Math_T_T reports a failure");
      break;
    }
    benchmark::DoNotOptimize(result);
  }
  if (result != nullptr) {
    const double* data = static_cast<const double*>(result->data);
    verify(state, x, std::vector<double>(data, data + x.size()), reference);
  }
  MTensor_delete(result);
  MTensor_delete(source);
}

}  // namespace

void register_front_ends() {
  benchmark::RegisterBenchmark("Math_T_T/sqrt/4", whole_call, MachFunc_sqrt,
                               [](double x) { return std::sqrt(x); });
  benchmark::RegisterBenchmark("Math_T_T/exp/4", whole_call, MachFunc_exp,
                               [](double x) { return std::exp(x); });
}

}  // namespace bench
