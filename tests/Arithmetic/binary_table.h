// Which rows the functions of two arguments have, and what they give: the interface's table, written once more by hand.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace binary_table {

/// integers, reals, complexes: '=' the type of the arguments, 'i' Integer64, 'r' the component's real type, '-' no row.
/// mixed: pairs of tensor types with the result's, as "id:d". with: pairs beyond these.
enum class more { none, integer_powers, shifts, real_thresholds };
struct entry {
  int32_t number;
  char integers, reals, complexes;
  std::string_view mixed;
  more with;
  const char* range;  // ReturnRangeType2 for II IR IC RI RR RC CI CR CC
};

inline constexpr std::string_view all_pairs = "id:d di:d ic:c ci:c dc:c cd:c",
                                  real_results = "id:d di:d ic:d ci:d dc:d cd:d";
inline constexpr std::string_view to_multiples = "id:d ic:c di:i dc:c";

inline constexpr entry entries[] = {
    {257, '=', '=', '=', all_pairs, more::none, "234334444"},
    {258, '=', '=', '=', all_pairs, more::none, "234334444"},
    {259, '=', '=', '=', all_pairs, more::none, "234334444"},
    {260, '-', '=', '=', all_pairs, more::none, "734334444"},
    {261, '=', '=', '=', all_pairs, more::none, "234334444"},
    {262, '=', 'i', '-', "id:i di:i", more::none, "227227777"},
    {263, '=', '=', '=', all_pairs, more::integer_powers, "244344444"},
    {264, '-', '=', '=', all_pairs, more::none, "744444444"},
    {265, '-', '=', '=', all_pairs, more::none, "734334444"},
    {266, '=', '-', '-', "", more::none, "277777777"},
    {267, '=', '-', '-', "", more::none, "277777777"},
    {268, '=', '-', '-', "", more::none, "277777777"},
    {269, '-', '=', '-', "cd:c", more::real_thresholds, "777737747"},
    {270, '=', '=', 'r', real_results, more::none, "233333333"},
    {271, '-', '=', 'r', real_results, more::none, "733333333"},
    {272, '=', '=', 'r', "", more::none, "277737773"},
    {273, '=', '-', '-', "", more::none, "277777777"},
    {274, '=', '-', '-', "", more::none, "277777777"},
    {275, '=', '-', '-', "di:d ci:c", more::shifts, "277377477"},
    {276, '=', '-', '-', "di:d ci:c", more::shifts, "277377477"},
    {277, '=', 'i', '-', "", more::none, "227227777"},
    {278, '=', 'i', '-', "cd:i", more::real_thresholds, "222222222"},
    {279, '=', 'i', '-', "", more::none, "227227777"},
    {280, '=', '=', '-', "", more::none, "237337777"},
    {281, '=', '-', '-', "", more::none, "277777777"},
    {282, '=', '-', '-', "", more::none, "277777777"},
    {283, '=', '=', '=', to_multiples, more::none, "234234774"},
    {284, '=', '=', '=', to_multiples, more::none, "234234774"},
    {285, '=', '=', '=', to_multiples, more::none, "234234774"},
    {286, '=', '=', '-', "id:d di:d", more::none, "237337777"},
    {287, '=', '=', '-', "id:d di:d", more::none, "237337777"},
};

inline constexpr bool is_integer(int32_t type) { return type <= 8; }
inline constexpr bool is_complex(int32_t type) { return type == 11 || type == 12; }
inline constexpr int32_t component_of(int32_t type) { return type == 11 ? 9 : 10; }
inline constexpr char letter_of(int32_t type) {
  return type == 7 ? 'i' : type == 10 ? 'd' : type == 12 ? 'c' : '?';
}
inline constexpr int32_t type_of_letter(char letter) { return letter == 'i' ? 7 : letter == 'd' ? 10 : 12; }

/// The result type of a row, 0 where there is none.
inline int32_t result_type(const entry& e, int32_t x, int32_t y) {
  if (x == y) {
    const char result = is_integer(x) ? e.integers : is_complex(x) ? e.complexes : e.reals;
    return result == '=' ? x : result == 'i' ? 7 : result == 'r' ? component_of(x) : 0;
  }
  for (std::string_view pairs = e.mixed; pairs.size() >= 4; pairs.remove_prefix(pairs.size() > 4 ? 5 : 4)) {
    if (pairs[0] == letter_of(x) && pairs[1] == letter_of(y)) return type_of_letter(pairs[3]);
  }
  switch (e.with) {
    case more::integer_powers:
      return y == 7 && !is_integer(x) ? x : 0;
    case more::shifts:
      return y == 7 ? x : 0;
    case more::real_thresholds:
      return x == 11 && y == 9 ? (e.number == 278 ? 7 : x) : 0;
    default:
      return 0;
  }
}

}  // namespace binary_table
