// Inverse circular and hyperbolic functions of complex numbers.
//
// asin and acos after T. E. Hull, T. F. Fairgrieve and P. T. P. Tang (Implementing the complex arcsine and arccosine functions
// using exception handling, ACM TOMS 23, 1997). On the real axis beyond 1 they take the side of the cut that
// asin(2) = (pi/2, -acosh 2), atanh(2) = (atanh(1/2), -pi/2) and their images under a change of sign say, for either zero.
#pragma once

#include "Arithmetic/Kernels/complex/function.h"
#include "Arithmetic/Kernels/complex/power.h"
#include "Arithmetic/Kernels/elementary/atan.h"
#include "Arithmetic/Kernels/elementary/log.h"

namespace vlm::complex {

namespace detail {

/// For a = |x| and b = |y|: A = (|z + 1| + |z - 1|) / 2, and without cancellation sqrt(A^2 - a^2), which is a over the tangent of
/// the real part of asin, and the imaginary part of both asin and acos, acosh A.
struct arc {
  lanes cotangent, imaginary;
};
inline arc arc_of(lanes a, lanes b) {
  const lanes ap = a + 1.0, am = a - 1.0, bb = b * b;
  const lanes r = square_root(fused(ap, ap, bb)), s = square_root(fused(am, am, bb));
  const lanes half_sum = (r + s) * 0.5;
  // |z + 1| - (a + 1) and |z - 1| - |a - 1|.
  const lanes s_sum = s + magnitude(am);
  const lanes r_excess = bb / (r + ap), s_excess = bb / s_sum;
  const lanes narrow = r_excess + s_excess, wide = r_excess + s_sum;
  const lanes h = (a + half_sum) * 0.5;
  const lanes m = select(am < lanes{}, narrow, wide) * 0.5;
  return {square_root(h * select(am > lanes{}, narrow, wide)),
          elementary::log1p(m + square_root((half_sum + 1.0) * m))};
}

inline lane_set arc_is_ordinary(parts<lanes> z) { return zero_or_squarable(z.re) & zero_or_squarable(z.im); }

/// What the sign of the imaginary part is taken from: y, but on the cuts the side that x tells.
inline lanes side(parts<lanes> z) {
  const auto on_cut = (z.im == lanes{}) & (magnitude(z.re) > all(1.0));
  return select(on_cut, -z.re, without_minus_zero(z.im));
}

/// The same for numbers, in the notation of the paper, with the ladder for parts that squares overflow or lose.
template <class T> struct arc_bounds {
  static constexpr T least = by_type<T>(3.7291703656001034e-155, 2.7105054e-20);
  static constexpr T most = by_type<T>(1.6759759912428245e153, 2305842871774740480.0);
  static constexpr T epsilon = std::numeric_limits<T>::epsilon();
  static constexpr T crossover_a = 10, crossover_b = T(0.6417);
  static bool safe(T a, T b) { return a > least && a < most && b > least && b < most; }
};

template <class T> struct arc_terms {
  T a, b, ap, am, yy, r, s, mean, ratio;  // the paper's A and B are mean and ratio
  arc_terms(T a_of, T b_of)
      : a(a_of),
        b(b_of),
        ap(a + 1),
        am(a - 1),
        yy(b * b),
        r(std::sqrt(yy + ap * ap)),
        s(std::sqrt(yy + am * am)),
        mean((r + s) / 2),
        ratio(a / mean) {}
  T cotangent() const {
    const T h = (a + mean) / 2;
    return a > 1 ? b * std::sqrt(h / (r + ap) + h / (s + am)) : std::sqrt(h * (yy / (r + ap) + (s - am)));
  }
  T imaginary() const {
    if (mean > arc_bounds<T>::crossover_a) return std::log(mean + std::sqrt(mean * mean - 1));
    const T m = a < 1 ? yy / (r + ap) + yy / (s - am) : am + s + yy / (r + ap);
    return std::log1p(m / 2 + std::sqrt((mean + 1) * m / 2));
  }
};

template <class T> inline T log_of_twice(T b) { return std::log(b) + ln2<T>; }

}  // namespace detail

namespace form {

struct asin {
  template <class T> static lane_set ordinary(parts<lanes> z) { return detail::arc_is_ordinary(z); }
  static parts<lanes> body(parts<lanes> z) {
    const lanes a = magnitude(z.re);
    const auto arc = detail::arc_of(a, magnitude(z.im));
    const lanes sign = select(z.im == lanes{}, z.re, without_minus_zero(z.re));
    return {with_sign_of(elementary::atan2(a, arc.cotangent), sign),
            with_sign_of(arc.imaginary, detail::side(z))};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    using bounds = detail::arc_bounds<T>;
    const T a = std::fabs(z.re), b = std::fabs(z.im);
    if (b == 0) {
      if (!(a > 1)) return {std::asin(z.re), 0};
      const T im = std::acosh(a);
      return z.re > 0 ? parts<T>{half_pi<T>, -im} : parts<T>{-half_pi<T>, im};
    }
    parts<T> w;
    if (bounds::safe(a, b)) {
      const detail::arc_terms<T> t(a, b);
      w = {t.ratio > bounds::crossover_b ? std::atan(a / t.cotangent()) : std::asin(t.ratio), t.imaginary()};
    } else {
      w = at_edges(a, b);
    }
    return {z.re < 0 ? -w.re : w.re, std::copysign(w.im, z.im)};
  }

 private:
  template <class T> static parts<T> at_edges(T a, T b) {
    using bounds = detail::arc_bounds<T>;
    const T ap = a + 1, am = a - 1;
    if (b <= std::fabs(am) * bounds::epsilon) {
      if (a < 1) return {std::asin(a), b / std::sqrt(-am * ap)};
      const bool fits = std::numeric_limits<T>::max() / ap > am;
      return {half_pi<T>, fits ? std::log1p(am + std::sqrt(ap * am)) : detail::log_of_twice(a)};
    }
    if (b <= bounds::least) return {half_pi<T> - std::sqrt(b), std::sqrt(b)};
    if (b * bounds::epsilon - 1 >= a) return {a / b, detail::log_of_twice(b)};
    if (a > 1) return {std::atan(a / b), detail::log_of_twice(b) + std::log1p((a / b) * (a / b)) / 2};
    const T w = std::sqrt(b * b + 1);
    return {a / w, std::log1p(2 * b * (b + w)) / 2};
  }
};

struct acos {
  template <class T> static lane_set ordinary(parts<lanes> z) { return detail::arc_is_ordinary(z); }
  /// The imaginary part has the sign that y has not, on the cuts and on the rest of the axis like that of asin.
  static parts<lanes> body(parts<lanes> z) {
    const auto arc = detail::arc_of(magnitude(z.re), magnitude(z.im));
    const auto on_cut = (z.im == lanes{}) & (magnitude(z.re) > all(1.0));
    const lanes against = select(on_cut, z.re, -without_minus_zero(z.im));
    return {elementary::atan2(arc.cotangent, without_minus_zero(z.re)),
            without_minus_zero(with_sign_of(arc.imaginary, against))};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    using bounds = detail::arc_bounds<T>;
    const T a = std::fabs(z.re), b = std::fabs(z.im);
    if (b == 0) {
      if (!(a > 1)) return {std::acos(z.re), 0};
      const T im = std::acosh(a);
      return z.re < 0 ? parts<T>{pi<T>, -im} : parts<T>{0, im};
    }
    parts<T> w;
    if (bounds::safe(a, b)) {
      const detail::arc_terms<T> t(a, b);
      w = {t.ratio > bounds::crossover_b ? std::atan(t.cotangent() / a) : std::acos(t.ratio), t.imaginary()};
    } else {
      w = at_edges(a, b);
    }
    return {z.re < 0 ? pi<T> - w.re : w.re, z.im < 0 ? w.im : -w.im};
  }

 private:
  template <class T> static parts<T> at_edges(T a, T b) {
    using bounds = detail::arc_bounds<T>;
    const T ap = a + 1, am = a - 1;
    if (b <= std::fabs(am) * bounds::epsilon) {
      if (a < 1) return {std::acos(a), b / std::sqrt(-am * ap)};
      if (std::numeric_limits<T>::max() / ap > am) {
        const T t = std::sqrt(am * ap);
        return {b / t, std::log1p(am + t)};
      }
      return {b / a, detail::log_of_twice(a)};
    }
    if (b <= bounds::least) return {std::sqrt(b), std::sqrt(b)};
    if (b * bounds::epsilon - 1 >= a) return {half_pi<T>, detail::log_of_twice(b)};
    if (a > 1) return {std::atan(b / a), detail::log_of_twice(b) + std::log1p((a / b) * (a / b)) / 2};
    return {half_pi<T>, std::log1p(2 * b * (b + std::sqrt(b * b + 1))) / 2};
  }
};

/// Real part: a quarter of log1p(4 a / (y^2 + (1 - a)^2)). Imaginary part: half the angle of ((1 - a)(1 + a) - y^2, 2 b).
struct atanh {
  /// Away from the poles.
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return detail::arc_is_ordinary(z) &
           ~(set_lanes(z.im == lanes{}) & set_lanes(magnitude(z.re) == all(1.0)));
  }
  static parts<lanes> body(parts<lanes> z) {
    const lanes a = magnitude(z.re), b = magnitude(z.im), bb = b * b;
    const lanes less = 1.0 - a;
    const lanes l = elementary::log1p(a * 4.0 / fused(less, less, bb));
    const lanes angle = elementary::atan2(b + b, fused(less, a + 1.0, -bb));
    return {with_sign_of(l * 0.25, z.re), with_sign_of(angle * 0.5, detail::side(z))};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    constexpr T least = by_type<T>(0x1p-512, 0x1p-64),
                most = by_type<T>(6.703903964971298e153, 9223371487098961920.0);
    const T a = std::fabs(z.re), b = std::fabs(z.im);
    if (b == 0) {
      if (!(a > 1)) return {std::atanh(z.re), 0};
      return {std::atanh(1 / z.re), z.re > 0 ? -half_pi<T> : half_pi<T>};
    }
    const T less = 1 - a;
    T l, angle;
    if (a > least && a < most && b > least && b < most) {
      l = std::log1p(4 * a / (b * b + less * less));
      angle = std::atan2(2 * b, less * (1 + a) - b * b);
    } else if (a >= most) {
      const T t = b >= most ? 4 / b / (a / b + b / a) : b > 1 ? 4 / (a + b * (b / a)) : 4 / a;
      l = std::log1p(t);
      angle = pi<T>;
    } else if (b < most) {
      l = a == 1 ? (std::log(b) - ln2<T>)*-2
                 : std::log1p(4 * a / (b > least ? b * b + less * less : less * less));
      angle = std::atan2(2 * b, a > least ? less * (1 + a) : b > least ? 1 - b * b : T{1});
    } else {
      l = a > 1 ? std::log1p(4 * a / b / (b + less * (less / b))) : 4 * (a / b) / b;
      angle = pi<T>;
    }
    return {std::copysign(l / 4, z.re), std::copysign(angle / 2, z.im)};
  }
};

/// Of i z, and turned back.
template <class Hyperbolic> struct circular {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return Hyperbolic::template ordinary<T>(turned(z));
  }
  static parts<lanes> body(parts<lanes> z) { return turned_back(Hyperbolic::body(turned(z))); }
  template <class T> static parts<T> outside(parts<T> z) {
    return turned_back(Hyperbolic::outside(turned(z)));
  }
};
using atan = circular<atanh>;
using asinh = circular<asin>;

/// acos turned to the side on which the real part is not negative.
struct acosh {
  template <class T> static lane_set ordinary(parts<lanes> z) { return acos::ordinary<T>(z); }
  static parts<lanes> body(parts<lanes> z) {
    const parts<lanes> w = acos::body(z);
    const auto upper = (z.im > lanes{}) | ((z.im == lanes{}) & ~(z.re > all(1.0)));
    return {select(upper, -w.im, w.im), select(upper, w.re, -w.re)};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    const parts<T> w = acos::outside(z);
    const bool upper = z.im > 0 || (z.im == 0 && !(z.re > 1));
    return upper ? parts<T>{-w.im, w.re} : parts<T>{w.im, -w.re};
  }
};

/// A function of 1 / z.
template <class Inner> struct of_reciprocal {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return size_between(z, least_squared, most_squared) & Inner::template ordinary<T>(recip::body(z));
  }
  static parts<lanes> body(parts<lanes> z) { return Inner::body(recip::body(z)); }
  template <class T> static parts<T> outside(parts<T> z) {
    const function<Inner> inner;
    return inner(function<recip>{}(z));
  }
};
using acsc = of_reciprocal<asin>;
using asec = of_reciprocal<acos>;
using acsch = of_reciprocal<asinh>;
using asech = of_reciprocal<acosh>;

/// A quarter turn at zero: to the left of it (0, pi / 2), below it (pi / 2, 0).
struct acoth : of_reciprocal<atanh> {
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.re == 0 && z.im == 0) return {0, half_pi<T>};
    return of_reciprocal<atanh>::outside(z);
  }
};
struct acot : of_reciprocal<atan> {
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.re == 0 && z.im == 0) return {half_pi<T>, 0};
    return of_reciprocal<atan>::outside(z);
  }
};

}  // namespace form

inline constexpr function<form::asin> asin;
inline constexpr function<form::acos> acos;
inline constexpr function<form::atan> atan;
inline constexpr function<form::asinh> asinh;
inline constexpr function<form::acosh> acosh;
inline constexpr function<form::atanh> atanh;
inline constexpr function<form::acsc> acsc;
inline constexpr function<form::asec> asec;
inline constexpr function<form::acot> acot;
inline constexpr function<form::acsch> acsch;
inline constexpr function<form::asech> asech;
inline constexpr function<form::acoth> acoth;

}  // namespace vlm::complex
