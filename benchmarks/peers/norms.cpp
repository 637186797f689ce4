// Norms of 4 million Real64 beside a loop that reads as much on as many threads, and the same of numbers that make it hard to add
// them side by side.
#include <omp.h>

#include <cmath>
#include <memory>
#include <random>

#include "rows.h"
#include "velorim/velorim.h"

namespace {

constexpr mint length = 4'000'000;
using numbers = std::shared_ptr<const std::vector<double>>;

double read_part(const double* x, mint n) {
  double sums[32] = {};
  for (mint i = 0; i + 32 <= n; i += 32) {
    for (mint k = 0; k < 32; ++k) sums[k] += x[i + k];
  }
  double sum = 0;
  for (const double s : sums) sum += s;
  return sum;
}

double read_all(const std::vector<double>& x, int threads) {
  double sum = 0;
  const mint part = static_cast<mint>(x.size()) / threads;
#pragma omp parallel for num_threads(threads) reduction(+ : sum)
  for (int i = 0; i < threads; ++i) sum += read_part(x.data() + i * part, part);
  return sum;
}

void add_rows(std::vector<peers::row>& rows, const char* kind, const numbers& x, int threads) {
  struct order {
    const char* name;
    mint p;
  };
  for (const auto& [name, p] : {order{"1", 1}, order{"2", 2}, order{"infinity", VectorNormInfinity}}) {
    const auto sink = std::make_shared<double>();
    rows.push_back({std::string("norm ") + name + " of 4 million " + kind + ", " + std::to_string(threads) +
                        (threads == 1 ? " thread" : " threads"),
                    "read loop",
                    [=, p = p] {
                      const mint before = setParallelThreadNumber(threads);
                      machfunc_d_vectornorm(sink.get(), p, length, x->data(), 1, MACHFUNC_CHECK_FP);
                      restoreParallelThreadNumber(before);
                    },
                    [=] { *sink = read_all(*x, threads); }, [=] { return std::isfinite(*sink); },
                    peers::bar_kind::rate_at_least, 0.8, 8.0 * length, "GB/s"});
  }
}

std::vector<peers::row> rows() {
  std::mt19937_64 engine(9);
  std::uniform_real_distribution<double> distribution(-1, 1);
  std::vector<double> uniform(length), single(length), rising(length);
  for (size_t i = 0; i < uniform.size(); ++i) {
    uniform[i] = distribution(engine);
    single[i] = static_cast<float>(distribution(engine));
    rising[i] = static_cast<double>(i);
  }
  std::vector<peers::row> all;
  const auto data = std::make_shared<const std::vector<double>>(std::move(uniform));
  for (int threads = 1; threads <= std::max(1, omp_get_num_procs()); threads *= 2)
    add_rows(all, "Real64", data, threads);
  add_rows(all, "Real32 values", std::make_shared<const std::vector<double>>(std::move(single)), 1);
  add_rows(all, "rising Real64", std::make_shared<const std::vector<double>>(std::move(rising)), 1);
  return all;
}

const peers::registered_group group("norms", rows);

}  // namespace
