/* The numbers of the unary machine functions, which compiled code stores, against a written list: the name
 * behind each number, the element types that it has, its result types and the answers of ReturnRangeType1.
 * Faults it is meant to catch: a number moved to another function, a type missing from one function, a hole
 * that answers, a named entry that behaves unlike the row of its number. */
#include <stdio.h>
#include <string.h>
#include <velorim/velorim.h>

/* ROW(number, name, result type of the integer rows, of the real rows, ReturnRangeType1 of Integer, Real,
 * Complex). NONE: no such row; SAME: the type of the argument. ReturnRangeType1: 7 no such function, 1
 * boolean, -1 same as the argument. */
#define ROWS(ROW)                                   \
  ROW(1, sin, NONE, SAME, 7, 3, 4)                  \
  ROW(2, cos, NONE, SAME, 7, 3, 4)                  \
  ROW(3, tan, NONE, SAME, 7, 3, 4)                  \
  ROW(5, csc, NONE, SAME, 7, 3, 4)                  \
  ROW(6, sec, NONE, SAME, 7, 3, 4)                  \
  ROW(7, cot, NONE, SAME, 7, 3, 4)                  \
  ROW(9, sinh, NONE, SAME, 7, 3, 4)                 \
  ROW(10, cosh, NONE, SAME, 7, 3, 4)                \
  ROW(11, tanh, NONE, SAME, 7, 3, 4)                \
  ROW(13, csch, NONE, SAME, 7, 3, 4)                \
  ROW(14, sech, NONE, SAME, 7, 3, 4)                \
  ROW(15, coth, NONE, SAME, 7, 3, 4)                \
  ROW(17, asin, NONE, SAME, 7, 4, 4)                \
  ROW(18, acos, NONE, SAME, 7, 4, 4)                \
  ROW(19, atan, NONE, SAME, 7, 3, 4)                \
  ROW(21, acsc, NONE, SAME, 7, 4, 4)                \
  ROW(22, asec, NONE, SAME, 7, 4, 4)                \
  ROW(23, acot, NONE, SAME, 7, 3, 4)                \
  ROW(25, asinh, NONE, SAME, 7, 3, 4)               \
  ROW(26, acosh, NONE, SAME, 7, 4, 4)               \
  ROW(27, atanh, NONE, SAME, 7, 4, 4)               \
  ROW(29, acsch, NONE, SAME, 7, 3, 4)               \
  ROW(30, asech, NONE, SAME, 7, 4, 4)               \
  ROW(31, acoth, NONE, SAME, 7, 4, 4)               \
  ROW(32, exp, NONE, SAME, 7, 3, 4)                 \
  ROW(33, expm1, NONE, SAME, 7, 3, 4)               \
  ROW(34, log, NONE, SAME, 7, 4, 4)                 \
  ROW(35, log1p, NONE, SAME, 7, 4, 4)               \
  ROW(36, log2, SAME, SAME, 2, 4, 4)                \
  ROW(37, log10, SAME, SAME, 2, 4, 4)               \
  ROW(38, abs, SAME, SAME, 2, 3, 3)                 \
  ROW(39, arg, SAME, INTEGER64, 2, 2, 3)            \
  ROW(40, conj, SAME, SAME, 2, 3, 4)                \
  ROW(41, im, SAME, INTEGER64, 2, 2, 3)             \
  ROW(42, re, SAME, SAME, 2, 3, 3)                  \
  ROW(43, minus, SAME, SAME, 2, 3, 4)               \
  ROW(44, sign, SAME, INTEGER64, 2, 2, 4)           \
  ROW(45, pos, INTEGER64, INTEGER64, 1, 1, 7)       \
  ROW(46, neg, INTEGER64, INTEGER64, 1, 1, 7)       \
  ROW(47, npos, INTEGER64, INTEGER64, 1, 1, 7)      \
  ROW(48, nneg, INTEGER64, INTEGER64, 1, 1, 7)      \
  ROW(49, round, SAME, INTEGER64, -1, 2, 7)         \
  ROW(50, floor, SAME, INTEGER64, -1, 2, 7)         \
  ROW(51, ceiling, SAME, INTEGER64, -1, 2, 7)       \
  ROW(52, fracpart, SAME, SAME, 2, 3, 4)            \
  ROW(53, intpart, SAME, INTEGER64, -1, 2, 7)       \
  ROW(54, evenq, INTEGER64, NONE, 1, 1, 7)          \
  ROW(55, oddq, INTEGER64, NONE, 1, 1, 7)           \
  ROW(56, square, SAME, SAME, 2, 3, 4)              \
  ROW(57, sqrt, NONE, SAME, 7, 4, 4)                \
  ROW(58, cbrt, NONE, SAME, 7, 3, 7)                \
  ROW(59, rsqrt, NONE, SAME, 7, 4, 4)               \
  ROW(60, recip, NONE, SAME, 7, 3, 4)               \
  ROW(61, bitcount, SAME, NONE, 2, 7, 7)            \
  ROW(62, bitnot, SAME, NONE, 2, 7, 7)              \
  ROW(63, bitlength, SAME, NONE, 2, 7, 7)           \
  ROW(64, intexp10, SAME, NONE, 2, 7, 7)            \
  ROW(65, intlen10, SAME, NONE, 2, 7, 7)            \
  ROW(66, unitstep, SAME, INTEGER64, 2, 2, 7)       \
  ROW(67, sinc, NONE, SAME, 7, 3, 4)                \
  ROW(68, fibonacci, SAME, SAME, 2, 3, 4)           \
  ROW(69, lucasl, SAME, SAME, 2, 3, 4)              \
  ROW(70, gudermannian, NONE, SAME, 7, 4, 4)        \
  ROW(71, inversegudermannian, NONE, SAME, 7, 4, 4) \
  ROW(72, haversine, NONE, SAME, 7, 3, 4)           \
  ROW(73, inversehaversine, NONE, SAME, 7, 4, 4)    \
  ROW(74, erfc, NONE, SAME, 7, 3, 7)                \
  ROW(75, erf, NONE, SAME, 7, 3, 7)                 \
  ROW(76, gamma, SAME, SAME, 2, 3, 7)               \
  ROW(77, loggamma, NONE, SAME, 7, 3, 7)            \
  ROW(78, unitize, SAME, INTEGER64, 2, 2, 2)        \
  ROW(79, mod1, SAME, SAME, 2, 3, 4)                \
  ROW(80, logistic, NONE, SAME, 7, 3, 4)            \
  ROW(81, ramp, SAME, SAME, 2, 3, 7)                \
  ROW(82, abssquare, SAME, SAME, 2, 3, 3)           \
  ROW(83, realabs, SAME, SAME, 2, 3, 7)             \
  ROW(84, realsign, SAME, INTEGER64, 2, 2, 7)       \
  ROW(85, box, SAME, INTEGER64, 2, 2, 7)            \
  ROW(86, triangle, SAME, SAME, 2, 3, 7)

enum { NONE = 0, INTEGER64 = MNumericArrayTypeInteger64, SAME = -1 };

typedef int32_t (*IntegerEntry)(mint* result, mint x, uint32_t flags);
typedef int32_t (*RealEntry)(mreal* result, mreal x, uint32_t flags);
typedef int32_t (*RealToIntegerEntry)(mint* result, mreal x, uint32_t flags);

typedef struct {
  int32_t number;
  const char* name;
  int32_t integer_result, real_result;
  int32_t range[3];
  IntegerEntry integer_entry;
  RealEntry real_entry;
  RealToIntegerEntry real_to_integer_entry;
} Row;

/* The named entries that a row has, by its result types. */
#define I_NONE(name) NULL
#define I_SAME(name) s_machfunc_i_##name
#define I_INTEGER64(name) s_machfunc_i_##name
#define R_NONE(name) NULL, NULL
#define R_SAME(name) s_machfunc_d_##name, NULL
#define R_INTEGER64(name) NULL, s_machfunc_d_##name
#define AS_ROW(number, name, integers, reals, range_integer, range_real, range_complex)                    \
  {number,         #name, integers, reals, {range_integer, range_real, range_complex}, I_##integers(name), \
   R_##reals(name)},

#define CHECK_ENUMERATOR(number, name, ...) _Static_assert(MachFunc_##name == (number), #name " is " #number);
ROWS(CHECK_ENUMERATOR)

static const Row rows[] = {ROWS(AS_ROW)};
enum { ROW_COUNT = sizeof rows / sizeof *rows, LAST_NUMBER = 86 };

static int failures;

static void expect(int condition, int32_t number, const char* what, int32_t type) {
  if (condition) return;
  failures++;
  printf("function %d, type %d: %s\n", (int)number, (int)type, what);
}

static int is_real_type(int32_t type) {
  return type == MNumericArrayTypeReal32 || type == MNumericArrayTypeReal64 ||
         type == MNumericArrayTypeReal16;
}

static int is_complex_type(int32_t type) {
  return type == MNumericArrayTypeComplexReal32 || type == MNumericArrayTypeComplexReal64;
}

/* What a function gives for complex numbers follows from its range for them. */
static int32_t complex_rule(int32_t range, int32_t type) {
  switch (range) {
    case MTensorTypeComplex:
      return SAME;
    case MTensorTypeReal:
      return type == MNumericArrayTypeComplexReal32 ? MNumericArrayTypeReal32 : MNumericArrayTypeReal64;
    case MTensorTypeInteger:
      return MNumericArrayTypeInteger64;
    default:
      return NONE;
  }
}

static void check_result_types(const Row* row) {
  for (int32_t type = 1; type <= 13; type++) {
    const int32_t rule = is_real_type(type)      ? row->real_result
                         : is_complex_type(type) ? complex_rule(row->range[2], type)
                                                 : row->integer_result;
    const int32_t result = rule == SAME ? type : rule;
    expect(MNumericArray_ReturnType1(row->number, type) == result, row->number, "MNumericArray_ReturnType1",
           type);
    expect((MNumericArray_getUnaryScalarMachFunc(row->number, type) != NULL) == (rule != NONE), row->number,
           "scalar kernel", type);
    expect((MNumericArray_getUnaryVectorMachFunc(row->number, type) != NULL) == (rule != NONE), row->number,
           "vector kernel", type);
  }
}

static void check_tensor_getters(const Row* row) {
  for (int32_t tensor = MTensorTypeInteger; tensor <= MTensorTypeComplex; tensor++) {
    const int32_t type = MTensorToMNumericArrayType[tensor];
    expect(MTensor_getUnaryScalarMachFunc(row->number, tensor) ==
               MNumericArray_getUnaryScalarMachFunc(row->number, type),
           row->number, "MTensor scalar getter", tensor);
    expect(MTensor_getUnaryVectorMachFunc(row->number, tensor) ==
               MNumericArray_getUnaryVectorMachFunc(row->number, type),
           row->number, "MTensor vector getter", tensor);
    expect(MTensor_ReturnType1(row->number, tensor) ==
               MNumericArrayToMTensorType[MNumericArray_ReturnType1(row->number, type)],
           row->number, "MTensor_ReturnType1", tensor);
  }
}

static void check_ranges(const Row* row) {
  for (int32_t tensor = MTensorTypeInteger; tensor <= MTensorTypeComplex; tensor++) {
    const int32_t range = row->range[tensor - MTensorTypeInteger];
    uint32_t mark = 77;
    expect(ReturnRangeType1(row->number, tensor, &mark) == range, row->number, "ReturnRangeType1", tensor);
    expect(mark == (range == 1), row->number, "boolean mark", tensor);
  }
}

/* The kernel behind the number and the entry behind the name do the same: status and every bit of the result.
 */
static void check_name(const Row* row) {
  static const mreal reals[] = {-3.5, -1.0, -0.75, -0.0, 0.0, 0.3, 0.5, 1.0, 2.5, 10.0};
  static const mint integers[] = {-1000, -2, -1, 0, 1, 2, 5, 8, 100, 1000, INT64_MIN};
  const MachFuncScalar1 on_reals = MNumericArray_getUnaryScalarMachFunc(row->number, MNumericArrayTypeReal64);
  const MachFuncScalar1 on_integers =
      MNumericArray_getUnaryScalarMachFunc(row->number, MNumericArrayTypeInteger64);
  for (uint32_t flags = 0; flags <= 6; flags += 6) {
    for (size_t i = 0; on_reals != NULL && i < sizeof reals / sizeof *reals; i++) {
      mint by_number = -99, by_name = -99;
      mreal real_by_name;
      memcpy(&real_by_name, &by_name, sizeof by_name);
      const int32_t status = row->real_entry != NULL ? row->real_entry(&real_by_name, reals[i], flags)
                                                     : row->real_to_integer_entry(&by_name, reals[i], flags);
      if (row->real_entry != NULL) memcpy(&by_name, &real_by_name, sizeof by_name);
      expect(on_reals(&by_number, &reals[i], flags) == status && by_number == by_name, row->number, row->name,
             MNumericArrayTypeReal64);
    }
    for (size_t i = 0; on_integers != NULL && i < sizeof integers / sizeof *integers; i++) {
      mint by_number = -99, by_name = -99;
      const int32_t status = row->integer_entry(&by_name, integers[i], flags);
      expect(on_integers(&by_number, &integers[i], flags) == status, row->number, row->name,
             MNumericArrayTypeInteger64);
      if (status == 0) expect(by_number == by_name, row->number, row->name, MNumericArrayTypeInteger64);
    }
  }
}

static void check_no_function(int32_t number) {
  for (int32_t type = 1; type <= 13; type++) {
    expect(MNumericArray_getUnaryScalarMachFunc(number, type) == NULL, number, "a scalar kernel", type);
    expect(MNumericArray_getUnaryVectorMachFunc(number, type) == NULL, number, "a vector kernel", type);
    expect(MNumericArray_ReturnType1(number, type) == 0, number, "a result type", type);
  }
  for (int32_t tensor = MTensorTypeInteger; tensor <= MTensorTypeComplex; tensor++) {
    uint32_t mark = 1;
    expect(ReturnRangeType1(number, tensor, &mark) == 7 && mark == 0, number, "a range", tensor);
  }
}

int main(void) {
  static const int32_t outside[] = {INT32_MIN, -1, 0, LAST_NUMBER + 1, 256, 257, 513, INT32_MAX};
  int taken[LAST_NUMBER + 1] = {0};
  for (size_t i = 0; i < ROW_COUNT; i++) {
    taken[rows[i].number]++;
    check_result_types(&rows[i]);
    check_tensor_getters(&rows[i]);
    check_ranges(&rows[i]);
    check_name(&rows[i]);
  }
  for (int32_t number = 1; number <= LAST_NUMBER; number++) {
    const int hole = number % 4 == 0 && number <= 28;
    expect(taken[number] == !hole, number, "the written list itself", 0);
    if (hole) check_no_function(number);
  }
  for (size_t i = 0; i < sizeof outside / sizeof *outside; i++) check_no_function(outside[i]);
  printf("%d functions, %d faults\n", (int)ROW_COUNT, failures);
  return failures != 0;
}
