// A slow model of the conversions: every element is an exact number of MPFR, every format a line of decimal constants, every rule a
// sentence. Nothing here is shared with the library.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "support/oracle.h"

namespace conversion_model {

using oracle::number;

inline bool less(const number& a, const number& b) { return mpfr_less_p(a.get(), b.get()) != 0; }
inline bool equal(const number& a, const number& b) { return mpfr_equal_p(a.get(), b.get()) != 0; }
inline bool is_nan(const number& a) { return mpfr_nan_p(a.get()) != 0; }
/// A decimal, parsed once.
inline const number& written(const char* decimal) {
  static std::map<const char*, number> parsed;
  const auto known = parsed.find(decimal);
  if (known != parsed.end()) return known->second;
  number r;
  mpfr_set_str(r.get(), decimal, 10, MPFR_RNDN);
  return parsed.emplace(decimal, r).first->second;
}
inline number power(long exponent) {
  number r(1.0);
  mpfr_mul_2si(r.get(), r.get(), exponent, MPFR_RNDN);
  return r;
}
inline number absolute(const number& x) {
  number r;
  mpfr_abs(r.get(), x.get(), MPFR_RNDN);
  return r;
}
inline number negative(const number& x) { return number(0.0) - x; }
/// To the nearest integer, ties to even; a zero keeps its sign.
inline number to_integer(const number& x) {
  number r;
  mpfr_roundeven(r.get(), x.get());
  return r;
}
inline number floor_of(const number& x) {
  number r;
  mpfr_floor(r.get(), x.get());
  return r;
}
inline number truncated(const number& x) {
  number r;
  mpfr_trunc(r.get(), x.get());
  return r;
}

struct format {
  const char* name;
  char kind;  ///< i, u, r, c
  int bytes;  ///< of a part
  int bits;   ///< of an integer, sign included; significand bits of a real
  const char* low;
  const char* high;    ///< of an integer; the largest finite number of a real
  int least_exponent;  ///< of the unit of subnormals
};

/// By type code less 1.
inline const format formats[13] = {
    {"Integer8", 'i', 1, 8, "-128", "127", 0},
    {"UnsignedInteger8", 'u', 1, 8, "0", "255", 0},
    {"Integer16", 'i', 2, 16, "-32768", "32767", 0},
    {"UnsignedInteger16", 'u', 2, 16, "0", "65535", 0},
    {"Integer32", 'i', 4, 32, "-2147483648", "2147483647", 0},
    {"UnsignedInteger32", 'u', 4, 32, "0", "4294967295", 0},
    {"Integer64", 'i', 8, 64, "-9223372036854775808", "9223372036854775807", 0},
    {"UnsignedInteger64", 'u', 8, 64, "0", "18446744073709551615", 0},
    {"Real32", 'r', 4, 24, "", "340282346638528859811704183484516925440", -149},
    {"Real64", 'r', 8, 53, "", "1.7976931348623157081452742373170435679807056752584e308", -1074},
    {"ComplexReal32", 'c', 4, 24, "", "340282346638528859811704183484516925440", -149},
    {"ComplexReal64", 'c', 8, 53, "", "1.7976931348623157081452742373170435679807056752584e308", -1074},
    {"Real16", 'r', 2, 11, "", "65504", -24},
};
inline const format& format_of(int32_t type) { return formats[type - 1]; }
inline bool is_integer(const format& f) { return f.kind == 'i' || f.kind == 'u'; }
inline bool is_half(const format& f) { return f.bits == 11; }
inline int parts_of(const format& f) { return f.kind == 'c' ? 2 : 1; }

/// The nearest number of a real format, ties to even, infinite beyond the largest.
inline number nearest_once(const format& f, const number& x) {
  if (mpfr_number_p(x.get()) == 0 || mpfr_zero_p(x.get()) != 0) return x;
  const long unit = std::max<long>(mpfr_get_exp(x.get()) - f.bits, f.least_exponent);
  number r = x;
  mpfr_div_2si(r.get(), r.get(), unit, MPFR_RNDN);
  r = to_integer(r);
  mpfr_mul_2si(r.get(), r.get(), unit, MPFR_RNDN);
  if (less(written(f.high), absolute(r))) mpfr_set_inf(r.get(), mpfr_sgn(x.get()));
  return r;
}
/// Halves are reached by way of Real32.
inline number nearest(const format& f, const number& x) {
  return nearest_once(f, is_half(f) ? nearest_once(formats[8], x) : x);
}

inline number decode(const format& f, const void* part) {
  number r;
  if (f.kind == 'i') {
    int64_t v = 0;
    std::memcpy(&v, part, static_cast<size_t>(f.bytes));
    v = static_cast<int64_t>(static_cast<uint64_t>(v) << (64 - f.bits)) >> (64 - f.bits);
    mpfr_set_si(r.get(), v, MPFR_RNDN);
  } else if (f.kind == 'u') {
    uint64_t v = 0;
    std::memcpy(&v, part, static_cast<size_t>(f.bytes));
    mpfr_set_ui(r.get(), v, MPFR_RNDN);
  } else if (f.bytes == 4) {
    float v;
    std::memcpy(&v, part, 4);
    mpfr_set_d(r.get(), static_cast<double>(v), MPFR_RNDN);
  } else if (f.bytes == 8) {
    double v;
    std::memcpy(&v, part, 8);
    mpfr_set_d(r.get(), v, MPFR_RNDN);
  } else {
    uint16_t v;
    std::memcpy(&v, part, 2);
    const int exponent = v >> 10 & 31, fraction = v & 1023;
    double size = exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
    if (exponent == 31) size = fraction != 0 ? NAN : INFINITY;
    mpfr_set_d(r.get(), v & 0x8000 ? -size : size, MPFR_RNDN);
  }
  return r;
}

/// Whether a part in memory is this number, zeros by their sign too; any NaN is a NaN.
inline bool holds(const format& f, const void* part, const number& expected) {
  const number got = decode(f, part);
  if (is_nan(expected)) return is_nan(got);
  if (!equal(got, expected)) return false;
  return is_integer(f) || mpfr_zero_p(expected.get()) == 0 ||
         mpfr_signbit(got.get()) == mpfr_signbit(expected.get());
}

// ---- The tolerance test, step by step ----

inline number factor_of(const format& f, double tolerance) {
  const double whole = std::floor(tolerance);
  if (whole == tolerance) return power(static_cast<long>(tolerance) - f.bits);
  const double fraction = tolerance - whole;
  const double root =
      f.bits == 24 ? static_cast<double>(std::exp2(static_cast<float>(fraction))) : std::exp2(fraction);
  return nearest_once(f, number(root)) * power(static_cast<long>(whole) - f.bits);
}

/// -1, 0 or 1. The tolerance is taken in the format.
inline int compare(const format& f, double given, const number& x, const number& y) {
  const double tolerance = mpfr_get_d(nearest(f, number(given)).get(), MPFR_RNDN);
  const number zero(0.0);
  if (equal(x, y)) return 0;
  if (equal(x, zero)) return less(y, zero) ? 1 : -1;
  if (equal(y, zero) || less(x, zero) != less(y, zero)) return less(x, zero) ? -1 : 1;
  const int order = less(y, x) ? 1 : -1;
  if (!(tolerance > 0)) return order;
  if (tolerance >= f.bits) return 0;
  number difference = nearest_once(f, order > 0 ? x - y : y - x);
  number size = less(absolute(x), absolute(y)) ? absolute(y) : absolute(x);
  if (equal(difference, size)) return order;
  const number factor = factor_of(f, tolerance);
  if (!less(size, number(1.0))) {
    size = nearest_once(f, size * factor);
  } else {
    difference = nearest_once(f, difference / factor);
  }
  return less(difference, size) ? 0 : order;
}

inline bool negligible(const format& f, double tolerance, const number& re, const number& im) {
  if (tolerance < 0) return false;
  if (equal(im, number(0.0)) || tolerance >= f.bits) return true;
  const bool differ = (mpfr_signbit(re.get()) != 0) != (mpfr_signbit(im.get()) != 0);
  return compare(f, tolerance, re, nearest_once(f, differ ? re + im : re - im)) == 0;
}

// ---- The rules: base method 1, 3, 5, 7 or 9 ----

struct result {
  bool refused = false;
  bool stored = true;  ///< whether the target is written
  number value = number(0.0);
};
inline result refuse() { return {true, false, number(0.0)}; }

inline result integer_to_integer(const format& s, const format& t, int method, bool clip, const number& v) {
  const number low = written(t.low), high = written(t.high);
  if (method != 7) {
    if (!less(v, low) && !less(high, v)) return {false, true, v};
    return clip ? result{false, true, less(v, low) ? low : high} : refuse();
  }
  const number up = v - written(s.low);  // from 0
  if (t.bits <= s.bits) return {false, true, floor_of(up / power(s.bits - t.bits)) + low};
  if (s.kind == 'u' && t.kind == 'u') return {false, true, v * (power(t.bits) - 1.0) / (power(s.bits) - 1.0)};
  number wide = v * power(t.bits - s.bits);
  if (less(number(0.0), v)) wide = wide + power(t.bits - s.bits) - number(1.0);
  if (s.kind != t.kind) wide = s.kind == 'i' ? wide + power(t.bits - 1) : wide - power(t.bits - 1);
  return {false, true, wide};
}

inline number smaller(const number& a, const number& b) { return less(b, a) ? b : a; }

inline result integer_to_real(const format& s, const format& t, int method, bool clip, const number& v) {
  const number largest = written(t.high);
  const bool below_zero = less(v, number(0.0));
  const bool beyond_half = is_half(t) && less(largest, absolute(v));
  const number signed_one(below_zero ? -1.0 : 1.0);
  if (method == 7) {
    if (beyond_half) return clip ? result{false, true, signed_one} : refuse();
    number unit = nearest_once(t, written(s.high));
    number low_unit = power(s.bits - 1);
    if (is_half(t) && s.bits > 16 - (s.kind == 'u')) unit = low_unit = largest;
    return {false, true, nearest_once(t, nearest(t, v) / (below_zero ? low_unit : unit))};
  }
  const number r = nearest(t, v);
  if (method == 3 || method == 5) {
    if (beyond_half) return clip ? result{false, true, signed_one * largest} : refuse();
    return {false, true, r};
  }
  // The largest number of the format that is not above the largest integer.
  number limit = smaller(nearest_once(t, written(s.high)), largest);
  if (less(written(s.high), limit)) limit = limit - power(mpfr_get_exp(limit.get()) - 1 - t.bits);
  const bool above = less(limit, v), below = is_half(t) && less(v, negative(largest));
  if (above || below) {
    if (!clip) return refuse();
    return {false, true, below ? negative(largest) : smaller(nearest_once(t, written(s.high)), largest)};
  }
  return equal(r, v) ? result{false, true, r} : refuse();
}

inline result into_range(const format& s, const format& t, bool clip, const number& r) {
  const number low = written(t.low), high = written(t.high);
  number most = nearest_once(s, high);
  if (less(high, most)) {
    most =
        mpfr_inf_p(most.get()) != 0 ? written(s.high) : most - power(mpfr_get_exp(most.get()) - 1 - s.bits);
  }
  number least = nearest_once(s, low);
  if (mpfr_inf_p(least.get()) != 0) least = negative(written(s.high));
  if (less(r, least) || less(most, r)) {
    if (!clip) return refuse();
    return {false, true, less(number(0.0), r) ? high : low};
  }
  return {false, true, is_nan(r) ? number(0.0) : truncated(r)};
}

inline result real_to_integer(const format& s, const format& t, int method, bool clip, double tolerance,
                              const number& x) {
  if (method == 9) return refuse();
  const bool cut = tolerance >= s.bits;
  if (method != 7) {
    const number r = cut ? x : to_integer(x);
    if (method != 5 && !cut && compare(s, tolerance, x, r) != 0) return refuse();
    return into_range(s, t, clip, r);
  }
  const number low(t.kind == 'i' ? -1.0 : 0.0), high(1.0);
  number u = x;
  if (less(x, low) || less(high, x)) {
    if (!clip) return refuse();
    u = less(x, low) ? low : high;
  }
  number factor =
      t.kind == 'i' && less(u, number(0.0)) ? power(t.bits - 1) : nearest_once(s, written(t.high));
  if (is_half(s) && (t.bits > 16 || (t.bits == 16 && t.kind == 'u'))) factor = number(65504.0);
  const number y = nearest_once(s, u * factor);
  return into_range(s, t, clip, cut ? y : to_integer(y));
}

inline result real_to_real(const format& s, const format& t, int method, bool clip, double tolerance,
                           const number& x) {
  if (t.bits >= s.bits) return {false, true, method == 5 ? to_integer(x) : x};
  const number most = written(t.high);
  number inside = x;
  if (less(most, absolute(x))) {
    if (!clip) return refuse();
    inside = less(x, number(0.0)) ? negative(most) : most;
  }
  const number v = nearest(t, inside);
  if (method == 5) return {false, true, to_integer(v)};
  const bool tests = method == 1 || method == 9;
  return {tests && compare(s, tolerance, x, v) != 0, true, v};
}

inline result convert_part(const format& s, const format& t, int method, bool clip, double tolerance,
                           const number& x) {
  if (is_integer(s)) {
    return is_integer(t) ? integer_to_integer(s, t, method, clip, x) : integer_to_real(s, t, method, clip, x);
  }
  return is_integer(t) ? real_to_integer(s, t, method, clip, tolerance, x)
                       : real_to_real(s, t, method, clip, tolerance, x);
}

struct element_result {
  bool refused = false;
  bool stored = true;
  number parts[2] = {number(0.0), number(0.0)};
};

/// One element by a method code 1 to 10.
inline element_result convert(int32_t source_type, int32_t target_type, int32_t code, double tolerance,
                              const void* source) {
  const format &s = format_of(source_type), &t = format_of(target_type);
  const int method = code - (code % 2 == 0);
  const bool clip = code % 2 == 0;
  const char* bytes = static_cast<const char*>(source);
  const number re = decode(s, bytes), im = parts_of(s) == 2 ? decode(s, bytes + s.bytes) : number(0.0);
  if (source_type == target_type && (is_integer(s) || method != 5)) return {false, true, {re, im}};
  if (parts_of(s) == 2 && parts_of(t) == 1 && !negligible(s, tolerance, re, im)) return {true, false, {}};
  const result first = convert_part(s, t, method, clip, tolerance, re);
  if (parts_of(s) == 1 || parts_of(t) == 1) return {first.refused, first.stored, {first.value, number(0.0)}};
  const result second = convert_part(s, t, method, clip, tolerance, im);
  return {first.refused || second.refused, first.stored && second.stored, {first.value, second.value}};
}

inline bool holds_element(int32_t type, const void* element, const element_result& expected) {
  const format& f = format_of(type);
  const char* bytes = static_cast<const char*>(element);
  return holds(f, bytes, expected.parts[0]) &&
         (f.kind != 'c' || holds(f, bytes + f.bytes, expected.parts[1]));
}

}  // namespace conversion_model
