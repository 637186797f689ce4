#include "report.h"

#include <math.h>
#include <stdio.h>
#include <string.h>

#include "tensors.h"

static const char* const row_format = "%-9s %-14s %-10s %-9s %-8s %-22s";

static const char* checks_name(uint32_t flags) {
  switch (flags & (MACHFUNC_CHECK_FP | MACHFUNC_CHECK_INTEGER)) {
    case 0:
      return "none";
    case MACHFUNC_CHECK_FP:
      return "fp";
    case MACHFUNC_CHECK_INTEGER:
      return "integer";
    default:
      return "both";
  }
}

static int call_failed(const char* call, int32_t function, long long code) {
  fprintf(stderr, "weather: %s of function %d (%s) gave %lld\n", call, (int)function, function_name(function),
          code);
  return 1;
}

static void print_summary(const MTensor* tensor) {
  const Summary s = summarize(tensor);
  if (s.finite == 0)
    printf("%7d%9s%9s%9s\n", 0, "-", "-", "-");
  else
    printf("%7lld%9.2f%9.2f%9.2f\n", (long long)s.finite, s.min, s.mean, s.max);
}

static void print_columns(const WeatherTable* table, MTensor* const columns[NUMERIC_COLUMNS]) {
  printf("%zu days, %s to %s\n\n", table->days, table->dates[0], table->dates[table->days - 1]);
  printf("%-15s%-7s%7s%9s%9s%9s\n", "column", "unit", "days", "min", "mean", "max");
  for (int i = 0; i < NUMERIC_COLUMNS; i++) {
    printf("%-15s%-7s", weather_column_names[i], weather_column_units[i]);
    print_summary(columns[i]);
  }
}

/* Runs a function into a new tensor through Math_T_T and prints the row of the table. 0 and 4 are both
 * results: with MACHFUNC_CHECK_FP a run into another tensor is judged as a whole, so 4 says that some day
 * failed but not which. */
static int run_into_new(int32_t function, const MTensor* source, const char* name, int32_t result_type,
                        uint32_t flags, MTensor** result) {
  const int32_t status = Math_T_T(function, flags, source, result_type, result);
  if (status != LibraryOk && status != LibraryNumericalError)
    return call_failed("Math_T_T", function, status);
  printf(row_format, function_name(function), name, "Math_T_T", "new", checks_name(flags),
         status == LibraryOk ? "0, done" : "4, some day failed");
  print_summary(*result);
  return 0;
}

/* Runs a function over a tensor in place through TensorOp1 and prints the row. An outcome of 0 or more is the
 * index of the first day that failed: the days before it hold results, it and those after it hold what they
 * held. */
static int run_in_place(int32_t function, MTensor* tensor, const char* name, uint32_t flags,
                        const WeatherTable* table, mint* outcome) {
  char text[32] = "-2, done";
  *outcome = TensorOp1(tensor, tensor, function, flags);
  if (*outcome == -1) return call_failed("TensorOp1", function, -1);
  if (*outcome >= 0) snprintf(text, sizeof text, "%lld, at %s", (long long)*outcome, table->dates[*outcome]);
  printf(row_format, function_name(function), name, "TensorOp1", "in place", checks_name(flags), text);
  if (*outcome >= 0)
    printf("%7lld%9s%9s%9s\n", (long long)*outcome, "-", "-", "-");
  else
    print_summary(tensor);
  return 0;
}

/* ---- The table of functions
 * ---------------------------------------------------------------------------------------- */

typedef struct {
  int32_t function;
  int column;
  int32_t result_type;
  uint32_t flags;
} Run;

static const Run runs_into_new[] = {
    {MachFunc_sqrt, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_log, PRECIPITATION, MTensorTypeReal, 0},
    {MachFunc_log, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_log1p, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_abs, TEMP_MIN, MTensorTypeReal, 0},
    {MachFunc_sign, TEMP_MIN, MTensorTypeInteger, MACHFUNC_CHECK_INTEGER},
    {MachFunc_round, TEMP_MAX, MTensorTypeInteger, 0},
    {MachFunc_round, TEMP_MAX, MTensorTypeInteger, MACHFUNC_CHECK_INTEGER},
};

static const Run runs_in_place[] = {
    {MachFunc_sqrt, WIND, MTensorTypeReal, 0},
    {MachFunc_sqrt, WIND, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_log, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_log1p, PRECIPITATION, MTensorTypeReal, MACHFUNC_CHECK_FP},
    {MachFunc_abs, TEMP_MIN, MTensorTypeReal, MACHFUNC_CHECK_FP},
};

static int print_runs_into_new(MTensor* const columns[NUMERIC_COLUMNS]) {
  int status = 0;
  for (size_t i = 0; i < sizeof runs_into_new / sizeof *runs_into_new && status == 0; i++) {
    const Run* run = &runs_into_new[i];
    MTensor* result = NULL;
    status = run_into_new(run->function, columns[run->column], weather_column_names[run->column],
                          run->result_type, run->flags, &result);
    MTensor_delete(result);
  }
  return status;
}

static int print_runs_in_place(const WeatherTable* table) {
  int status = 0;
  for (size_t i = 0; i < sizeof runs_in_place / sizeof *runs_in_place && status == 0; i++) {
    const Run* run = &runs_in_place[i];
    mint outcome;
    MTensor* copy = real_tensor(table->values[run->column], (mint)table->days);
    if (copy == NULL) return 1;
    status =
        run_in_place(run->function, copy, weather_column_names[run->column], run->flags, table, &outcome);
    MTensor_delete(copy);
  }
  return status;
}

/* Integers in place: the rounded temperatures, then their magnitudes. The most negative mint would be an
 * overflow. */
static int print_integer_runs(const WeatherTable* table, const MTensor* temp_min) {
  mint outcome;
  MTensor* rounded = NULL;
  int status = run_into_new(MachFunc_round, temp_min, "temp_min", MTensorTypeInteger, MACHFUNC_CHECK_INTEGER,
                            &rounded);
  if (status == 0)
    status = run_in_place(MachFunc_abs, rounded, "rounded t_min", MACHFUNC_CHECK_INTEGER, table, &outcome);
  if (status == 0) status = run_in_place(MachFunc_sign, rounded, "abs of that", 0, table, &outcome);
  MTensor_delete(rounded);
  return status;
}

static int print_table_of_functions(const WeatherTable* table, MTensor* const columns[NUMERIC_COLUMNS]) {
  printf(
      "\nAn outcome from 0 in place is the index of the first day that failed. min, mean, max: finite "
      "results.\n");
  printf(row_format, "function", "of", "call", "target", "checks", "outcome");
  printf("%7s%9s%9s%9s\n", "finite", "min", "mean", "max");
  if (print_runs_into_new(columns) != 0) return 1;
  if (print_runs_in_place(table) != 0) return 1;
  return print_integer_runs(table, columns[TEMP_MIN]);
}

/* ---- Counts of days
 * -------------------------------------------------------------------------------------------------- */

static mint count_equal(const MTensor* tensor, mint value) {
  mint count = 0;
  for (mint i = 0; i < tensor->flattenedLength; i++) count += integer_data(tensor)[i] == value;
  return count;
}

/* Counts the days on which the function of the column, less an offset, has the value. */
static int print_count(const WeatherTable* table, int column, double offset, int32_t function, mint value,
                       const char* what) {
  MTensor* result = NULL;
  MTensor* shifted = real_tensor(table->values[column], (mint)table->days);
  if (shifted == NULL) return 1;
  for (mint i = 0; i < shifted->flattenedLength; i++) ((mreal*)shifted->data)[i] -= offset;
  const int32_t status = Math_T_T(function, MACHFUNC_CHECK_INTEGER, shifted, MTensorTypeInteger, &result);
  if (status == LibraryOk) printf("%-64s%6lld\n", what, (long long)count_equal(result, value));
  MTensor_delete(result);
  MTensor_delete(shifted);
  return status == LibraryOk ? 0 : call_failed("Math_T_T", function, status);
}

static int print_counts(const WeatherTable* table) {
  printf("\n");
  if (print_count(table, TEMP_MIN, 0.0, MachFunc_sign, -1, "frost days: sign of temp_min is -1")) return 1;
  if (print_count(table, TEMP_MAX, 30.0, MachFunc_unitstep, 1,
                  "hot days: unitstep of temp_max less 30 deg C is 1"))
    return 1;
  return print_count(table, PRECIPITATION, 10.0, MachFunc_unitstep, 1,
                     "days of heavy rain: unitstep of precipitation less 10 mm is 1");
}

/* ---- The logarithm of the precipitation
 * ------------------------------------------------------------------------------ */

/* Whether the elements from the failing one on still hold the millimetres that they were given. */
static int rest_is_untouched(const WeatherTable* table, const MTensor* tensor, mint first) {
  return memcmp(real_data(tensor) + first, table->values[PRECIPITATION] + first,
                (size_t)(tensor->flattenedLength - first) * sizeof(mreal)) == 0;
}

/* Runs the log in place over a copy and tells where it stopped and what the copy holds there. */
static int print_first_failure(const WeatherTable* table, mint* first) {
  const mint days = (mint)table->days;
  int status = 0;
  MTensor* copy = real_tensor(table->values[PRECIPITATION], days);
  if (copy == NULL) return 1;
  *first = TensorOp1(copy, copy, MachFunc_log, MACHFUNC_CHECK_FP);
  printf("\nlog of the precipitation\n");
  if (*first == -1 || (*first >= 0 && !rest_is_untouched(table, copy, *first))) {
    status = call_failed("TensorOp1", MachFunc_log, (long long)*first);
  } else if (*first >= 0) {
    printf("  first day that fails   %s, day %lld of %lld: %.1f mm, which has no finite log\n",
           table->dates[*first], (long long)*first + 1, (long long)days,
           table->values[PRECIPITATION][*first]);
    printf(
        "  the run in place       stopped there: the %lld days before it hold logs, it and the %lld after "
        "it\n",
        (long long)*first, (long long)(days - *first - 1));
    printf("                         still hold their millimetres\n");
  } else {
    printf("  first day that fails   none: every day has a log\n");
  }
  MTensor_delete(copy);
  return status;
}

/* The days with precipitation above 0, in their order; a tensor of length 0 if there are none. */
static MTensor* wet_days(const WeatherTable* table) {
  const double* precipitation = table->values[PRECIPITATION];
  mint count = 0;
  for (size_t i = 0; i < table->days; i++) count += precipitation[i] > 0.0;
  MTensor* wet = MTensor_newAllocatedCommon(MTensorTypeReal, 1, &count, FailNull);
  if (wet == NULL) {
    fprintf(stderr, "weather: no memory for %lld wet days\n", (long long)count);
    return NULL;
  }
  mreal* out = (mreal*)wet->data;
  for (size_t i = 0; i < table->days; i++) {
    if (precipitation[i] > 0.0) *out++ = precipitation[i];
  }
  return wet;
}

/* The log over the wet days alone, and their geometric mean: the exponential of the mean log, one number
 * through the scalar kernel. */
static int print_wet_days(const WeatherTable* table) {
  const MachFuncScalar1 exp_kernel = MTensor_getUnaryScalarMachFunc(MachFunc_exp, MTensorTypeReal);
  MTensor* logs = NULL;
  mreal geometric = 0.0;
  int status = 0;
  if (exp_kernel == NULL) return call_failed("MTensor_getUnaryScalarMachFunc", MachFunc_exp, 0);
  MTensor* wet = wet_days(table);
  if (wet == NULL) return 1;
  const Summary rain = summarize(wet);
  const int32_t outcome = Math_T_T(MachFunc_log, MACHFUNC_CHECK_FP, wet, MTensorTypeReal, &logs);
  if (outcome != LibraryOk) {
    status = call_failed("Math_T_T", MachFunc_log, outcome);
  } else {
    const Summary log_rain = summarize(logs);
    if (exp_kernel(&geometric, &log_rain.mean, MACHFUNC_CHECK_FP) != 0)
      status = call_failed("the scalar kernel", MachFunc_exp, 1);
    printf(
        "  what was done          dry days stay out of the log and are counted on their own: %lld of %zu;\n",
        (long long)((mint)table->days - rain.finite), table->days);
    if (rain.finite > 0) {
      printf("                         the log runs over the %lld wet days: mean %.2f mm,\n",
             (long long)rain.finite, rain.mean);
      printf("                         geometric mean %.2f mm, log from %.2f to %.2f;\n", geometric,
             log_rain.min, log_rain.max);
    } else {
      printf("                         there is no wet day for the log to run over;\n");
    }
    printf("                         log1p (log of 1 + mm), in the table above, takes every day\n");
  }
  MTensor_delete(logs);
  MTensor_delete(wet);
  return status;
}

/* The longest spell of days that all have a log, by the vector kernel itself: run in place over what is left of a
 * copy, it stops at the next dry day and answers that day's one-based position in the run, or 0 if there is none. */
static int print_longest_wet_spell(const WeatherTable* table) {
  const MachFuncVector1 log_kernel = MTensor_getUnaryVectorMachFunc(MachFunc_log, MTensorTypeReal);
  if (log_kernel == NULL) return call_failed("MTensor_getUnaryVectorMachFunc", MachFunc_log, 0);
  const mint days = (mint)table->days;
  mint longest = 0, longest_start = 0;
  MTensor* copy = real_tensor(table->values[PRECIPITATION], days);
  if (copy == NULL) return 1;
  for (mint start = 0; start < days;) {
    mreal* rest = (mreal*)copy->data + start;
    const mint position = log_kernel(rest, rest, days - start, UnitIncrements, MACHFUNC_CHECK_FP);
    const mint spell = position == 0 ? days - start : position - 1;
    if (spell > longest) {
      longest = spell;
      longest_start = start;
    }
    start += spell + 1;
  }
  if (longest > 0)
    printf("  longest without one    %lld days, %s to %s\n", (long long)longest, table->dates[longest_start],
           table->dates[longest_start + longest - 1]);
  MTensor_delete(copy);
  return 0;
}

static int print_log_report(const WeatherTable* table) {
  mint first;
  if (print_first_failure(table, &first) != 0) return 1;
  if (first < 0) return 0;
  if (print_longest_wet_spell(table) != 0) return 1;
  return print_wet_days(table);
}

int report_weather(const WeatherTable* table) {
  MTensor* columns[NUMERIC_COLUMNS] = {NULL, NULL, NULL, NULL};
  int status = 0;
  for (int i = 0; i < NUMERIC_COLUMNS && status == 0; i++) {
    columns[i] = real_tensor(table->values[i], (mint)table->days);
    if (columns[i] == NULL) status = 1;
  }
  if (status == 0) {
    print_columns(table, columns);
    status = print_table_of_functions(table, columns);
  }
  if (status == 0) status = print_counts(table);
  if (status == 0) status = print_log_report(table);
  for (int i = 0; i < NUMERIC_COLUMNS; i++) MTensor_delete(columns[i]);
  return status;
}
