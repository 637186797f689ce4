#!/usr/bin/env python3
"""Writes src/Arithmetic/Kernels/elementary/constants.h: the polynomials and tables of the elementary functions.

The polynomials interpolate at Chebyshev's points, computed with 300 bits and rounded, which is within a factor of
two of the minimax error; the degrees leave that error below 2^-57 of the result. Needs python3-mpmath.
"""
import struct
import mpmath as mp

mp.mp.prec = 300


def bits(d):
    return struct.unpack("<Q", struct.pack("<d", d))[0]


def number(b):
    return struct.unpack("<d", struct.pack("<Q", b))[0]


def grid(x, places):
    return float(mp.nint(x * mp.mpf(2) ** places) / mp.mpf(2) ** places)


def table(name, values, comment):
    body = ", ".join("0x0p+0" if v == 0 else float(v).hex() for v in values)
    print(f"\n/// {comment}\nalignas(64) inline constexpr std::array<double, {len(values)}> {name} = {{{{{body}}}}};")


def interpolate(f, low, high, count):
    points = [(low + high) / 2 + (high - low) / 2 * mp.cos(mp.pi * (2 * i + 1) / (2 * count)) for i in range(count)]
    a = mp.matrix(count, count)
    for i, x in enumerate(points):
        for j in range(count):
            a[i, j] = x**j
    return [float(c) for c in mp.lu_solve(a, mp.matrix([f(x) for x in points]))]


def series(coefficient, terms=60):
    return lambda x: mp.fsum(coefficient(i) * x**i for i in range(terms))


print("""// Written by scripts/elementary_constants.py; change that, not this.
#pragma once

#include <array>

namespace vlm::elementary {""")

h = mp.log(2) / 32
p = series(lambda i: 1 / mp.factorial(i + 2))
table("exp_polynomial", interpolate(p, -h, h, 6), "exp(r) = 1 + r + r^2 p(r), |r| <= ln 2 / 32.")
powers = [mp.mpf(2) ** (mp.mpf(j) / 16) for j in range(16)]
rounded = [float(t) for t in powers]
table("power_bits", [number(bits(t) - (j << 48)) for j, t in enumerate(rounded)],
      "2^(j/16) with j 2^48 taken from its bits, so that adding (16 k + j) 2^48 makes 2^(k + j/16).")
table("power_error", [float(e / t - 1) for e, t in zip(powers, rounded)],
      "What 2^(j/16) lacks once rounded, as a part of itself.")
signed_powers = [mp.mpf(2) ** (mp.mpf(j if j < 8 else j - 16) / 16) for j in range(16)]
high = [grid(t, 26) for t in signed_powers]
table("centred_power_high", high, "2^(j/16) to 26 places, j = 0..7, -8..-1.")
table("centred_power_low", [float(t - u) for t, u in zip(signed_powers, high)], "... the rest of it.")
table("centred_power_less_one", [float(t - 1) for t in signed_powers], "... and 2^(j/16) - 1.")

p = series(lambda i: mp.mpf(-1) ** i / (i + 3), 80)
table("log_polynomial", interpolate(p, mp.mpf("-0.0327"), mp.mpf("0.0327"), 8),
      "log(1 + r) = r - r^2/2 + r^3 p(r), |r| <= 0.0327.")
table("log_polynomial_for_pow", interpolate(p, mp.mpf("-0.0327"), mp.mpf("0.0327"), 11),
      "... to 66 bits of the logarithm.")
p = series(lambda i: mp.mpf(-1) ** (i + 1) / (i + 2), 80)
table("real32_log_polynomial", interpolate(p, mp.mpf("-0.0327"), mp.mpf("0.0327"), 5),
      "log(1 + r) = r + r^2 p(r), |r| <= 0.0327, to 35 bits.")
reciprocals = [305 / 256, 294 / 256, 284 / 256, 274 / 256, 33 / 32, 1.0, 61 / 64, 115 / 128, 109 / 128, 103 / 128,
               49 / 64, 47 / 64, 45 / 64, 43 / 64, 165 / 256, 79 / 128]
table("log_reciprocal", reciprocals,
      "Short numbers c near 1/m on the 16 intervals of the significand m; the one around 1 has c = 1, its\n"
      "/// neighbours so few places that m c - 1 is exact.")
high = [grid(-mp.log(mp.mpf(c)), 42) for c in reciprocals]
table("log_high", high, "-log c to 42 places.")
table("log_low", [float(-mp.log(mp.mpf(c)) - u) for c, u in zip(reciprocals, high)], "... the rest of it.")

z = (mp.pi / 4) ** 2
p = series(lambda i: mp.mpf(-1) ** i / mp.factorial(2 * i + 3))
table("sin_polynomial", interpolate(p, mp.mpf(0), z, 7), "sin(r) = r - r^3 p(r^2), |r| <= pi/4.")
p = series(lambda i: mp.mpf(-1) ** i / mp.factorial(2 * i + 4))
table("cos_polynomial", interpolate(p, mp.mpf(0), z, 6), "cos(r) = 1 - r^2/2 + r^4 p(r^2), |r| <= pi/4.")
p = series(lambda i: mp.mpf(-1) ** (i + 1) / mp.factorial(2 * i + 3))
table("real32_sin_polynomial", interpolate(p, mp.mpf(0), (mp.pi / 2) ** 2, 5),
      "sin(r) = r + r^3 p(r^2), |r| <= pi/2, to 32 bits.")
p = lambda x: (2 * mp.tan(mp.sqrt(x) / 2) - mp.sqrt(x)) / (x * mp.sqrt(x))
table("half_tan_polynomial", interpolate(p, mp.mpf(0), z, 9),
      "2 tan(r/2) = r + r^3 p(r^2), |r| <= pi/4.")

p = series(lambda i: mp.mpf(-1) ** i / (2 * i + 3), 80)
table("atan_polynomial", interpolate(p, mp.mpf(0), mp.mpf(1) / 64, 7), "atan(t) = t - t^3 p(t^2), |t| <= 1/8.")
middles = [0, 0.15625, 0.21875, 0.3125, 0.4375, 0.6171875, 0.8671875, 1.21875, 1.72265625, 2.4140625, 3.43359375,
           4.80859375, 6.859375, 9.60546875, 13.71484375]
angles = [mp.atan(mp.mpf(c)) for c in middles] + [mp.pi / 2]
table("atan_middle", middles + [1.0],
      "Middles of [0, 1/8), [1/8, 3/16), [3/16, 1/4) ... [12, 16) for the reduction by (a - c) / (1 + a c);\n"
      "/// beyond 16 the reduction is -1/a.")
table("atan_high", [float(a) for a in angles], "atan of the middles, pi/2 at last.")
table("atan_low", [float(a - float(a)) for a in angles], "... the rest of it.")

table("inverse_cube_root_polynomial", interpolate(lambda x: x ** (mp.mpf(-1) / 3), mp.mpf(1), mp.mpf(2), 6),
      "m^(-1/3) on [1, 2) to 16 bits.")
print("\n}  // namespace vlm::elementary")
