#include "Arithmetic/FrontEnds/tensor_operators2.h"

#include <cstring>
#include <initializer_list>
#include <utility>

#include "Arithmetic/Catalogue/binary_catalogue.h"
#include "Arithmetic/FrontEnds/promotion.h"
#include "Arithmetic/FrontEnds/shape_rule.h"

namespace vlm::front_end {
namespace {

using machine_function::binary_row;

/// The functions that a pair of types takes, a bit each.
using function_set = uint32_t;
constexpr int32_t first_number = machine_function::first_binary_number,
                  last_number = machine_function::last_binary_number;
constexpr function_set set_of(std::initializer_list<int32_t> numbers) {
  function_set set = 0;
  for (const int32_t number : numbers) set |= function_set{1} << (number - first_number);
  return set;
}
constexpr function_set every_function = (function_set{1} << (last_number - first_number + 1)) - 1;
constexpr bool contains(function_set set, int32_t number) {
  return number >= first_number && number <= last_number && (set >> (number - first_number) & 1) != 0;
}

constexpr function_set arithmetic =
    set_of({MachFunc_plus, MachFunc_subtract, MachFunc_times, MachFunc_div, MachFunc_mod, MachFunc_pow,
            MachFunc_log2of, MachFunc_atan2, MachFunc_abserr, MachFunc_relerr});
constexpr function_set multiples =
    set_of({MachFunc_ceilingmultiple, MachFunc_floormultiple, MachFunc_roundmultiple});
constexpr function_set shifts = set_of({MachFunc_bitshiftleft, MachFunc_bitshiftright});
constexpr function_set integer_with_real =
    arithmetic | multiples | set_of({MachFunc_quotient, MachFunc_max, MachFunc_min});

/// By the types of x and y, Integer, Real, Complex. A function in the set may still have no row.
constexpr function_set functions[3][3] = {
    {every_function &
         ~set_of({MachFunc_div, MachFunc_log2of, MachFunc_atan2, MachFunc_chop, MachFunc_relerr}),
     integer_with_real, arithmetic | multiples},
    {integer_with_real | shifts, every_function, arithmetic | multiples},
    {arithmetic | shifts, arithmetic | set_of({MachFunc_chop, MachFunc_unitize2}),
     arithmetic | multiples | set_of({MachFunc_maxabs})}};

constexpr int32_t element_types[3] = {MNumericArrayTypeInteger64, MNumericArrayTypeReal64,
                                      MNumericArrayTypeComplexReal64};

using tensor_operator = mint (*)(const MTensor* x, const MTensor* y, MTensor* result, int32_t number,
                                 uint32_t flags);

mint no_operator(const MTensor*, const MTensor*, MTensor*, int32_t, uint32_t) { return outcome_no_kernel; }

template <int X, int Y>
mint plain_operator(const MTensor* x, const MTensor* y, MTensor* result, int32_t number, uint32_t flags) {
  if (!contains(functions[X][Y], number)) return outcome_no_kernel;
  return run_row(binary_row(number, element_types[X], element_types[Y]), x, y, result, flags);
}

/// A function of reals and integers, X and Y, that may leave them. Its complex row takes the real argument as complex, y of two.
template <int X, int Y> class binary_promotion final : public promoting_function {
 public:
  binary_promotion(const MTensor* x, const MTensor* y, int32_t number, uint32_t flags)
      : real_(binary_row(number, element_types[X], element_types[Y])),
        complex_(binary_row(number, element_types[widens_x ? 2 : X], element_types[widens_x ? Y : 2])),
        operands_(x, y),
        flags_(flags) {}

  const meeting& operands() const { return operands_; }
  int32_t real_row_type() const override { return real_.resultType; }
  int32_t complex_row_type() const override { return complex_.resultType; }
  bool wants_imaginary_part() const override { return true; }

  mint all_real(MTensor* result) const override { return operands_.run(real_, result, flags_); }
  mint real(void* to, mint first, mint length) const override {
    alignas(64) working_room x, y;
    return real_.vectorKernel.binary(to, operands_.x.at(first, length, x), operands_.y.at(first, length, y),
                                     length, UnitIncrements, flags_ | MACHFUNC_CHECK_FP);
  }
  bool complex(void* to, mint index) const override {
    const unsigned char *x = operands_.x.at(index), *y = operands_.y.at(index);
    mcomplex wide = {0, 0};
    std::memcpy(&wide.re, widens_x ? x : y, sizeof wide.re);
    const void *first = x, *second = y;
    (widens_x ? first : second) = &wide;
    return complex_.vectorKernel.binary(to, first, second, 1, UnitIncrements, flags_) == 0;
  }

 private:
  static constexpr bool widens_x = Y == 0;

  const MachFuncRow &real_, &complex_;
  const meeting operands_;
  uint32_t flags_;
};

template <int X, int Y>
mint promoting_operator(const MTensor* x, const MTensor* y, MTensor* result, int32_t number, uint32_t flags) {
  if (!contains(functions[X][Y], number)) return outcome_no_kernel;
  const binary_promotion<X, Y> function(x, y, number, flags);
  if (!function.operands().fits()) return outcome_no_kernel;
  return promote(function, function.operands().empty() ? 0 : function.operands().count(), result);
}

template <int X, int Y, int R> constexpr tensor_operator select_operator() {
  constexpr bool integers = X == 0 && Y == 0, complex = X == 2 || Y == 2;
  if constexpr ((integers && R != 0) || (complex && R == 0)) {
    return no_operator;
  } else if constexpr (!complex && R == 2) {
    return promoting_operator<X, Y>;
  } else {
    return plain_operator<X, Y>;
  }
}

struct operator_table {
  tensor_operator by_types[3][3][3];
};

template <int... I> constexpr operator_table make_table(std::integer_sequence<int, I...>) {
  operator_table table{};
  ((table.by_types[I / 9][I / 3 % 3][I % 3] = select_operator<I / 9, I / 3 % 3, I % 3>()), ...);
  return table;
}

/// By the types of x, y and the result.
constexpr operator_table TensorOp2Table = make_table(std::make_integer_sequence<int, 27>{});

}  // namespace

bool operator_promotes(int32_t x_type, int32_t y_type, int32_t result_type) {
  const int32_t x = table_index(x_type), y = table_index(y_type);
  return result_type == MTensorTypeComplex && x >= 0 && y >= 0 && x + y > 0 && x < 2 && y < 2;
}

mint apply_operator(int32_t x_type, int32_t y_type, int32_t result_type, const MTensor* x, const MTensor* y,
                    MTensor* result, int32_t number, uint32_t flags) {
  const int32_t i = table_index(x_type), j = table_index(y_type), k = table_index(result_type);
  if (i < 0 || j < 0 || k < 0) return outcome_no_kernel;
  return TensorOp2Table.by_types[i][j][k](x, y, result, number, flags);
}

}  // namespace vlm::front_end
