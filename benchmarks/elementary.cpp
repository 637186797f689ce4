// Elementary functions of Real64 and Real32 on one thread, checks on: from one array into another, where a
// run is judged as a whole, and in place, where the first failing position is exact.
#include "support.h"

namespace bench {
namespace {

template <class T>
inline constexpr int32_t type_code =
    std::is_same_v<T, double> ? MNumericArrayTypeReal64 : MNumericArrayTypeReal32;

/// The reference is taken in long double and rounded: the standard functions in double err by several units themselves.
template <class T, class Reference>
void add(const std::string& type, const std::string& name, int32_t number, double low, double high,
         Reference function) {
  const auto reference = [function](T x) { return static_cast<T>(function(static_cast<long double>(x))); };
  const auto kernel = [number] { return MNumericArray_getUnaryVectorMachFunc(number, type_code<T>); };
  benchmark::RegisterBenchmark((type + "/" + name + "/new").c_str(), [=](benchmark::State& state) {
    const thread_number one(1);
    run_into_new(state, kernel(), uniform<T>(compared_length, low, high), MACHFUNC_CHECK_FP, reference);
  });
  benchmark::RegisterBenchmark((type + "/" + name + "/in_place").c_str(), [=](benchmark::State& state) {
    const thread_number one(1);
    run_in_place(state, kernel(), uniform<T>(compared_length, low, high), MACHFUNC_CHECK_FP, reference);
  })->UseManualTime();
}

}  // namespace

void register_elementary() {
  using Real64 = double;
  using Real32 = float;
#define ELEMENTARY(type, name, low, high) \
  add<type>(#type, #name, MachFunc_##name, low, high, [](long double x) { return std::name(x); });
#define INTEGER(type, name, low, high)
#define COMPLEX(type, name, low, high)
#include "cases.def"
#undef ELEMENTARY
#undef INTEGER
#undef COMPLEX
}

}  // namespace bench
