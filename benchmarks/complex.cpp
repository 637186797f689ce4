// Elementary functions of ComplexReal64 on one thread, checks on, from one array into another.
#include <complex>

#include "support.h"

namespace bench {
namespace {

using number = std::complex<double>;  // laid out as mcomplex
using wide_number = std::complex<long double>;

/// Both parts uniform in [low, high).
std::vector<number> uniform_square(double low, double high) {
  const std::vector<double> parts = uniform<double>(2 * compared_length, low, high);
  std::vector<number> values(static_cast<size_t>(compared_length));
  for (size_t i = 0; i < values.size(); ++i) values[i] = {parts[2 * i], parts[2 * i + 1]};
  return values;
}

template <class Reference>
void add(const std::string& type, const std::string& name, int32_t function, double low, double high,
         Reference wide_reference) {
  const auto reference = [wide_reference](number z) {
    return static_cast<number>(wide_reference(wide_number(z)));
  };
  benchmark::RegisterBenchmark((type + "/" + name + "/new").c_str(), [=](benchmark::State& state) {
    const thread_number one(1);
    run_into_new(state, MNumericArray_getUnaryVectorMachFunc(function, MNumericArrayTypeComplexReal64),
                 uniform_square(low, high), MACHFUNC_CHECK_FP, reference);
  });
}

}  // namespace

void register_complex() {
#define ELEMENTARY(type, name, low, high)
#define INTEGER(type, name, low, high)
#define COMPLEX(type, name, low, high) \
  add(#type, #name, MachFunc_##name, low, high, [](wide_number z) { return std::name(z); });
#include "cases.def"
#undef ELEMENTARY
#undef INTEGER
#undef COMPLEX
}

}  // namespace bench
