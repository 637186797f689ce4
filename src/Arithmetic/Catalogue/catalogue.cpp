#include "Arithmetic/Catalogue/catalogue.h"

#include <array>

#include "Arithmetic/Kernels/bits.h"
#include "Arithmetic/Kernels/exponential.h"
#include "Arithmetic/Kernels/hyperbolic.h"
#include "Arithmetic/Kernels/power.h"
#include "Arithmetic/Kernels/rounding.h"
#include "Arithmetic/Kernels/sign.h"
#include "Arithmetic/Kernels/special.h"
#include "Arithmetic/Kernels/steps.h"
#include "Arithmetic/Kernels/trigonometric.h"

namespace vlm::machine_function {

// Instantiated in the families' source files.
extern template struct family<trigonometric_functions>;
extern template struct family<hyperbolic_functions>;
extern template struct family<exponential_functions>;
extern template struct family<sign_functions>;
extern template struct family<rounding_functions>;
extern template struct family<power_functions>;
extern template struct family<bit_functions>;
extern template struct family<special_functions>;
extern template struct family<step_functions>;

namespace {

using number_table = std::array<const function_rows*, unary_number_count + 1>;

template <template <class...> class List, class... F> constexpr void enter(number_table& table, List<F...>*) {
  size_t i = 0;
  ((table[F::number] = family<List<F...>>::rows + i++), ...);
}

template <class... Lists> constexpr number_table make_table() {
  number_table table{};
  (enter(table, static_cast<Lists*>(nullptr)), ...);
  return table;
}

using number_counts = std::array<int32_t, unary_number_count + 1>;

template <template <class...> class List, class... F>
constexpr void count(number_counts& counts, List<F...>*) {
  (++counts[F::number], ...);
}

/// How many functions have each number.
template <class... Lists> constexpr number_counts count_numbers() {
  number_counts counts{};
  (count(counts, static_cast<Lists*>(nullptr)), ...);
  return counts;
}

template <class... Lists> struct unary_catalogue {
  static constexpr number_table table = make_table<Lists...>();
  static constexpr number_counts counts = count_numbers<Lists...>();
};

using unary =
    unary_catalogue<trigonometric_functions, hyperbolic_functions, exponential_functions, sign_functions,
                    rounding_functions, power_functions, bit_functions, special_functions, step_functions>;

/// Seven numbers are holes; every other one names exactly one function.
constexpr bool complete(const number_counts& counts) {
  for (int32_t n = 1; n <= unary_number_count; ++n) {
    const bool hole = n % 4 == 0 && n <= 28;
    if (counts[static_cast<size_t>(n)] != (hole ? 0 : 1)) return false;
  }
  return true;
}
static_assert(complete(unary::counts));

constexpr MachFuncRow empty_row{};

}  // namespace

const function_rows* unary_function(int32_t number) {
  return number >= 1 && number <= unary_number_count ? unary::table[static_cast<size_t>(number)] : nullptr;
}

const MachFuncRow& unary_row(int32_t number, int32_t element_type) {
  const function_rows* f = unary_function(number);
  return f != nullptr && is_element_type(element_type) ? f->rows[element_type] : empty_row;
}

}  // namespace vlm::machine_function
