// Integer functions of Integer64 on one thread, overflow checked.
#include "support.h"

namespace bench {
namespace {

using Integer64 = int64_t;

Integer64 abs(Integer64 x) { return x < 0 ? -x : x; }
Integer64 minus(Integer64 x) { return -x; }
Integer64 square(Integer64 x) { return x * x; }

void add(const std::string& name, int32_t number, double low, double high,
         Integer64 (*reference)(Integer64)) {
  const auto kernel = [number] {
    return MNumericArray_getUnaryVectorMachFunc(number, MNumericArrayTypeInteger64);
  };
  benchmark::RegisterBenchmark((name + "/new").c_str(), [=](benchmark::State& state) {
    const thread_number one(1);
    run_into_new(state, kernel(), uniform<Integer64>(compared_length, low, high), MACHFUNC_CHECK_INTEGER,
                 reference);
  });
}

}  // namespace

void register_integer() {
#define ELEMENTARY(type, name, low, high)
#define INTEGER(type, name, low, high) add(#type "/" #name, MachFunc_##name, low, high, name);
#define COMPLEX(type, name, low, high)
#include "cases.def"
#undef ELEMENTARY
#undef INTEGER
#undef COMPLEX
}

}  // namespace bench
