// Fibonacci and Lucas numbers, the gamma function, the error function.
#pragma once

#include <array>
#include <cfenv>

#include "Arithmetic/Kernels/complex/special.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "Arithmetic/Kernels/vector_math.h"

namespace vlm::machine_function {

/// The first N terms of a(n) = a(n-1) + a(n-2).
template <size_t N> constexpr std::array<uint64_t, N> additive_sequence(uint64_t a0, uint64_t a1) {
  std::array<uint64_t, N> a{a0, a1};
  for (size_t n = 2; n < N; ++n) a[n] = a[n - 1] + a[n - 2];
  return a;
}
inline constexpr auto fibonacci_numbers = additive_sequence<94>(0, 1);
inline constexpr auto lucas_numbers = additive_sequence<93>(2, 1);
static_assert(fibonacci_numbers[93] == 12200160415121876738u && lucas_numbers[92] == 16860207025497407047u);

/// Entry n is (n - 1)!, the gamma function at n; entry 0 is 0.
inline constexpr std::array<uint64_t, 22> factorials = [] {
  std::array<uint64_t, 22> f{0, 1};
  for (size_t n = 2; n < 22; ++n) f[n] = f[n - 1] * (n - 1);
  return f;
}();
static_assert(factorials[21] == 2432902008176640000);

/// The last index from which on entries do not fit T.
template <class T, size_t N> constexpr int last_fitting(const std::array<uint64_t, N>& table) {
  int last = static_cast<int>(N) - 1;
  while (table[static_cast<size_t>(last)] > static_cast<uint64_t>(std::numeric_limits<T>::max())) --last;
  return last;
}

/// The two real extensions below with their constants in the type: p = golden^x and cos(pi x) / p.
template <class T> struct golden_terms {
  T p, q;
  explicit golden_terms(T x)
      : p(vm::power(static_cast<T>(1.618033988749895), x)),
        q(vm::cos(static_cast<T>(3.141592653589793) * x) / p) {}
};

/// The integer class of a sequence a(n) of a table that runs on to negative n with alternating signs: a(-n) is -a(n) where n is
/// odd (odd_negated) or where n is even.
template <const auto& table, bool odd_negated> struct sequence_on_integers {
  static constexpr check obeys = check::always;
  template <class T> static constexpr int limit = last_fitting<T>(table);
  template <class T> static constexpr T value(T x) {
    const auto n = unsigned_magnitude(x);
    const T a = static_cast<T>(table[n < table.size() ? n : 0]);
    return x < 0 && (n % 2 == 1) == odd_negated ? wrapping_minus(a) : a;
  }
  template <class T> static constexpr VelorimError failure(T x) {
    return unsigned_magnitude(x) > limit<T> ? VelorimError_integer_overflow : VelorimError_success;
  }
};

struct Fibonacci {
  static constexpr int32_t number = 68;
  static constexpr char name[] = "fibonacci";
  static constexpr char return_range[] = "IRC";
  using on_integers = sequence_on_integers<fibonacci_numbers, false>;
  /// (golden^x - cos(pi x) / golden^x) / sqrt(5).
  struct on_reals : checked_real {
    template <class T> static T value(T x) {
      const golden_terms<T> g(x);
      return (g.p - g.q) / static_cast<T>(2.23606797749979);
    }
  };
  using on_complexes = complex_by<complex::fibonacci, checked_complex>;
};

struct LucasL {
  static constexpr int32_t number = 69;
  static constexpr char name[] = "lucasl";
  static constexpr char return_range[] = "IRC";
  using on_integers = sequence_on_integers<lucas_numbers, true>;
  /// golden^x + cos(pi x) / golden^x.
  struct on_reals : checked_real {
    template <class T> static T value(T x) {
      const golden_terms<T> g(x);
      return g.p + g.q;
    }
  };
  using on_complexes = complex_by<complex::lucasl, checked_complex>;
};

struct Erfc {
  static constexpr int32_t number = 74;
  static constexpr char name[] = "erfc";
  static constexpr char return_range[] = "-R-";
  struct on_reals : plain_real {
    template <class T> static T value(T x) { return vm::erfc(x); }
  };
};

struct Erf {
  static constexpr int32_t number = 75;
  static constexpr char name[] = "erf";
  static constexpr char return_range[] = "-R-";
  using on_reals = computed_by<vm::erf, plain_real>;
};

struct Gamma {
  static constexpr int32_t number = 76;
  static constexpr char name[] = "gamma";
  static constexpr char return_range[] = "IR-";
  struct on_integers {
    static constexpr check obeys = check::always;
    template <class T> static constexpr int limit = last_fitting<T>(factorials);
    template <class T> static constexpr T value(T x) {
      return static_cast<T>(factorials[x >= 0 && x < 22 ? static_cast<size_t>(x) : 0]);
    }
    template <class T> static constexpr VelorimError failure(T x) {
      return x < 1 || bits_of(x) > limit<T> ? VelorimError_integer_overflow : VelorimError_success;
    }
  };
  using on_reals = computed_by<vm::tgamma, checked_real>;
};

struct LogGamma {
  static constexpr int32_t number = 77;
  static constexpr char name[] = "loggamma";
  static constexpr char return_range[] = "-R-";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() { return vm::lgamma.range<T>(); }
    /// Not defined for x at most 0: invalid is raised and a signalling NaN is the value, which the result
    /// check refuses.
    template <class V> static V value(V x) {
      if constexpr (!is_register<V>) {
        if (__builtin_islessequal(x, V(0))) {
          std::feraiseexcept(FE_INVALID);
          if constexpr (std::is_same_v<V, double>) {
            return std::bit_cast<double>(uint64_t{0x7ff4000000000000});
          } else {
            return std::bit_cast<float>(uint32_t{0x7fa00000});
          }
        }
      }
      return vm::lgamma(x);
    }
  };
};

using special_functions = function_list<Fibonacci, LucasL, Erfc, Erf, Gamma, LogGamma>;

}  // namespace vlm::machine_function
