// Sums, differences, products and quotients of 4 million elements on all threads, beside the rate at which as many threads read two arrays
// and write a third (the triad of the STREAM benchmark).
#include <omp.h>

#include <memory>
#include <random>

#include "rows.h"
#include "velorim/velorim.h"

namespace {

constexpr mint length = 4'000'000;

void triad(double* result, const double* x, const double* y, int threads) {
#pragma omp parallel for num_threads(threads) schedule(static)
  for (mint i = 0; i < length; ++i) result[i] = x[i] + 3.0 * y[i];
}

struct operands {
  std::vector<double> x, y, result, peer;
  std::vector<mint> i, j, integers;
};

std::vector<peers::row> rows() {
  const auto data = std::make_shared<operands>();
  std::mt19937_64 engine(4);
  std::uniform_real_distribution<double> distribution(1, 10);
  for (auto* v : {&data->x, &data->y, &data->result, &data->peer}) v->resize(length);
  for (auto* v : {&data->i, &data->j, &data->integers}) v->resize(length);
  for (size_t k = 0; k < length; ++k) {
    data->x[k] = distribution(engine);
    data->y[k] = distribution(engine);
    data->i[k] = static_cast<mint>(engine() % 2000000) - 1000000;
    data->j[k] = static_cast<mint>(engine() % 2000000) - 1000000;
  }
  const int threads = omp_get_num_procs();
  std::vector<peers::row> all;
  const auto add = [&](const char* name, int32_t number, int32_t type, const void* x, const void* y,
                       void* result) {
    const MachFuncVector2 kernel = MNumericArray_getBinaryVectorMachFunc(number, type, type);
    const auto position = std::make_shared<mint>(0);
    all.push_back(
        {std::string(name) + " of 4 million elements, " + std::to_string(threads) + " threads", "triad",
         [=] {
           const mint before = setParallelThreadNumber(threads);
           *position =
               kernel(result, x, y, length, UnitIncrements, MACHFUNC_CHECK_FP | MACHFUNC_CHECK_INTEGER);
           restoreParallelThreadNumber(before);
         },
         [data, threads] { triad(data->peer.data(), data->x.data(), data->y.data(), threads); },
         [position] { return *position == 0; }, peers::bar_kind::rate_at_least, 0.9, 24.0 * length, "GB/s"});
  };
  constexpr int32_t real = MNumericArrayTypeReal64, integer = MNumericArrayTypeInteger64;
  add("Real64 plus", MachFunc_plus, real, data->x.data(), data->y.data(), data->result.data());
  add("Real64 subtract", MachFunc_subtract, real, data->x.data(), data->y.data(), data->result.data());
  add("Real64 times", MachFunc_times, real, data->x.data(), data->y.data(), data->result.data());
  add("Real64 div", MachFunc_div, real, data->x.data(), data->y.data(), data->result.data());
  add("Integer64 plus", MachFunc_plus, integer, data->i.data(), data->j.data(), data->integers.data());
  add("Integer64 times", MachFunc_times, integer, data->i.data(), data->j.data(), data->integers.data());
  return all;
}

const peers::registered_group group("arithmetic", rows);

}  // namespace
