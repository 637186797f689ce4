// Bits and digits of integers.
#pragma once

#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"

namespace vlm::machine_function {

struct EvenQ {
  static constexpr int32_t number = 54;
  static constexpr char name[] = "evenq";
  static constexpr char return_range[] = "BB-";
  struct on_integers : never_fails {
    template <class T> static constexpr mint value(T x) { return (x & 1) == 0; }
  };
};

struct OddQ {
  static constexpr int32_t number = 55;
  static constexpr char name[] = "oddq";
  static constexpr char return_range[] = "BB-";
  struct on_integers : never_fails {
    template <class T> static constexpr mint value(T x) { return x & 1; }
  };
};

/// One bits of the magnitude; the most negative number has one.
struct BitCount {
  static constexpr int32_t number = 61;
  static constexpr char name[] = "bitcount";
  static constexpr char return_range[] = "I--";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) {
      return static_cast<T>(std::popcount(unsigned_magnitude(x)));
    }
  };
};

struct BitNot {
  static constexpr int32_t number = 62;
  static constexpr char name[] = "bitnot";
  static constexpr char return_range[] = "I--";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return static_cast<T>(~x); }
  };
};

/// Bits up to the highest one bit of x, or of its complement if it is negative.
struct BitLength {
  static constexpr int32_t number = 63;
  static constexpr char name[] = "bitlength";
  static constexpr char return_range[] = "I--";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) {
      const auto magnitude_bits = bits_of(static_cast<T>(x < 0 ? ~x : x));
      return static_cast<T>(std::bit_width(magnitude_bits));
    }
  };
};

/// The largest k such that 10^k divides x.
struct IntExp10 {
  static constexpr int32_t number = 64;
  static constexpr char name[] = "intexp10";
  static constexpr char return_range[] = "I--";
  struct on_integers {
    static constexpr check obeys = check::always;
    template <class T> static constexpr T value(T x) {
      T k = 0;
      for (auto m = unsigned_magnitude(x); m != 0 && m % 10 == 0; m = static_cast<decltype(m)>(m / 10)) ++k;
      return k;
    }
    template <class T> static constexpr VelorimError failure(T x) {
      return x == 0 ? VelorimError_argument : VelorimError_success;
    }
  };
};

/// Decimal digits of the magnitude; none for 0.
struct IntLen10 {
  static constexpr int32_t number = 65;
  static constexpr char name[] = "intlen10";
  static constexpr char return_range[] = "I--";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) {
      T digits = 0;
      for (auto m = unsigned_magnitude(x); m != 0; m = static_cast<decltype(m)>(m / 10)) ++digits;
      return digits;
    }
  };
};

using bit_functions = function_list<EvenQ, OddQ, BitCount, BitNot, BitLength, IntExp10, IntLen10>;

}  // namespace vlm::machine_function
