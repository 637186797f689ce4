#include "derived.h"

#include <stdio.h>
#include <stdlib.h>

#include "expressions.h"
#include "tensors.h"

enum { MONTHS = 12, DEGREE_DAY_BASE = 18 };

/* The columns that the formulas start from. */
typedef struct {
  const MTensor* mean;     /* of the day's lowest and highest temperature, deg C */
  const MTensor* temp_min; /* deg C */
  const MTensor* temp_max; /* deg C */
  const MTensor* wind;     /* m/s */
} Columns;

static Columns start_columns(Sheet* sheet, const WeatherTable* table) {
  const mint days = (mint)table->days;
  Columns c;
  c.temp_min = column(sheet, table->values[TEMP_MIN], days);
  c.temp_max = column(sheet, table->values[TEMP_MAX], days);
  c.wind = column(sheet, table->values[WIND], days);
  c.mean = divide(sheet, plus(sheet, c.temp_min, c.temp_max), number(sheet, 2.0));
  return c;
}

/* ---- Wind chill ---- */

/* T' = 13.12 + 0.6215 T - 11.37 v^0.16 + 0.3965 T v^0.16 for T in deg C and v in km/h. */
static const MTensor* wind_chill(Sheet* sheet, const MTensor* t, const MTensor* wind) {
  const MTensor* v = times(sheet, wind, number(sheet, 3.6)); /* from m/s */
  const MTensor* v16 = power(sheet, v, number(sheet, 0.16));
  const MTensor* still = plus(sheet, number(sheet, 13.12), times(sheet, number(sheet, 0.6215), t));
  const MTensor* chilled = subtract(sheet, still, times(sheet, number(sheet, 11.37), v16));
  return plus(sheet, chilled, times(sheet, times(sheet, number(sheet, 0.3965), t), v16));
}

static mint index_of_smallest(const MTensor* tensor) {
  mint smallest = 0;
  for (mint i = 1; i < tensor->flattenedLength; i++) {
    if (real_data(tensor)[i] < real_data(tensor)[smallest]) smallest = i;
  }
  return smallest;
}

static int print_wind_chill(Sheet* sheet, const WeatherTable* table, const Columns* c) {
  const MTensor* felt = wind_chill(sheet, c->mean, c->wind);
  if (felt == NULL) return 1;
  const Summary s = summarize(felt);
  const mint coldest = index_of_smallest(felt);
  printf("\nwind chill of the day's mean temperature (the formula is meant for 10 deg C and below)\n");
  printf("  over all days          min %.2f, mean %.2f, max %.2f deg C\n", s.min, s.mean, s.max);
  printf("  felt coldest           %s: %.2f deg C in a wind of %.1f m/s felt like %.2f\n",
         table->dates[coldest], real_data(c->mean)[coldest], real_data(c->wind)[coldest],
         real_data(felt)[coldest]);
  return 0;
}

/* ---- Degree-days ---- */

/* The sum of ramp(x), which is x where x is above 0 and 0 elsewhere. */
static int sum_above_zero(Sheet* sheet, const MTensor* x, double* sum) {
  const MTensor* above = apply(sheet, MachFunc_ramp, x);
  if (above == NULL) return 1;
  const Summary s = summarize(above);
  *sum = s.mean * (double)s.finite;
  return 0;
}

static int print_degree_days(Sheet* sheet, const Columns* c) {
  const MTensor* base = number(sheet, DEGREE_DAY_BASE);
  double heating, cooling;
  if (sum_above_zero(sheet, subtract(sheet, base, c->mean), &heating) != 0) return 1;
  if (sum_above_zero(sheet, subtract(sheet, c->mean, base), &cooling) != 0) return 1;
  printf("\ndegree-days around %d deg C: sums of ramp(%d - T) and ramp(T - %d)\n", (int)DEGREE_DAY_BASE,
         (int)DEGREE_DAY_BASE, (int)DEGREE_DAY_BASE);
  printf("  heating                %.1f\n  cooling                %.1f\n", heating, cooling);
  return 0;
}

/* ---- Monthly means ---- */

static int month_of(const char* date) { return atoi(date + 5) - 1; }

/* Sums of whole tenths are exact as Integer64; they become Real64 only to be divided. */
static int print_monthly_means(Sheet* sheet, const WeatherTable* table, const Columns* c) {
  const mint months = MONTHS;
  mint sums[MONTHS] = {0}, days[MONTHS] = {0};
  const MTensor* tenths = converted(sheet, times(sheet, c->temp_max, number(sheet, 10.0)),
                                    MNumericArrayTypeInteger64, MNumericArrayConvertRound);
  if (tenths == NULL) return 1;
  for (mint i = 0; i < tenths->flattenedLength; i++) {
    const int month = month_of(table->dates[i]);
    sums[month] += integer_data(tenths)[i];
    days[month] += 1;
  }
  for (int m = 0; m < MONTHS; m++) {
    if (days[m] == 0) days[m] = 1; /* a month without days has the mean 0 */
  }
  const MTensor* total =
      sheet_keep(sheet, MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &months, sums));
  const MTensor* count =
      sheet_keep(sheet, MTensor_newCopyFromDataArray(MTensorTypeInteger, 1, &months, days));
  const MTensor* means =
      divide(sheet, converted(sheet, total, MNumericArrayTypeReal64, MNumericArrayConvertCheck),
             times(sheet, converted(sheet, count, MNumericArrayTypeReal64, MNumericArrayConvertCheck),
                   number(sheet, 10.0)));
  if (means == NULL) return 1;
  printf("\nmonthly means of temp_max, deg C, from sums of whole tenths\n ");
  for (int m = 0; m < MONTHS; m++) printf(" %6d", m + 1);
  printf("\n ");
  for (int m = 0; m < MONTHS; m++) printf(" %6.2f", real_data(means)[m]);
  printf("\n");
  return 0;
}

/* ---- Columns that do not fit ---- */

static const char* verdict(int32_t status) {
  switch (status) {
    case ArrayStatusOk:
      return "done";
    case ArrayStatusNotRepresentable:
      return "a value is refused";
    default:
      return "failed";
  }
}

/* What one method makes of a column, as Integer8. */
static int print_conversion(const MTensor* source, int32_t method) {
  MNumericArray* bytes = NULL;
  const int32_t status = MNumericArray_convert(&bytes, source, MNumericArrayTypeInteger8, method);
  printf("  %4d, %-20s", (int)status, verdict(status));
  if (status == ArrayStatusOk) {
    const int8_t* values = (const int8_t*)bytes->data;
    int least = values[0], most = values[0];
    for (mint i = 1; i < bytes->flattenedLength; i++) {
      if (values[i] < least) least = values[i];
      if (values[i] > most) most = values[i];
    }
    printf("%5d%5d", least, most);
  } else {
    printf("%5s%5s", "-", "-");
  }
  MNumericArray_delete(bytes);
  return status != ArrayStatusOk && status != ArrayStatusNotRepresentable;
}

static int print_conversions(Sheet* sheet, const Columns* c) {
  const MTensor* tenths = times(sheet, c->temp_max, number(sheet, 10.0));
  int failed = 0;
  if (tenths == NULL) return 1;
  printf("\ntemp_max as Integer8: degrees are not whole numbers, tenths of them reach beyond 127\n");
  printf("  %-16s  %-26s%5s%5s  %-26s%5s%5s\n", "method", "degrees", "min", "max", "tenths", "min", "max");
  for (int32_t method = MNumericArrayConvertCheck; method <= MNumericArrayConvertClipAndCast; method++) {
    printf("  %-16s", MNumericArrayConvertMethodString(method));
    failed |= print_conversion(c->temp_max, method);
    failed |= print_conversion(tenths, method);
    printf("\n");
  }
  if (failed) fprintf(stderr, "weather: a conversion failed for another reason than its values\n");
  return failed;
}

/* ---- Roots of temperatures below zero ---- */

static int print_roots(Sheet* sheet, const WeatherTable* table, const Columns* c) {
  const mint days = (mint)table->days;
  MTensor* roots = real_tensor(table->values[TEMP_MIN], days);
  if (sheet_keep(sheet, roots) == NULL) return 1;
  const mint outcome =
      PackedTensorOp1(c->temp_min, roots, MTensorTypeComplex, MachFunc_sqrt, MACHFUNC_CHECK_FP);
  printf("\nsqrt of temp_min into a real tensor, complex results allowed: outcome %lld\n",
         (long long)outcome);
  if (outcome == -2) {
    printf("  every day has a real root: the tensor stayed real\n");
    return 0;
  }
  if (outcome >= -1) {
    fprintf(stderr, "weather: PackedTensorOp1 of sqrt gave %lld\n", (long long)outcome);
    return 1;
  }
  const mcomplex* z = (const mcomplex*)roots->data;
  mint frost = 0;
  for (mint i = 0; i < days; i++) frost += z[i].im != 0.0;
  printf(
      "  the tensor turned complex: %lld days below zero have an imaginary root, the other %lld a real one\n",
      (long long)frost, (long long)(days - frost));
  return 0;
}

int report_derived(const WeatherTable* table) {
  Sheet sheet = {{NULL}, 0};
  const Columns columns = start_columns(&sheet, table);
  int status = columns.mean == NULL;
  if (status == 0) status = print_wind_chill(&sheet, table, &columns);
  if (status == 0) status = print_degree_days(&sheet, &columns);
  if (status == 0) status = print_monthly_means(&sheet, table, &columns);
  if (status == 0) status = print_conversions(&sheet, &columns);
  if (status == 0) status = print_roots(&sheet, table, &columns);
  sheet_free(&sheet);
  return status;
}
