// The column-major routines: matrix products beside OpenBLAS, the others beside a loop that reads as much memory.
#include <cmath>
#include <complex>
#include <cstdlib>
#include <memory>
#include <random>
#include <type_traits>
#include <utility>

#include "rows.h"
#include "velorim/velorim.h"

namespace {

constexpr const char* openblas = "libopenblas64.so.0";

template <class T> std::vector<T> random_numbers(size_t count) {
  std::mt19937_64 engine(3);
  std::uniform_real_distribution<double> distribution(-1, 1);
  std::vector<T> x(count);
  for (T& value : x) {
    if constexpr (std::is_floating_point_v<T>) {
      value = static_cast<T>(distribution(engine));
    } else {
      value = {static_cast<typename T::value_type>(distribution(engine)),
               static_cast<typename T::value_type>(distribution(engine))};
    }
  }
  return x;
}

/// One product with every argument that both sides take; Memory is the type in our prototype.
template <class T, class Memory> struct multiplication {
  using function = void (*)(const char*, const char*, const mint*, const mint*, const mint*, const Memory*,
                            const Memory*, const mint*, const Memory*, const mint*, const Memory*, Memory*,
                            const mint*);
  mint m, n, k;
  std::vector<T> a, b, ours, theirs;

  multiplication(mint rows, mint columns, mint inner)
      : m(rows),
        n(columns),
        k(inner),
        a(random_numbers<T>(static_cast<size_t>(rows * inner))),
        b(random_numbers<T>(static_cast<size_t>(inner * columns))),
        ours(static_cast<size_t>(rows * columns)),
        theirs(ours.size()) {}
  void run(function f, std::vector<T>& c, int repeats) {
    const T one = 1, zero = 0;
    const auto memory = [](auto* p) {
      using target =
          std::conditional_t<std::is_const_v<std::remove_pointer_t<decltype(p)>>, const Memory*, Memory*>;
      return reinterpret_cast<target>(p);
    };
    for (int i = 0; i < repeats; ++i) {
      f("N", "N", &m, &n, &k, memory(&one), memory(std::as_const(a).data()), &m,
        memory(std::as_const(b).data()), &k, memory(&zero), memory(c.data()), &m);
    }
  }
  bool agree() const {
    double worst = 0;
    for (size_t i = 0; i < ours.size(); ++i)
      worst = std::max(worst, static_cast<double>(std::abs(ours[i] - theirs[i])));
    return worst <= 1e-6 * static_cast<double>(k) *
                        (sizeof(T) / (std::is_floating_point_v<T> ? 1 : 2) == 4 ? 10 : 1e-6);
  }
};

template <class T, class Memory>
void add_products(std::vector<peers::row>& rows, const char* letter,
                  typename multiplication<T, Memory>::function ours) {
  using work = multiplication<T, Memory>;
  const auto theirs = reinterpret_cast<typename work::function>(
      peers::symbol_of(openblas, (std::string(letter) + "gemm_|" + letter + "gemm_64_").c_str()));
  const auto set_threads = reinterpret_cast<void (*)(int)>(
      peers::symbol_of(openblas, "openblas_set_num_threads|openblas_set_num_threads64_"));
  if (theirs == nullptr || set_threads == nullptr) return;
  struct shape {
    const char* name;
    mint m, n, k;
    int most_threads;
  };
  constexpr shape shapes[] = {{"n = 64", 64, 64, 64, 2},         {"n = 256", 256, 256, 256, 2},
                              {"n = 1024", 1024, 1024, 1024, 2}, {"n = 8", 8, 8, 8, 1},
                              {"4 rows", 4, 1000, 1000, 1},      {"4 columns", 1000, 4, 1000, 1}};
  for (const auto& [name, m_rows, n_columns, k_inner, most_threads] : shapes) {
    const auto m = std::make_shared<work>(m_rows, n_columns, k_inner);
    const double products =
        static_cast<double>(m_rows) * static_cast<double>(n_columns) * static_cast<double>(k_inner);
    const int repeats = static_cast<int>(1 + 3e7 / (products + 1e4));
    for (int threads = 1; threads <= most_threads; ++threads) {
      const double flops = (std::is_floating_point_v<T> ? 2.0 : 8.0) * products * repeats;
      rows.push_back({std::string("vlb_") + letter + "gemm, " + name + ", " + std::to_string(threads) +
                          (threads == 1 ? " thread" : " threads"),
                      "OpenBLAS",
                      [=] {
                        const mint before = setParallelThreadNumber(threads);
                        m->run(ours, m->ours, repeats);
                        restoreParallelThreadNumber(before);
                      },
                      [=] {
                        set_threads(threads);
                        m->run(theirs, m->theirs, repeats);
                      },
                      [=] { return m->agree(); }, peers::bar_kind::rate_at_least, 0.8, flops, "GF"});
    }
  }
}

double read_all(const std::vector<double>& x) {
  double sums[32] = {};
  for (size_t i = 0; i + 32 <= x.size(); i += 32) {
    for (size_t k = 0; k < 32; ++k) sums[k] += x[i + k];
  }
  double sum = 0;
  for (const double s : sums) sum += s;
  return sum;
}

void add_vectors(std::vector<peers::row>& rows) {
  static const mint n = 8 << 20, one = 1, m = 2048, columns = n / m;
  static const std::vector<double> x = random_numbers<double>(static_cast<size_t>(n));
  static std::vector<double> y(static_cast<size_t>(std::max(m, columns)), 1.0);
  static const double alpha = 1.5, beta = 0.5;
  static double sink;
  const auto add = [&rows](const char* name, double bytes, std::function<void()> ours) {
    rows.push_back({name, "read loop", ours,
                    [bytes] {
                      for (double done = 0; done < bytes; done += 8.0 * n) sink = read_all(x);
                    },
                    [] { return std::isfinite(sink); }, peers::bar_kind::rate_at_least, 0.85, bytes, "GB/s"});
  };
  static const std::vector<double> z = x;
  add("vlb_dgemv, not transposed, 64 MB", 8.0 * n,
      [] { vlb_dgemv("N", &m, &columns, &alpha, x.data(), &m, x.data(), &one, &beta, y.data(), &one); });
  add("vlb_dgemv, transposed, 64 MB", 8.0 * n,
      [] { vlb_dgemv("T", &m, &columns, &alpha, x.data(), &m, x.data(), &one, &beta, y.data(), &one); });
  add("vlb_ddot, 2 x 64 MB", 16.0 * n, [] { sink = vlb_ddot(&n, x.data(), &one, z.data(), &one); });
  add("vlb_dasum, 64 MB", 8.0 * n, [] { sink = vlb_dasum(&n, x.data(), &one); });
  add("vlb_dnrm2, 64 MB", 8.0 * n, [] { sink = vlb_dnrm2(&n, x.data(), &one); });
}

std::vector<peers::row> rows() {
#if defined(__AVX512F__)
  setenv("OPENBLAS_CORETYPE", "SkylakeX",
         0);  // the peer's best kernel here, which it does not always find by itself
#endif
  std::vector<peers::row> all;
  add_products<double, double>(all, "d", vlb_dgemm);
  add_products<float, float>(all, "s", vlb_sgemm);
  add_products<std::complex<double>, mcomplex>(all, "z", vlb_zgemm);
  add_products<std::complex<float>, float>(all, "c", vlb_cgemm);
  add_vectors(all);
  return all;
}

const peers::registered_group group("blas", rows);

}  // namespace
