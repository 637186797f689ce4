// Elements at which conversions change their mind: the ends of every range and what lies beside them, in each source type.
#pragma once

#include <bit>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "exact_model.h"

namespace conversion_model {

/// Elements of one type, as bytes side by side.
struct samples {
  size_t bytes = 0;
  std::vector<char> data;
  size_t count() const { return data.size() / bytes; }
  const char* at(size_t i) const { return data.data() + i * bytes; }
};

/// The numbers of interest, as doubles or wider: as decimals.
inline const std::vector<std::string>& edges() {
  static const std::vector<std::string> all = [] {
    std::vector<std::string> e = {"0",
                                  "1",
                                  "2",
                                  "3",
                                  "63.5",
                                  "64",
                                  "100",
                                  "2048",
                                  "2049",
                                  "16777216",
                                  "9007199254740992",
                                  "32752",
                                  "32768",
                                  "65504",
                                  "65520",
                                  "65536",
                                  "2147483520",
                                  "4294967040",
                                  "9223372036854774784",
                                  "18446744073709549568",
                                  "9223371487098961920",
                                  "18446742974197923840",
                                  "340282346638528859811704183484516925440",
                                  "1e300",
                                  "0.5",
                                  "1.5",
                                  "2.5",
                                  "0.25",
                                  "6.103515625e-5",
                                  "5.9604644775390625e-8",
                                  "1.401298464324817e-45",
                                  "1e-20"};
    for (const format& f : formats) {
      if (is_integer(f)) e.push_back(f.high);
    }
    return e;
  }();
  return all;
}

template <class Bits>
void add_reals_beside(std::set<std::vector<char>>& found, const format& f, const number& edge) {
  for (const double sign : {1.0, -1.0}) {
    for (int step = -2; step <= 2; ++step) {
      const number x = nearest_once(f, edge * number(sign));
      Bits bits = 0;
      if constexpr (sizeof(Bits) == 8) {
        bits = std::bit_cast<uint64_t>(mpfr_get_d(x.get(), MPFR_RNDN));
      } else if constexpr (sizeof(Bits) == 4) {
        bits = std::bit_cast<uint32_t>(static_cast<float>(mpfr_get_d(x.get(), MPFR_RNDN)));
      } else {
        // The bits of halves ascend with their size: the model's decoding, searched backwards.
        for (int bit = 14; bit >= 0; --bit) {
          const uint16_t higher[4] = {static_cast<uint16_t>(bits | 1 << bit)};
          const number value = decode(f, higher);
          if (!is_nan(value) && !less(absolute(x), value)) bits = higher[0];
        }
        if (sign < 0) bits = static_cast<Bits>(bits | 0x8000);
      }
      bits = static_cast<Bits>(bits + static_cast<Bits>(step));
      std::vector<char> element(sizeof bits);
      std::memcpy(element.data(), &bits, sizeof bits);
      found.insert(element);
    }
  }
}

inline samples samples_of_part(const format& f) {
  std::set<std::vector<char>> found;
  for (const std::string& edge : edges()) {
    number e;
    mpfr_set_str(e.get(), edge.c_str(), 10, MPFR_RNDN);
    if (!is_integer(f)) {
      if (f.bytes == 8) add_reals_beside<uint64_t>(found, f, e);
      if (f.bytes == 4) add_reals_beside<uint32_t>(found, f, e);
      if (f.bytes == 2) add_reals_beside<uint16_t>(found, f, e);
      continue;
    }
    for (const double sign : {1.0, -1.0}) {
      for (double step = -2; step <= 2; ++step) {
        const number v = truncated(e) * number(sign) + number(step);
        if (less(v, written(f.low)) || less(written(f.high), v)) continue;
        const uint64_t bits = f.kind == 'i' ? static_cast<uint64_t>(mpfr_get_si(v.get(), MPFR_RNDN))
                                            : static_cast<uint64_t>(mpfr_get_ui(v.get(), MPFR_RNDN));
        std::vector<char> element(static_cast<size_t>(f.bytes));
        std::memcpy(element.data(), &bits, element.size());
        found.insert(element);
      }
    }
  }
  samples s{static_cast<size_t>(f.bytes), {}};
  for (const std::vector<char>& element : found) s.data.insert(s.data.end(), element.begin(), element.end());
  return s;
}

/// A complex type has every part beside imaginary parts from nothing to everything.
inline const samples& samples_of(int32_t type) {
  static samples table[14];
  samples& s = table[type];
  if (s.bytes != 0) return s;
  const format& f = format_of(type);
  const samples parts = samples_of_part(f);
  s = parts;
  if (f.kind != 'c') return s;
  s = {2 * parts.bytes, {}};
  const double imaginary[] = {0.0, -0.0, 1e-20, 1e-3, 1.0, 70000.0, 1e39, NAN, INFINITY};
  for (size_t i = 0; i < parts.count(); ++i) {
    for (size_t k = 0; k < std::size(imaginary); ++k) {
      if (k > 1 && (i + k) % 3 != 0) continue;
      s.data.insert(s.data.end(), parts.at(i), parts.at(i) + parts.bytes);
      const float narrow = static_cast<float>(imaginary[k]);
      const char* im = f.bytes == 8 ? reinterpret_cast<const char*>(&imaginary[k])
                                    : reinterpret_cast<const char*>(&narrow);
      s.data.insert(s.data.end(), im, im + parts.bytes);
    }
  }
  return s;
}

}  // namespace conversion_model
