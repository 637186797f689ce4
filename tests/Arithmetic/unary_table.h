// The unary machine functions written out by hand: what the catalogue has to say of each, independently of the
// definitions that it is made from. Every loop over functions in the tests goes over this table.
#pragma once

#include <cstdint>
#include <ostream>

#include "Includes/element_types.h"

namespace unary_table {

struct row {
  int32_t number;
  const char* name;
  char on_integers, on_reals;  // result type: '=' the argument's, 'm' Integer64, '-' no row
  char integer_failure;        // 'n' none, 'c' checked under the integer flag, 'a' always
  char real_failure;           // 'n' none by element, 'c' the result check, 'r' range check, 'a' always
  const char* range;  // ReturnRangeType1 for Integer, Real, Complex: I R C, B boolean, = same, - none
};

inline void PrintTo(const row& r, std::ostream* out) { *out << r.name; }

inline constexpr row rows[] = {
    {1, "sin", '-', '=', 'n', 'n', "-RC"},           {2, "cos", '-', '=', 'n', 'n', "-RC"},
    {3, "tan", '-', '=', 'n', 'c', "-RC"},           {5, "csc", '-', '=', 'n', 'c', "-RC"},
    {6, "sec", '-', '=', 'n', 'c', "-RC"},           {7, "cot", '-', '=', 'n', 'c', "-RC"},
    {9, "sinh", '-', '=', 'n', 'c', "-RC"},          {10, "cosh", '-', '=', 'n', 'c', "-RC"},
    {11, "tanh", '-', '=', 'n', 'c', "-RC"},         {13, "csch", '-', '=', 'n', 'c', "-RC"},
    {14, "sech", '-', '=', 'n', 'c', "-RC"},         {15, "coth", '-', '=', 'n', 'c', "-RC"},
    {17, "asin", '-', '=', 'n', 'c', "-CC"},         {18, "acos", '-', '=', 'n', 'c', "-CC"},
    {19, "atan", '-', '=', 'n', 'n', "-RC"},         {21, "acsc", '-', '=', 'n', 'c', "-CC"},
    {22, "asec", '-', '=', 'n', 'c', "-CC"},         {23, "acot", '-', '=', 'n', 'c', "-RC"},
    {25, "asinh", '-', '=', 'n', 'n', "-RC"},        {26, "acosh", '-', '=', 'n', 'c', "-CC"},
    {27, "atanh", '-', '=', 'n', 'c', "-CC"},        {29, "acsch", '-', '=', 'n', 'c', "-RC"},
    {30, "asech", '-', '=', 'n', 'c', "-CC"},        {31, "acoth", '-', '=', 'n', 'c', "-CC"},
    {32, "exp", '-', '=', 'n', 'c', "-RC"},          {33, "expm1", '-', '=', 'n', 'c', "-RC"},
    {34, "log", '-', '=', 'n', 'c', "-CC"},          {35, "log1p", '-', '=', 'n', 'c', "-CC"},
    {36, "log2", '=', '=', 'a', 'c', "ICC"},         {37, "log10", '=', '=', 'a', 'c', "ICC"},
    {38, "abs", '=', '=', 'c', 'n', "IRR"},          {39, "arg", '=', 'm', 'a', 'a', "IIR"},
    {40, "conj", '=', '=', 'n', 'n', "IRC"},         {41, "im", '=', 'm', 'n', 'n', "IIR"},
    {42, "re", '=', '=', 'n', 'n', "IRR"},           {43, "minus", '=', '=', 'c', 'n', "IRC"},
    {44, "sign", '=', 'm', 'n', 'n', "IIC"},         {45, "pos", 'm', 'm', 'n', 'n', "BB-"},
    {46, "neg", 'm', 'm', 'n', 'n', "BB-"},          {47, "npos", 'm', 'm', 'n', 'n', "BB-"},
    {48, "nneg", 'm', 'm', 'n', 'n', "BB-"},         {49, "round", '=', 'm', 'n', 'r', "=I-"},
    {50, "floor", '=', 'm', 'n', 'r', "=I-"},        {51, "ceiling", '=', 'm', 'n', 'r', "=I-"},
    {52, "fracpart", '=', '=', 'n', 'n', "IRC"},     {53, "intpart", '=', 'm', 'n', 'r', "=I-"},
    {54, "evenq", 'm', '-', 'n', 'n', "BB-"},        {55, "oddq", 'm', '-', 'n', 'n', "BB-"},
    {56, "square", '=', '=', 'c', 'c', "IRC"},       {57, "sqrt", '-', '=', 'n', 'c', "-CC"},
    {58, "cbrt", '-', '=', 'n', 'n', "-R-"},         {59, "rsqrt", '-', '=', 'n', 'c', "-CC"},
    {60, "recip", '-', '=', 'n', 'c', "-RC"},        {61, "bitcount", '=', '-', 'n', 'n', "I--"},
    {62, "bitnot", '=', '-', 'n', 'n', "I--"},       {63, "bitlength", '=', '-', 'n', 'n', "I--"},
    {64, "intexp10", '=', '-', 'a', 'n', "I--"},     {65, "intlen10", '=', '-', 'n', 'n', "I--"},
    {66, "unitstep", '=', 'm', 'n', 'n', "II-"},     {67, "sinc", '-', '=', 'n', 'c', "-RC"},
    {68, "fibonacci", '=', '=', 'a', 'c', "IRC"},    {69, "lucasl", '=', '=', 'a', 'c', "IRC"},
    {70, "gudermannian", '-', '=', 'n', 'c', "-CC"}, {71, "inversegudermannian", '-', '=', 'n', 'c', "-CC"},
    {72, "haversine", '-', '=', 'n', 'c', "-RC"},    {73, "inversehaversine", '-', '=', 'n', 'c', "-CC"},
    {74, "erfc", '-', '=', 'n', 'n', "-R-"},         {75, "erf", '-', '=', 'n', 'n', "-R-"},
    {76, "gamma", '=', '=', 'a', 'c', "IR-"},        {77, "loggamma", '-', '=', 'n', 'c', "-R-"},
    {78, "unitize", '=', 'm', 'n', 'n', "III"},      {79, "mod1", '=', '=', 'n', 'n', "IRC"},
    {80, "logistic", '-', '=', 'n', 'c', "-RC"},     {81, "ramp", '=', '=', 'n', 'n', "IR-"},
    {82, "abssquare", '=', '=', 'c', 'c', "IRR"},    {83, "realabs", '=', '=', 'c', 'n', "IR-"},
    {84, "realsign", '=', 'm', 'n', 'n', "II-"},     {85, "box", '=', 'm', 'n', 'n', "II-"},
    {86, "triangle", '=', '=', 'n', 'n', "IR-"},
};

/// The result letter for complex elements, by the range: 'r' the type of a part.
constexpr char on_complexes(const row& r) {
  switch (r.range[2]) {
    case 'C':
      return '=';
    case 'R':
      return 'r';
    case 'I':
      return 'm';
    default:
      return '-';
  }
}

/// The result letter of a row for a type; '-' where it has none.
template <class T> constexpr char result_letter(const row& r) {
  if (vlm::is_integer_element<T>) return r.on_integers;
  return vlm::is_real_element<T> ? r.on_reals : on_complexes(r);
}

/// Calls body.operator()<T>(row) for every function and every type that it has a row for. Returns how many
/// pairs ran, for the caller to hold against pair_count.
template <class Body> int for_all_rows(Body&& body) {
  int ran = 0;
  for (const row& r : rows) {
    vlm::for_all_element_types([&]<class T>() {
      if (result_letter<T>(r) == '-') return;
      body.template operator()<T>(r);
      ++ran;
    });
  }
  return ran;
}

/// 38 functions of integers on 8 types, 72 functions of reals on 3, 53 functions of complex numbers on 2.
inline constexpr int pair_count = 38 * 8 + 72 * 3 + 53 * 2;

}  // namespace unary_table
