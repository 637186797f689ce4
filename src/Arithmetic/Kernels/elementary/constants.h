// Written by scripts/elementary_constants.py; change that, not this.
#pragma once

#include <array>

namespace vlm::elementary {

/// exp(r) = 1 + r + r^2 p(r), |r| <= ln 2 / 32.
alignas(64) inline constexpr std::array<double, 6> exp_polynomial = {
    {0x1.0000000000001p-1, 0x1.5555555555556p-3, 0x1.55555554e9468p-5, 0x1.11111110e10a8p-7,
     0x1.6c17ed4cc4834p-10, 0x1.a01b0c2edab7cp-13}};

/// 2^(j/16) with j 2^48 taken from its bits, so that adding (16 k + j) 2^48 makes 2^(k + j/16).
alignas(64) inline constexpr std::array<double, 16> power_bits = {
    {0x1.0000000000000p+0, 0x1.fb5586cf9890fp-1, 0x1.f72b83c7d517bp-1, 0x1.f387a6e756238p-1,
     0x1.f06fe0a31b715p-1, 0x1.edea64c123422p-1, 0x1.ebfdad5362a27p-1, 0x1.eab07dd485429p-1,
     0x1.ea09e667f3bcdp-1, 0x1.ea11473eb0187p-1, 0x1.eace5422aa0dbp-1, 0x1.ec49182a3f090p-1,
     0x1.ee89f995ad3adp-1, 0x1.f199bdd85529cp-1, 0x1.f5818dcfba487p-1, 0x1.fa4afa2a490dap-1}};

/// What 2^(j/16) lacks once rounded, as a part of itself.
alignas(64) inline constexpr std::array<double, 16> power_error = {
    {0x0p+0, 0x1.79aa65d837b6dp-54, -0x1.01b15eaa59348p-55, 0x1.68efde3a8a894p-54, 0x1.34d754db0abb6p-55,
     0x1.59f48a72a4c6dp-55, 0x1.690cebb7aafb0p-56, 0x1.063e1e21c5409p-54, -0x1.3b3efbf5e2228p-54,
     -0x1.b32dcb94da51dp-56, 0x1.db72fc1f0eab4p-55, 0x1.1affc2b91ce27p-56, 0x1.c1a7792cb3387p-55,
     0x1.36eae30af0cb3p-56, 0x1.4a385a63d07a7p-56, -0x1.ff7128fd391f0p-55}};

/// 2^(j/16) to 26 places, j = 0..7, -8..-1.
alignas(64) inline constexpr std::array<double, 16> centred_power_high = {
    {0x1.0000000000000p+0, 0x1.0b5586c000000p+0, 0x1.172b83c000000p+0, 0x1.2387a70000000p+0,
     0x1.306fe0c000000p+0, 0x1.3dea64c000000p+0, 0x1.4bfdad4000000p+0, 0x1.5ab07dc000000p+0,
     0x1.6a09e68000000p-1, 0x1.7a11470000000p-1, 0x1.8ace540000000p-1, 0x1.9c49180000000p-1,
     0x1.ae89f98000000p-1, 0x1.c199be0000000p-1, 0x1.d5818e0000000p-1, 0x1.ea4afa0000000p-1}};

/// ... the rest of it.
alignas(64) inline constexpr std::array<double, 16> centred_power_low = {
    {0x0p+0, 0x1.f3121ec531725p-29, 0x1.f545eb737df23p-30, -0x1.8a9dc7993e052p-28, -0x1.ce48ead2172a6p-28,
     0x1.2342235b41224p-32, 0x1.362a271d4397bp-28, 0x1.48542958c9301p-28, -0x1.80c4336f74d05p-29,
     0x1.f580c36bea881p-28, 0x1.15506dadd3e2bp-28, 0x1.51f8480e3e236p-28, 0x1.5ad3ad5e8734dp-29,
     -0x1.3d56b1eeef9a7p-28, -0x1.822dbc6d12fd3p-28, 0x1.52486cc2c7b9dp-28}};

/// ... and 2^(j/16) - 1.
alignas(64) inline constexpr std::array<double, 16> centred_power_less_one = {
    {0x0p+0, 0x1.6ab0d9f3121ecp-5, 0x1.72b83c7d517aep-4, 0x1.1c3d373ab11c3p-3, 0x1.837f0518db8a9p-3,
     0x1.ef5326091a112p-3, 0x1.2ff6b54d8a89cp-2, 0x1.6ac1f752150a5p-2, -0x1.2bec333018867p-2,
     -0x1.0bdd71829fcf2p-2, -0x1.d4c6af7557c93p-3, -0x1.8edb9f5703dc0p-3, -0x1.45d819a94b14bp-3,
     -0x1.f332113d56b1fp-4, -0x1.53f391822dbc7p-4, -0x1.5b505d5b6f268p-5}};

/// log(1 + r) = r - r^2/2 + r^3 p(r), |r| <= 0.0327.
alignas(64) inline constexpr std::array<double, 8> log_polynomial = {
    {0x1.5555555555545p-2, -0x1.fffffffffffe1p-3, 0x1.9999999a8e72dp-3, -0x1.5555555635c87p-3,
     0x1.249237acf141ep-3, -0x1.ffffdff9d7098p-4, 0x1.c7e88f053a693p-4, -0x1.9a54b52e1fc99p-4}};

/// ... to 66 bits of the logarithm.
alignas(64) inline constexpr std::array<double, 11> log_polynomial_for_pow = {
    {0x1.5555555555555p-2, -0x1.0000000000000p-2, 0x1.999999999999ap-3, -0x1.5555555555281p-3,
     0x1.24924924921eep-3, -0x1.000000039e699p-3, 0x1.c71c71cdddc85p-4, -0x1.99995d2e430dap-4,
     0x1.745cdee15f947p-4, -0x1.5631efb8264e7p-4, 0x1.3be197622e6a7p-4}};

/// log(1 + r) = r + r^2 p(r), |r| <= 0.0327, to 35 bits.
alignas(64) inline constexpr std::array<double, 5> real32_log_polynomial = {
    {-0x1.0000000000000p-1, 0x1.555551e77ebedp-2, -0x1.fffff9ffbcc90p-3, 0x1.99fdcb167a40ep-3,
     -0x1.55ad012b32d3ap-3}};

/// Short numbers c near 1/m on the 16 intervals of the significand m; the one around 1 has c = 1, its
/// neighbours so few places that m c - 1 is exact.
alignas(64) inline constexpr std::array<double, 16> log_reciprocal = {
    {0x1.3100000000000p+0, 0x1.2600000000000p+0, 0x1.1c00000000000p+0, 0x1.1200000000000p+0,
     0x1.0800000000000p+0, 0x1.0000000000000p+0, 0x1.e800000000000p-1, 0x1.cc00000000000p-1,
     0x1.b400000000000p-1, 0x1.9c00000000000p-1, 0x1.8800000000000p-1, 0x1.7800000000000p-1,
     0x1.6800000000000p-1, 0x1.5800000000000p-1, 0x1.4a00000000000p-1, 0x1.3c00000000000p-1}};

/// -log c to 42 places.
alignas(64) inline constexpr std::array<double, 16> log_high = {
    {-0x1.66acd4272a000p-3, -0x1.1b72ad52f6000p-3, -0x1.a926d3a4ac000p-4, -0x1.16536eea38000p-4,
     -0x1.f829b0e780000p-6, 0x0p+0, 0x1.894aa149f8000p-5, 0x1.b6ac88dad4000p-4, 0x1.4913d8333c000p-3,
     0x1.bd087383be000p-3, 0x1.1178e8227e000p-2, 0x1.3c25277333000p-2, 0x1.68ac83e9c7000p-2,
     0x1.973a343135000p-2, 0x1.c1c60693fa000p-2, 0x1.ee2a156b41000p-2}};

/// ... the rest of it.
alignas(64) inline constexpr std::array<double, 16> log_low = {
    {-0x1.aa1bdbfc6c785p-44, -0x1.e80a41811a396p-45, -0x1.563650bd22a9cp-44, 0x1.47c5e768fa309p-46,
     -0x1.980267c7e09e4p-45, 0x0p+0, 0x1.9a19a8be97661p-44, 0x1.b1bdff50225c7p-44, -0x1.53e43558124c4p-44,
     -0x1.d4bc4595412b6p-45, 0x1.1ef78ce2d07f2p-44, 0x1.83b54b606bd5cp-46, -0x1.7af966c548a30p-44,
     0x1.ab73b16bf4984p-44, 0x1.cec807fe8e180p-45, 0x1.f27f45a470251p-45}};

/// sin(r) = r - r^3 p(r^2), |r| <= pi/4.
alignas(64) inline constexpr std::array<double, 7> sin_polynomial = {
    {0x1.5555555555555p-3, -0x1.1111111111110p-7, 0x1.a01a01a019938p-13, -0x1.71de3a546095bp-19,
     0x1.ae645412c560cp-26, -0x1.61217f0b800d5p-33, 0x1.ab17d404de5b3p-41}};

/// cos(r) = 1 - r^2/2 + r^4 p(r^2), |r| <= pi/4.
alignas(64) inline constexpr std::array<double, 6> cos_polynomial = {
    {0x1.5555555555555p-5, -0x1.6c16c16c16967p-10, 0x1.a01a019f4eb01p-16, -0x1.27e4fa17da09ep-22,
     0x1.1eeb68e93b64cp-29, -0x1.907da367a37cbp-37}};

/// sin(r) = r + r^3 p(r^2), |r| <= pi/2, to 32 bits.
alignas(64) inline constexpr std::array<double, 5> real32_sin_polynomial = {
    {-0x1.5555555460530p-3, 0x1.11110fdaaf87bp-7, -0x1.a01905ba4208ap-13, 0x1.7196917ff9c49p-19,
     -0x1.9db1cc2a4cb87p-26}};

/// 2 tan(r/2) = r + r^3 p(r^2), |r| <= pi/4.
alignas(64) inline constexpr std::array<double, 9> half_tan_polynomial = {
    {0x1.5555555555556p-4, 0x1.11111111109e1p-7, 0x1.ba1ba1bb51d60p-11, 0x1.664f47e203f22p-14,
     0x1.226e5efea4367p-17, 0x1.d6c7bf16eadcep-21, 0x1.7ea909ac539b7p-24, 0x1.2892b6e498217p-27,
     0x1.4e75c07c47fa8p-30}};

/// atan(t) = t - t^3 p(t^2), |t| <= 1/8.
alignas(64) inline constexpr std::array<double, 7> atan_polynomial = {
    {0x1.5555555555555p-2, -0x1.999999999983ap-3, 0x1.249249243a5acp-3, -0x1.c71c70beeee43p-4,
     0x1.745c5a1714aa0p-4, -0x1.3ace00bb6092bp-4, 0x1.0445c632520d8p-4}};

/// Middles of [0, 1/8), [1/8, 3/16), [3/16, 1/4) ... [12, 16) for the reduction by (a - c) / (1 + a c);
/// beyond 16 the reduction is -1/a.
alignas(64) inline constexpr std::array<double, 16> atan_middle = {
    {0x0p+0, 0x1.4000000000000p-3, 0x1.c000000000000p-3, 0x1.4000000000000p-2, 0x1.c000000000000p-2,
     0x1.3c00000000000p-1, 0x1.bc00000000000p-1, 0x1.3800000000000p+0, 0x1.b900000000000p+0,
     0x1.3500000000000p+1, 0x1.b780000000000p+1, 0x1.33c0000000000p+2, 0x1.b700000000000p+2,
     0x1.3360000000000p+3, 0x1.b6e0000000000p+3, 0x1.0000000000000p+0}};

/// atan of the middles, pi/2 at last.
alignas(64) inline constexpr std::array<double, 16> atan_high = {
    {0x0p+0, 0x1.3d6eee8c6626cp-3, 0x1.b90d7529260a2p-3, 0x1.362773707ebccp-2, 0x1.a64eec3cc23fdp-2,
     0x1.1b1dc87904285p-1, 0x1.6dc44551553afp-1, 0x1.c470abf2d3d01p-1, 0x1.0b7a9701bf0e7p+0,
     0x1.2d9654c66566fp+0, 0x1.4992bf51bbe3dp+0, 0x1.5da24da770593p+0, 0x1.6d10525089892p+0,
     0x1.77916b10e46efp+0, 0x1.7f7dad522a0e0p+0, 0x1.921fb54442d18p+0}};

/// ... the rest of it.
alignas(64) inline constexpr std::array<double, 16> atan_low = {
    {0x0p+0, 0x1.61a3b0ce9281bp-57, 0x1.17b10d2e0e5abp-61, -0x1.963a544b672d8p-57, -0x1.24dec1b50b7ffp-56,
     -0x1.21e8c8aef8f29p-57, -0x1.bf8863573828ep-58, 0x1.6a61dbf199479p-56, -0x1.8cd5993b62835p-54,
     0x1.7bebc063c8655p-54, -0x1.cad8e8dfdd05fp-54, -0x1.27868da9a6cd9p-54, 0x1.ec3f8b283d806p-54,
     0x1.9b054b92ef430p-60, -0x1.65b2013072243p-55, 0x1.1a62633145c07p-54}};

/// m^(-1/3) on [1, 2) to 16 bits.
alignas(64) inline constexpr std::array<double, 6> inverse_cube_root_polynomial = {
    {0x1.c713e2847cbe6p+0, -0x1.8dd4bd7d34771p+0, 0x1.3a267a3d49ad4p+0, -0x1.2c4b958d54c08p-1,
     0x1.37ce9e9ed0a1dp-3, -0x1.0e87006cbe6bbp-6}};

}  // namespace vlm::elementary
