// Conversions of element types on one thread, every element tested as its method says.
#include "support.h"

namespace bench {
namespace {

using Integer32 = int32_t;
using Integer64 = int64_t;
using UnsignedInteger8 = uint8_t;
using Integer8 = int8_t;
using Real32 = float;
using Real64 = double;

/// What a method makes of a number of the cases.
template <class S, class T> T expected(int32_t method, S x) {
  constexpr double most = static_cast<double>(std::numeric_limits<T>::max());
  const bool scales = method == MNumericArrayConvertScale || method == MNumericArrayConvertClipAndScale;
  if (scales && std::is_integral_v<S> && std::is_integral_v<T>) {
    return static_cast<T>((static_cast<int64_t>(x) + (int64_t{1} << 31)) >>
                          24);  // Integer32 to UnsignedInteger8
  }
  if (scales && std::is_integral_v<S>) return static_cast<T>(std::ldexp(static_cast<double>(x), -63));
  if constexpr (std::is_integral_v<T>) {
    if (scales)
      return static_cast<T>(std::rint(static_cast<double>(x) * (x < 0 ? most + (sizeof(T) < 8) : most)));
  }
  return static_cast<T>(method == MNumericArrayConvertRound ? std::rint(static_cast<double>(x))
                                                            : static_cast<double>(x));
}

template <class S, class T>
void run_conversion(benchmark::State& state, int32_t source_type, int32_t target_type, int32_t method,
                    double low, double high) {
  const thread_number one(1);
  std::vector<S> x = uniform<S>(compared_length, low, high);
  if (method <= MNumericArrayConvertClipAndCoerce) {
    for (S& value : x) value = static_cast<S>(std::rint(static_cast<double>(value)));
  }
  std::vector<T> results(x.size());
  call_timer timer;
  for (auto _ : state) {
    int32_t status = 0;
    timer([&] {
      status = MNumericArrayData_convert(results.data(), target_type, x.data(), source_type, compared_length,
                                         method);
    });
    if (status != 0) return state.SkipWithError("the conversion reports a failure");
  }
  for (size_t i = 0; i < x.size(); i += 97) {
    if (results[i] != expected<S, T>(method, x[i])) return state.SkipWithError("a result is wrong");
  }
  timer.report(state);
  state.SetItemsProcessed(state.iterations() * compared_length);
}

}  // namespace

void register_conversion() {
#define CONVERSION(source, target, method, low, high)                                                      \
  benchmark::RegisterBenchmark("convert/" #source "/" #target "/" #method, run_conversion<source, target>, \
                               MNumericArrayType##source, MNumericArrayType##target,                       \
                               MNumericArrayConvert##method, low, high);
#include "conversion_cases.def"
#undef CONVERSION
}

}  // namespace bench
